// With no transport a module reads the transport as playing, at tempo 0 and position 0, so that a
// rate derived from the tempo is 0. A block whose record carries no transport falls back to the one
// given at Initialize, never to an earlier block's.
#include <gtest/gtest.h>

#include "host/DriverTransport.h"
#include "host/HostDriver.h"
#include "tests/support/ProbeModule.h"

using namespace BR::Test;

namespace {
// Follows the tempo as a tempo-synced oscillator does: one cycle per bar of four quarter notes.
class TempoFollower : public ProbeModule {
public:
    bool BeginBlock(uint32_t frames) override {
        if (!ProbeModule::BeginBlock(frames)) return false;
        reading = BR::ReadTransport(transport);
        const double cycleQuarters = 4.0;
        rate = reading.tempo / (cycleQuarters * 60.0);
        return true;
    }
    BR::TransportReading reading;
    double rate = -1;
};

const BR::CatalogueEntry kEntry = {
    "probe", "Probe", "CRpb", "BrelCorvaneProbe", BR::kStemFormatStereo, BR::kStemFormatStereo, 0, 0, 2, 2, 3,
    1,       6,       -1,     "gui_probe.lua"};
}  // namespace

TEST(NoTransport, ReadsAsPlayingAtTempoZeroFromZero) {
    const BR::TransportReading reading = BR::ReadTransport(nullptr);
    EXPECT_TRUE(reading.playing);
    EXPECT_EQ(reading.tempo, 0.0);
    EXPECT_EQ(reading.beats, 0.0);
    EXPECT_EQ(BR::CurrentBeatPosition(nullptr), 0.0);
}

TEST(NoTransport, ATempoFollowingModuleRunsAtRateZero) {
    auto owned = std::make_unique<TempoFollower>();
    TempoFollower& module = *owned;
    BR::HostDriver driver(std::move(owned), kEntry, 48000.0f);
    float left[64], right[64];
    float* outputs[2] = {left, right};
    driver.Process(nullptr, outputs, 64, nullptr, 0);
    EXPECT_TRUE(module.reading.playing);
    EXPECT_EQ(module.reading.tempo, 0.0);
    EXPECT_EQ(module.reading.beats, 0.0);
    EXPECT_EQ(module.rate, 0.0);

    BR::DriverTransport transport;
    transport.tempo = 90;
    transport.playing = false;
    transport.blockQuarter = 2.5;
    driver.SetTransport(&transport);
    driver.Process(nullptr, outputs, 64, nullptr, 0);
    EXPECT_FALSE(module.reading.playing);
    EXPECT_EQ(module.reading.tempo, 90.0);
    EXPECT_EQ(module.reading.beats, 2.5);
    EXPECT_EQ(module.rate, 90.0 / 240.0);

    // Taken away again: the module must not keep reading the old one.
    driver.SetTransport(nullptr);
    driver.Process(nullptr, outputs, 64, nullptr, 0);
    EXPECT_TRUE(module.reading.playing);
    EXPECT_EQ(module.reading.tempo, 0.0);
    EXPECT_EQ(module.rate, 0.0);
}

TEST(NoTransport, TheInitializeTransportStandsInForAnEmptyRecord) {
    // A record without a transport, as a host fills it.
    auto render = [](BrelCorvaneBase& module) {
        float l[8] = {}, r[8] = {};
        float* channels[2] = {l, r};
        int32_t length = 8;
        BrelCorvaneBase* slot = &module;
        BR::RenderRecord record;
        BR::ResetFieldData(record, &slot);
        record.inputs = channels;
        record.outputs = channels;
        record.bufferLength = &length;
        module.RenderAudio(&record);
    };
    BR::DriverController controller;
    BR::DriverTransport hostTransport;
    hostTransport.tempo = 60;

    TempoFollower without;
    without.Initialize(&controller, nullptr, nullptr);
    render(without);
    EXPECT_EQ(without.rate, 0.0);

    TempoFollower with;
    with.Initialize(&controller, &hostTransport, nullptr);
    render(with);
    EXPECT_EQ(with.reading.tempo, 60.0);
    EXPECT_EQ(with.rate, 0.25);
}
