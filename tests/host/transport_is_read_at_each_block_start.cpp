// A module reads tempo and position once a block, at the block's start; the driver moves its
// transport on after each block, also between the blocks it cuts a long call into.
#include <gtest/gtest.h>

#include "host/HostDriver.h"
#include "tests/support/TransportRecorder.h"

using namespace BR::Test;

TEST(TransportPerBlock, PositionOfEachBlockStart) {
    auto owned = std::make_unique<TransportRecorder>();
    TransportRecorder& module = *owned;
    BR::HostDriver driver(std::move(owned), ProbeEntry(), 48000.0f, 100);
    BR::DriverTransport transport;  // 120 BPM: 24000 frames a quarter note
    transport.blockQuarter = 2.0;
    transport.blockSampleLocation = 48000;
    driver.SetTransport(&transport);
    std::vector<float> left(256), right(256);
    float* outputs[2] = {left.data(), right.data()};
    driver.Process(nullptr, outputs, 256, nullptr, 0);  // cut into 100, 100, 56
    transport.tempo = 60;                               // a change between calls: seen by the next block
    driver.Process(nullptr, outputs, 48, nullptr, 0);

    ASSERT_EQ(module.seen.size(), 4u);
    const uint32_t frames[] = {100, 100, 56, 48};
    const int64_t locations[] = {48000, 48100, 48200, 48256};
    for (size_t b = 0; b < 4; ++b) {
        EXPECT_EQ(module.seen[b].frames, frames[b]);
        EXPECT_EQ(module.seen[b].sampleLocation, locations[b]);
        EXPECT_DOUBLE_EQ(module.seen[b].reading.beats, 2.0 + double(locations[b] - 48000) / 24000.0) << b;
    }
    EXPECT_EQ(module.seen[2].reading.tempo, 120.0);
    EXPECT_EQ(module.seen[3].reading.tempo, 60.0);
    EXPECT_DOUBLE_EQ(transport.blockQuarter, 2.0 + 256.0 / 24000.0 + 48.0 / 48000.0);
}

TEST(TransportPerBlock, ASharedTransportIsLeftToItsOwner) {
    auto ownedA = std::make_unique<TransportRecorder>();
    auto ownedB = std::make_unique<TransportRecorder>();
    TransportRecorder &a = *ownedA, &b = *ownedB;
    BR::HostDriver driverA(std::move(ownedA), ProbeEntry(), 48000.0f, 64);
    BR::HostDriver driverB(std::move(ownedB), ProbeEntry(), 48000.0f, 64);
    BR::DriverTransport transport;
    driverA.SetTransport(&transport, true);
    driverB.SetTransport(&transport, true);
    std::vector<float> l(64), r(64);
    float* outputs[2] = {l.data(), r.data()};
    for (int block = 0; block < 3; ++block) {
        driverA.Process(nullptr, outputs, 64, nullptr, 0);
        driverB.Process(nullptr, outputs, 64, nullptr, 0);
        transport.Advance(64);
    }
    ASSERT_EQ(a.seen.size(), 3u);
    ASSERT_EQ(b.seen.size(), 3u);
    for (size_t k = 0; k < 3; ++k) {
        EXPECT_EQ(a.seen[k].sampleLocation, int64_t(64 * k));
        EXPECT_EQ(b.seen[k].sampleLocation, int64_t(64 * k));
        EXPECT_EQ(a.seen[k].reading.beats, b.seen[k].reading.beats);
    }
}
