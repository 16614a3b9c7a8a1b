// A block of no frames, which some hosts send between ordinary blocks, reports the position the next
// block will start at. It moves nothing on: the next block at that same position is not taken for a
// jump back round the host's loop, so the tick count stays continuous and every edge keeps its sample.
#include <gtest/gtest.h>

#include "framework/RenderRecord.h"
#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

namespace {
// Hands the module a block of length 0 with the transport as it stands.
void RenderNoFrames(BrelCorvaneBase& module, BR::DriverTransport& transport) {
    BrelCorvaneBase* slot = &module;
    BR::HostMidiNode node{{0, nullptr}};
    int32_t length = 0;
    float* channels[2] = {nullptr, nullptr};
    BR::RenderRecord record;
    BR::ResetFieldData(record, &slot);
    record.inputs = channels;
    record.outputs = channels;
    record.bufferLength = &length;
    record.inputMIDI = &node;
    record.transport = &transport;
    module.RenderAudio(&record);
}
}  // namespace

TEST(SyncZeroFrames, BlockOfNoFramesLeavesTheClockAlone) {
    auto driver = BR::Test::MakeDriver("sync", 48000.0f);
    auto& sync = static_cast<BrelCorvaneSync::BrelCorvane&>(driver->Module());
    driver->SetParameterByName("DINsync Type", 1.0f);  // 24 ticks a quarter, 1000 samples each
    BR::DriverTransport transport;
    transport.sampleRate = 48000.0;
    transport.tempo = 120.0;
    transport.looping = true;
    transport.loopStart = 4.0;
    transport.loopEnd = 8.0;
    BR::Test::PlaceTransport(transport, 4.0);
    driver->SetTransport(&transport);

    const uint32_t block = 250, blocks = 48;
    std::vector<float> in(block, 0.0f), left(block * blocks), right(block * blocks);
    const float* inputs[2] = {in.data(), in.data()};
    for (uint32_t b = 0; b < blocks; ++b) {
        if (b > 0) RenderNoFrames(sync, transport);
        float* outputs[2] = {left.data() + b * block, right.data() + b * block};
        driver->Process(inputs, outputs, block, nullptr, 0);
    }
    std::vector<uint32_t> expected;
    for (uint32_t k = 0; k < 12; ++k)
        expected.push_back(1000 * k);
    EXPECT_EQ(BR::Test::RisingEdges(left), expected);
    for (uint32_t k = 0; k < 12; ++k)
        EXPECT_EQ(left[1000 * k + 500], 0.0f) << k;
    EXPECT_EQ(sync.LastTick(), 96 + 11);
    EXPECT_EQ(sync.NextTick(), 96 + 12);
}
