// The driver's transport: positions in quarter notes from the block's start at the tempo, ticks of
// 960000 to the quarter note; Advance moves the block start on while playing and not while stopped.
#include <gtest/gtest.h>

#include "host/DriverTransport.h"

TEST(DriverTransport, PositionAdvancesAtTheTempo) {
    BR::DriverTransport t;  // 120 BPM at 48 kHz: 24000 frames a quarter note
    t.blockQuarter = 1.0;
    t.blockSampleLocation = 48000;
    EXPECT_EQ(t.GetCustomTickPosition(48000), 960000);
    EXPECT_EQ(t.GetCustomTickPosition(48000 + 24000), 1920000);  // extrapolated inside a block
    EXPECT_EQ(t.GetCustomTickPosition(48000 + 6000), 1200000);
    t.Advance(12000);
    EXPECT_EQ(t.GetCurrentNativeSampleLocation(), 60000);
    EXPECT_DOUBLE_EQ(t.blockQuarter, 1.5);
    EXPECT_EQ(t.GetCustomTickPosition(t.GetCurrentNativeSampleLocation()), 1440000);
    EXPECT_DOUBLE_EQ(BR::CurrentBeatPosition(&t), 1.5);

    t.tempo = 90;  // 32000 frames a quarter note
    t.Advance(8000);
    EXPECT_DOUBLE_EQ(t.blockQuarter, 1.75);
    EXPECT_EQ(t.GetCurrentTempo(), 90.0);
}

TEST(DriverTransport, StoppedStandsStill) {
    BR::DriverTransport t;
    t.blockQuarter = 3.0;
    t.blockSampleLocation = 72000;
    t.playing = false;
    EXPECT_FALSE(t.IsTransportPlaying());
    EXPECT_EQ(t.GetCustomTickPosition(72000 + 5000), 2880000);  // no extrapolation
    t.Advance(10000);
    EXPECT_EQ(t.GetCurrentNativeSampleLocation(), 72000);
    EXPECT_DOUBLE_EQ(t.blockQuarter, 3.0);
    t.playing = true;
    t.Advance(24000);
    EXPECT_DOUBLE_EQ(t.blockQuarter, 4.0);
}
