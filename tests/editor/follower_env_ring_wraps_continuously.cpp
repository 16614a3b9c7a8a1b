// The Follower's level history: each frame writes the clamped level, envelope and peak at the next ring
// entry; at the wrap the last entry is copied to the first so that the line runs on without a gap. The
// pitch history's one ring does the same.
#include <gtest/gtest.h>

#include "editor/ZPmanager.h"
#include "editor/widgets/InfoDisplays.h"
#include "modules/events/Follower.h"
#include "tests/support/Render.h"

namespace BR::Test {

TEST(FollowerEnvRing, LastEntryCopiedToFirstAtWrap) {
    auto driver = MakeDriver("follower");
    ZPmanager manager(&driver->Module());
    FollowerEnvDisplay display(&manager);
    ModuleStatusBlock* block = nullptr;
    ASSERT_EQ(driver->Module().GetProperty(kPropertyStatusBlock, &block), kNoErr);
    auto& status = block->As<BrelCorvaneFollower::FollowerStatus>();
    constexpr int n = FollowerEnvDisplay::kLength;
    for (int k = 1; k < n; ++k) {
        status.level = 0.001f * float(k);
        status.envelope = 0.5f + 0.001f * float(k);
        display.Animate();
        EXPECT_EQ(display.position, k);
    }
    EXPECT_FLOAT_EQ(display.levelRing[n - 1], 0.001f * float(n - 1));
    EXPECT_FLOAT_EQ(display.levelRing[0], 0.0f);
    const float lastPeak = display.peakRing[n - 1];
    EXPECT_GT(lastPeak, 0.0f);

    // The wrap: entry 0 takes entry n-1 of all three rings, and the new values go to entry 1.
    status.level = 2.0f;      // clamped to 1
    status.envelope = -1.0f;  // clamped to 0
    display.Animate();
    EXPECT_EQ(display.position, 1);
    EXPECT_FLOAT_EQ(display.levelRing[0], 0.001f * float(n - 1));
    EXPECT_FLOAT_EQ(display.envelopeRing[0], 0.5f + 0.001f * float(n - 1));
    EXPECT_FLOAT_EQ(display.peakRing[0], lastPeak);
    EXPECT_FLOAT_EQ(display.levelRing[1], 1.0f);
    EXPECT_FLOAT_EQ(display.envelopeRing[1], 0.0f);
    EXPECT_FLOAT_EQ(display.peakRing[1], 1.0f);
}

TEST(FollowerEnvRing, PitchHistoryWrapsTheSameWay) {
    auto driver = MakeDriver("follower");
    ZPmanager manager(&driver->Module());
    FollowerPitchDisplay display(&manager);
    ModuleStatusBlock* block = nullptr;
    ASSERT_EQ(driver->Module().GetProperty(kPropertyStatusBlock, &block), kNoErr);
    auto& status = block->As<BrelCorvaneFollower::FollowerStatus>();
    constexpr int n = FollowerPitchDisplay::kLength;
    status.noPitch = 0;
    status.frequency = 500.0f;  // half way up the axis
    for (int k = 1; k < n; ++k)
        display.Animate();
    EXPECT_EQ(display.position, n - 1);
    EXPECT_FLOAT_EQ(display.ring[0], 0.0f);
    status.noPitch = 1;  // the new sweep starts at the bottom
    display.Animate();
    EXPECT_EQ(display.position, 1);
    EXPECT_NEAR(display.ring[0], 0.5f, 1e-5f);
    EXPECT_FLOAT_EQ(display.ring[1], 0.0f);
}

}  // namespace BR::Test
