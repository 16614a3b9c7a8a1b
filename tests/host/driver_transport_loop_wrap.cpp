// A loop from START to END quarter notes: the frames until the end are counted from the block's
// start; reaching it, position and timeline jump back by the loop's length. No wrap is due when the
// transport stands, loops nothing, or starts at or after the end.
#include <gtest/gtest.h>

#include "host/DriverTransport.h"

namespace {
BR::DriverTransport Looping(double start, double end, double position) {
    BR::DriverTransport t;  // 120 BPM, 48 kHz: 24000 frames a quarter note
    t.looping = true;
    t.loopStart = start;
    t.loopEnd = end;
    t.blockQuarter = position;
    t.blockSampleLocation = int64_t(position * 24000);
    return t;
}
}  // namespace

TEST(DriverTransportLoop, WrapsAtTheEnd) {
    BR::DriverTransport t = Looping(1.0, 3.0, 2.5);
    EXPECT_EQ(t.FramesUntilLoopEnd(), 12000);
    t.Advance(5000);
    EXPECT_EQ(t.FramesUntilLoopEnd(), 7000);
    t.Advance(7000);
    EXPECT_DOUBLE_EQ(t.blockQuarter, 1.0);
    EXPECT_EQ(t.GetCurrentNativeSampleLocation(), 24000);  // 72000 - 48000
    EXPECT_EQ(t.FramesUntilLoopEnd(), 48000);

    bool on = false;
    int64_t startTick = 0, endTick = 0;
    t.GetCurrentLoopPosition(on, startTick, endTick);
    EXPECT_TRUE(on);
    EXPECT_EQ(startTick, 960000);
    EXPECT_EQ(endTick, 2880000);
}

TEST(DriverTransportLoop, ABlockAcrossTheEndWrapsWhatIsPast) {
    BR::DriverTransport t = Looping(0.0, 1.0, 0.5);
    t.Advance(18000);  // to 1.25, past the end by a quarter
    EXPECT_DOUBLE_EQ(t.blockQuarter, 0.25);
    EXPECT_EQ(t.GetCurrentNativeSampleLocation(), 6000);
}

TEST(DriverTransportLoop, NoWrapDue) {
    BR::DriverTransport t = Looping(1.0, 3.0, 2.5);
    t.playing = false;
    EXPECT_EQ(t.FramesUntilLoopEnd(), -1);
    t = Looping(1.0, 3.0, 3.0);
    EXPECT_EQ(t.FramesUntilLoopEnd(), -1);  // at the end: plays on
    t.Advance(24000);
    EXPECT_DOUBLE_EQ(t.blockQuarter, 4.0);
    t = Looping(1.0, 3.0, 2.0);
    t.looping = false;
    EXPECT_EQ(t.FramesUntilLoopEnd(), -1);
    t.Advance(48000);
    EXPECT_DOUBLE_EQ(t.blockQuarter, 4.0);
}

TEST(DriverTransportLoop, AnEndLessThanAFrameAwayIsOneFrame) {
    BR::DriverTransport t = Looping(0.0, 1.0, 1.0 - 0.3 / 24000.0);
    EXPECT_EQ(t.FramesUntilLoopEnd(), 1);
    t = Looping(0.0, 1.0, 1.0 - 2.5 / 24000.0);
    EXPECT_EQ(t.FramesUntilLoopEnd(), 3);
}
