// "Smoothing" -0.4 ms at 44100 is about -17.6 samples: a one-pole; -0.01 ms (-0.44 samples) is under
// half a sample, so the value passes unchanged.
#include <gtest/gtest.h>

#include "FollowerSignals.h"

TEST(FollowerSmoothing, MinusPoint4MsIsAOnePoleAndMinusPoint01MsPasses) {
    const float rate = 44100.0f;
    auto driver = BR::Test::MakeDriver("follower", rate);
    auto& follower = BR::Test::Follower(*driver);
    driver->SetParameterByName("Smoothing R", -0.4f);
    driver->SetParameterByName("Smoothing L", -0.01f);
    driver->SetParameterByName("Output Env L", 1.0f);  // L: envelope and pitch; R: envelope only
    const auto out = BR::Test::RenderStepping(*driver, BR::Test::Sine(441.0f, rate, 2048, 0.2f), 2048);
    const float m = -0.4f * 0.001f * rate;
    EXPECT_NEAR(m, -17.64f, 0.01f);
    EXPECT_FLOAT_EQ(follower.Smoother(1).smoothCoefficient, std::exp(5.2f / m));
    EXPECT_EQ(follower.Smoother(1).slewStep, 0.0f);
    EXPECT_EQ(follower.Smoother(0).smoothCoefficient, 0.0f);
    EXPECT_EQ(follower.Smoother(0).slewStep, 0.0f);

    // Rebuild output R's one-pole from an unsmoothed copy: a second instance with R unsmoothed.
    auto plain = BR::Test::MakeDriver("follower", rate);
    const auto reference = BR::Test::RenderStepping(*plain, BR::Test::Sine(441.0f, rate, 2048, 0.2f), 2048);
    const float c = std::exp(5.2f / m);
    float s = 0.0f;
    for (size_t i = 0; i < reference[1].size(); ++i) {
        s = (s - reference[1][i]) * c + reference[1][i];
        ASSERT_FLOAT_EQ(out[1][i], s) << i;
    }
    // Output L at -0.01 ms equals the envelope plus the pitch, sample for sample.
    for (size_t i = 0; i < reference[0].size(); ++i)
        ASSERT_EQ(out[0][i], reference[0][i] + reference[1][i]) << i;
}
