// Silence: no crossing in the window, so no pitch, level 0, a measurement once per last period, and
// the pitch output held from the last sound.
#include <gtest/gtest.h>

#include "FollowerSignals.h"

TEST(FollowerSilence, FreshInstanceMeasuresEveryLastPeriod) {
    auto driver = BR::Test::MakeDriver("follower", 44100.0f);
    auto& follower = BR::Test::Follower(*driver);
    const std::vector<float> silence(4096, 0.0f);
    // The first measurement comes at the first frame; the period starts at 2047 samples.
    BR::Test::RenderStepping(*driver, std::vector<float>(1, 0.0f), 1);
    EXPECT_TRUE(follower.NoPitch());
    EXPECT_EQ(follower.Period(), 2047.0f);
    EXPECT_EQ(follower.NextEvaluation(), 2046u);
    BR::Test::RenderStepping(*driver, std::vector<float>(2046, 0.0f), 2046);
    EXPECT_EQ(follower.NextEvaluation(), 2047u);  // measured again at 2047 samples
    EXPECT_TRUE(follower.NoPitch());
    EXPECT_EQ(follower.Level(), 0.0f);
    EXPECT_EQ(follower.PitchOut(), 0.0f);
}

TEST(FollowerSilence, PitchOutputHeldAfterTheSoundStops) {
    auto driver = BR::Test::MakeDriver("follower", 44100.0f);
    auto& follower = BR::Test::Follower(*driver);
    BR::Test::RenderStepping(*driver, BR::Test::Sine(220.0f, 44100.0f, 22050), 256);
    ASSERT_FALSE(follower.NoPitch());
    EXPECT_NEAR(follower.Period(), 44100.0f / 220.0f, 0.05f);

    // Half a second of silence lets the filters ring out; what they last crossed with is what stays.
    BR::Test::RenderStepping(*driver, std::vector<float>(22050, 0.0f), 256);
    ASSERT_TRUE(follower.NoPitch());
    const float held = follower.PitchOut();
    const float period = follower.Period();
    const uint32_t spacing = uint32_t(period);
    ASSERT_GT(spacing, 0u);

    // One sample per block: each measurement finds nothing and sets the next one trunc(period) ahead.
    std::vector<uint32_t> measuredAt;
    uint32_t frame = 0, before = follower.NextEvaluation();
    BR::Test::RenderStepping(*driver, std::vector<float>(4 * spacing + 2, 0.0f), 1,
                             [&](BrelCorvaneFollower::BrelCorvane& f) {
                                 ++frame;
                                 if (f.NextEvaluation() > before) measuredAt.push_back(frame);
                                 before = f.NextEvaluation();
                                 EXPECT_TRUE(f.NoPitch());
                             });
    ASSERT_GE(measuredAt.size(), 3u);
    for (size_t k = 1; k < measuredAt.size(); ++k)
        EXPECT_EQ(measuredAt[k] - measuredAt[k - 1], spacing);

    const auto out = BR::Test::RenderStepping(*driver, std::vector<float>(66150, 0.0f), 256);
    EXPECT_TRUE(follower.NoPitch());
    EXPECT_EQ(follower.Level(), 0.0f);
    EXPECT_EQ(follower.PitchOut(), held);
    EXPECT_EQ(follower.Period(), period);
    // Output L: "Output Pitch L" 1 and "Output Env L" 0, so the held pitch; the envelope in R falls to 0.
    EXPECT_EQ(out[0].back(), held);
    EXPECT_LT(out[1].back(), 1e-6f);
}
