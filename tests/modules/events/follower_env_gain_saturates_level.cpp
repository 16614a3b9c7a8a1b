// "Env Gain" 48 dB drives the level of any audible input to its ceiling of 1.0.
#include <gtest/gtest.h>

#include "FollowerSignals.h"

TEST(FollowerEnvGain, Gain48SaturatesLevelAtOne) {
    auto driver = BR::Test::MakeDriver("follower", 44100.0f);
    auto& follower = BR::Test::Follower(*driver);
    driver->SetParameterByName("Env Gain", 48.0f);
    // Peak 0.05 times 10^2.4 (about 251) would be 12.6.
    BR::Test::RenderStepping(*driver, BR::Test::Sine(300.0f, 44100.0f, 8820, 0.05f), 256);
    EXPECT_EQ(follower.Level(), 1.0f);
    EXPECT_EQ(follower.GatedLevel(), 1.0f);
    EXPECT_LE(follower.Envelope(), 1.0f);
    EXPECT_GT(follower.Envelope(), 0.9f);

    // At 0 dB the same input reads its own peak.
    driver->SetParameterByName("Env Gain", 0.0f);
    BR::Test::RenderStepping(*driver, BR::Test::Sine(300.0f, 44100.0f, 4410, 0.05f), 256);
    EXPECT_NEAR(follower.Level(), 0.05f, 0.0005f);
}
