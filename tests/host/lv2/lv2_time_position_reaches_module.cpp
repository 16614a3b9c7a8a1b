// time:Position sets the module's transport: play state, tempo, meter and position, advanced by the
// driver between positions; a position inside a block cuts the block there.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/host/lv2/probe/HostProbe.h"
#include "tests/host/lv2/support/Lv2TestHost.h"

TEST(Lv2Time, NoPositionYetMeansNoTransport) {
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri);
    host.Run(128);
    EXPECT_EQ(host.outputs[3][0], -1.0f);
    EXPECT_EQ(host.outputs[2][0], 0.0f);
    EXPECT_EQ(host.outputs[1][127], 0.0f);
}

TEST(Lv2Time, BarAndBeatAsJackHostsSendThem) {
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri);
    // Bar 2 (from 0), beat 1.5 of 4/4 at 90 BPM: quarter note 9.5.
    host.AddPosition(0, {.frame = 96000,
                         .bar = 2,
                         .speed = 1.0f,
                         .bpm = 90.0f,
                         .barBeat = 1.5f,
                         .beatsPerBar = 4.0f,
                         .beatUnit = 4});
    host.Run(1000);
    EXPECT_EQ(host.outputs[3][0], 1.0f);
    EXPECT_FLOAT_EQ(host.outputs[2][0], 0.09f);
    const double step = 90.0 / 60.0 / 48000.0;
    EXPECT_NEAR(host.outputs[1][0], 0.5, 1e-6);
    EXPECT_NEAR(host.outputs[1][999], 0.5 + 999 * step, 1e-6);
    // The next block goes on from there without a new position.
    host.Run(1000);
    EXPECT_NEAR(host.outputs[1][0], 0.5 + 1000 * step, 1e-6);
    BR::DriverTransport& t = host.Instance().Transport().Driver();
    EXPECT_EQ(t.blockSampleLocation, 96000 + 2000);
    EXPECT_EQ(t.meterNumerator, 4);
}

TEST(Lv2Time, BeatUnitScalesToQuarterNotes) {
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri);
    // 6/8 at 120 eighths per minute is 60 quarter notes per minute; beat 3 (eighths) is quarter 1.5.
    host.AddPosition(
        0, {.frame = 0, .speed = 1.0f, .bpm = 120.0f, .beat = 3.0, .beatsPerBar = 6.0f, .beatUnit = 8});
    host.Run(64);
    EXPECT_FLOAT_EQ(host.outputs[2][0], 0.06f);
    EXPECT_NEAR(host.outputs[1][0], 0.5, 1e-9);
    BR::DriverTransport& t = host.Instance().Transport().Driver();
    EXPECT_EQ(t.meterNumerator, 6);
    EXPECT_EQ(t.meterDenominator, 8);
}

TEST(Lv2Time, PositionInsideABlockCutsIt) {
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri);
    host.AddPosition(0, {.frame = 0, .speed = 0.0f, .bpm = 120.0f, .beat = 0.0});
    host.AddPosition(300, {.frame = 0, .speed = 1.0f, .bpm = 120.0f, .beat = 0.0});
    host.Run(600);
    EXPECT_EQ(host.outputs[3][299], 0.0f);
    EXPECT_EQ(host.outputs[3][300], 1.0f);
    EXPECT_EQ(host.outputs[4][0], 300.0f / 8192.0f);  // the module's block ended at the position
    EXPECT_EQ(host.outputs[1][300], 0.0f);
    EXPECT_NEAR(host.outputs[1][599], 299.0 * 2.0 / 48000.0, 1e-7);
}

TEST(Lv2Time, StoppedTransportHoldsItsPosition) {
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri);
    host.AddPosition(0, {.frame = 24000, .bar = 0, .speed = 0.0f, .bpm = 120.0f, .barBeat = 1.25f});
    host.Run(256);
    host.Run(256);
    EXPECT_EQ(host.outputs[3][0], 0.0f);
    EXPECT_NEAR(host.outputs[1][255], 0.25, 1e-6);
    EXPECT_EQ(host.Instance().Transport().Driver().blockSampleLocation, 24000);
}

TEST(Lv2Time, PositionInABlockOfNoFramesIsKept) {
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri);
    host.AddPosition(0, {.frame = 4800, .speed = 1.0f, .bpm = 150.0f, .beat = 2.25});
    host.Run(0);
    host.Run(16);
    EXPECT_EQ(host.outputs[3][0], 1.0f);
    EXPECT_FLOAT_EQ(host.outputs[2][0], 0.15f);
    EXPECT_NEAR(host.outputs[1][0], 0.25, 1e-9);
}
