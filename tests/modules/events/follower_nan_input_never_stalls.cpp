// NaN, infinite and huge input neither crash the Follower nor stall it: measurements keep coming at
// most a window apart, and clean input afterwards is followed again once the filters are reset.
#include <gtest/gtest.h>

#include <limits>

#include "FollowerSignals.h"

TEST(FollowerBadInput, NaNAndInfinityKeepMeasuring) {
    auto driver = BR::Test::MakeDriver("follower", 44100.0f);
    std::vector<float> bad = BR::Test::Sine(440.0f, 44100.0f, 44100);
    for (size_t i = 0; i < bad.size(); i += 97)
        bad[i] = std::numeric_limits<float>::quiet_NaN();
    bad[5000] = std::numeric_limits<float>::infinity();
    bad[6000] = -1e30f;
    uint32_t blocks = 0;
    BR::Test::RenderStepping(*driver, bad, 64, [&](BrelCorvaneFollower::BrelCorvane& f) {
        ++blocks;
        // Whatever the numbers, the next measurement is never further away than the longest period.
        EXPECT_LE(f.NextEvaluation(), 2047u);
    });
    EXPECT_EQ(blocks, (44100u + 63u) / 64u);

    // A module reset clears the poisoned filters; the pitch is found again.
    driver->Module().InitModule();
    BR::Test::RenderStepping(*driver, BR::Test::Sine(440.0f, 44100.0f, 22050), 256);
    EXPECT_FALSE(BR::Test::Follower(*driver).NoPitch());
    EXPECT_NEAR(BR::Test::Follower(*driver).Frequency(), 440.0f, 0.5f);
}
