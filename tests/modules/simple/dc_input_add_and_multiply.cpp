// y = (x * "Input Multiply" + (1 - "Input Multiply")) * level + x * "Input Add", per channel.
#include <gtest/gtest.h>

#include "tests/support/Render.h"

TEST(DCInputControls, MultiplyMakesTheInputAGainAndAddAddsIt) {
    auto driver = BR::Test::MakeDriver("dc");
    driver->SetParameterByName("Output Positive L", 0.8f);
    driver->SetParameterByName("Input Multiply L", 1.0f);
    driver->SetParameterByName("Output Positive R", 0.4f);
    driver->SetParameterByName("Input Multiply R", 0.5f);
    driver->SetParameterByName("Input Add R", 1.0f);
    std::vector<float> left(100), right(100);
    for (int i = 0; i < 100; ++i) {
        left[size_t(i)] = 0.01f * float(i);
        right[size_t(i)] = -0.005f * float(i);
    }
    const auto out = BR::Test::RenderFrames(*driver, 100, 32, {left, right});
    for (size_t i = 0; i < 100; ++i) {
        EXPECT_FLOAT_EQ(out[0][i], left[i] * 0.8f) << i;
        EXPECT_FLOAT_EQ(out[1][i], (right[i] * 0.5f + 0.5f) * 0.4f + right[i]) << i;
    }
}
