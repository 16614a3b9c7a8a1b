// The curves at the default scales and offsets: the exponential gives 0.5 for 0 and 1 for 1, the
// logarithm is its inverse (1 for 1, 0 for 0.5), computed as ln(u) * 1.442695 + 1 and
// exp(v * 0.6931472); a logarithm of zero or of a negative value gives "Output Offset", not a large
// negative value.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/Render.h"

namespace {
std::vector<float> Curve(float function, const std::vector<float>& x,
                         const std::vector<std::pair<const char*, float>>& more = {}) {
    auto driver = BR::Test::MakeDriver("Function");
    driver->SetParameterByName("Enable L", 1.0f);
    driver->SetParameterByName("Function L", function);
    for (const auto& [name, value] : more)
        driver->SetParameterByName(name, value);
    return BR::Test::RenderFrames(*driver, uint32_t(x.size()), 64, {x})[0];
}
}  // namespace

TEST(FunctionCurves, ExponentialAtDefaults) {
    const auto y = Curve(2.0f, {0.0f, 1.0f, 2.0f, -1.0f});
    EXPECT_FLOAT_EQ(y[0], 0.5f);
    EXPECT_FLOAT_EQ(y[1], 1.0f);
    EXPECT_FLOAT_EQ(y[2], 2.0f);
    EXPECT_FLOAT_EQ(y[3], 0.25f);
    EXPECT_EQ(y[0], std::exp(-1.0f * 0.6931472f));
}

TEST(FunctionCurves, LogarithmIsTheInverse) {
    const auto y = Curve(1.0f, {1.0f, 0.5f, 2.0f, 0.25f});
    EXPECT_FLOAT_EQ(y[0], 1.0f);
    EXPECT_NEAR(y[1], 0.0f, 1e-6f);
    EXPECT_FLOAT_EQ(y[2], 2.0f);
    EXPECT_FLOAT_EQ(y[3], -1.0f);
    EXPECT_EQ(y[2], std::log(2.0f) * 1.442695f + 1.0f);
}

TEST(FunctionCurves, LogarithmOfZeroOrNegativeGivesOutputOffset) {
    const auto y = Curve(1.0f, {0.0f, -0.5f, 1e-11f, -1.0f, 0.5f},
                         {{"Output Scale L", 1.5f}, {"Output Offset L", 0.25f}});
    EXPECT_EQ(y[0], 0.25f);
    EXPECT_EQ(y[1], 0.25f);
    EXPECT_EQ(y[2], 0.25f);  // at or below 1e-10
    EXPECT_EQ(y[3], 0.25f);
    EXPECT_NEAR(y[4], 0.25f, 1e-6f);  // log2(0.5) + 1 = 0
    // Through the input offset: u = x * s + o.
    const auto shifted = Curve(1.0f, {0.5f}, {{"Input Offset L", -0.5f}});
    EXPECT_EQ(shifted[0], 0.0f);
}
