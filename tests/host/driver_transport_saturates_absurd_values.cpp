// Whatever a host reports (a tempo near 0, positions near the ends of a double, NaN), the driver's
// transport gives whole numbers that saturate at the int64 range instead of overflowing.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "host/DriverTransport.h"

namespace {
constexpr int64_t kSaturated = 9200000000000000000;  // the limit conversions stop at
}

TEST(DriverTransportBounds, TinyTempoWithALoopSaturates) {
    BR::DriverTransport t;
    t.tempo = 1e-300;
    t.looping = true;
    t.loopStart = 0;
    t.loopEnd = 1;
    EXPECT_EQ(t.FramesUntilLoopEnd(), kSaturated);
    t.Advance(1024);
    EXPECT_EQ(t.GetCurrentNativeSampleLocation(), 1024);
    EXPECT_EQ(t.GetCustomTickPosition(1024), 0);
}

TEST(DriverTransportBounds, HugeLoopAndPositionsSaturate) {
    BR::DriverTransport t;
    t.looping = true;
    t.loopStart = -1e300;
    t.loopEnd = 1e300;
    bool on = false;
    int64_t start = 0, end = 0;
    t.GetCurrentLoopPosition(on, start, end);
    EXPECT_EQ(start, -kSaturated);
    EXPECT_EQ(end, kSaturated);
    EXPECT_EQ(t.FramesUntilLoopEnd(), kSaturated);
    t.Advance(256);
    EXPECT_EQ(t.GetCurrentNativeSampleLocation(), 256);

    t.blockQuarter = 1e300;
    EXPECT_EQ(t.GetCustomTickPosition(t.blockSampleLocation), kSaturated);
    int32_t bars = 0, beats = 0;
    int64_t ticks = 0;
    t.GetBarBeatPosition(bars, beats, ticks, t.blockSampleLocation);
    EXPECT_GE(beats, 1);
    EXPECT_LT(ticks, 960000);

    // A location at the end of the timeline moves on no further.
    t.looping = false;
    t.blockSampleLocation = std::numeric_limits<int64_t>::max() - 10;
    t.Advance(100);
    EXPECT_EQ(t.blockSampleLocation, std::numeric_limits<int64_t>::max());
}

TEST(DriverTransportBounds, NaNGivesNoWrapAndTickZero) {
    BR::DriverTransport t;
    t.looping = true;
    t.loopStart = 0;
    t.loopEnd = 4;
    t.tempo = std::nan("");
    EXPECT_EQ(t.FramesUntilLoopEnd(), -1);
    t.tempo = 120;
    t.blockQuarter = std::nan("");
    EXPECT_EQ(t.GetCustomTickPosition(0), 0);
}
