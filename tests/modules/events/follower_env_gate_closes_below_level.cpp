// "Env Gate" 0.5 against a level of 0.4 gives a gated level of 0, and the envelope then falls with the
// release coefficient alone.
#include <gtest/gtest.h>

#include "FollowerSignals.h"

TEST(FollowerEnvGate, LevelBelowGateLetsTheEnvelopeFallWithRelease) {
    const float rate = 44100.0f;
    auto driver = BR::Test::MakeDriver("follower", rate);
    auto& follower = BR::Test::Follower(*driver);
    driver->SetParameterByName("Env Gain", 0.0f);  // level = peak
    driver->SetParameterByName("Env Attack", 1.0f);
    driver->SetParameterByName("Env Release", 100.0f);
    // The same 0.4 sine on both inputs: the L+R weights of 0.5 give a peak of 0.4.
    BR::Test::RenderStepping(*driver, BR::Test::Sine(441.0f, rate, 22050, 0.4f), 256);
    ASSERT_NEAR(follower.Level(), 0.4f, 0.001f);
    EXPECT_EQ(follower.GatedLevel(), follower.Level());
    const float open = follower.Envelope();
    EXPECT_NEAR(open, 0.4f, 0.01f);

    driver->SetParameterByName("Env Gate", 0.5f);
    const auto out = BR::Test::RenderStepping(*driver, BR::Test::Sine(441.0f, rate, 4410, 0.4f), 4410);
    EXPECT_NEAR(follower.Level(), 0.4f, 0.001f);
    EXPECT_EQ(follower.GatedLevel(), 0.0f);
    // Output R is the envelope ("Output Env R" 1, "Output Pitch R" 0): after the first measurement of the
    // block each sample is the one before times the release coefficient.
    const float release = std::exp(-1.0f / (rate * 0.001f * 100.0f));
    const float attack = std::exp(-1.0f / (rate * 0.001f * 1.0f));
    const std::vector<float>& env = out[1];
    int checked = 0;
    for (size_t i = 200; i + 1 < env.size(); ++i) {
        ASSERT_GT(env[i], 0.0f);
        EXPECT_NEAR(env[i + 1] / env[i], release, 1e-5f) << i;
        ++checked;
    }
    EXPECT_GT(checked, 4000);
    EXPECT_NE(release, attack);
    EXPECT_NEAR(env.back(), open * std::pow(release, float(env.size())), 0.02f);
    EXPECT_LT(env.back(), open * 0.5f);
}
