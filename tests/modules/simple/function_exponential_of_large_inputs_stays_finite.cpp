// The exponential of a large input (the soak fed it a Follower's pitch) stays finite: the power is held
// at 2^115, so that no output scale or offset makes it infinite; inputs below that are untouched.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/Render.h"

TEST(FunctionCurves, ExponentialOfLargeInputsStaysFinite) {
    auto driver = BR::Test::MakeDriver("Function");
    driver->SetParameterByName("Enable L", 1.0f);
    driver->SetParameterByName("Function L", 2.0f);  // exponential
    driver->SetParameterByName("Input Scale L", 2.0f);
    driver->SetParameterByName("Output Scale L", -2.0f);
    const std::vector<float> x = {1000.0f, 1e30f, 3.0e38f, 57.0f, 0.5f};
    const auto y = BR::Test::RenderFrames(*driver, uint32_t(x.size()), 64, {x})[0];
    const float held = std::exp(115.0f * 0.6931472f) * -2.0f;
    EXPECT_EQ(y[0], held);
    EXPECT_EQ(y[1], held);
    EXPECT_EQ(y[2], held);
    for (float v : y)
        EXPECT_TRUE(std::isfinite(v));
    EXPECT_EQ(y[3], std::exp((57.0f * 2.0f - 1.0f) * 0.6931472f) * -2.0f);  // 2^113, below the hold
    EXPECT_FLOAT_EQ(y[4], -2.0f);                                           // 2^0 * -2
}
