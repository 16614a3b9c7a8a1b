// A channel that is off copies its input and leaves its smoothing state alone; an enabled channel's
// block passes through the output smoothing of its "Smoothing" row.
#include <gtest/gtest.h>

#include "QuantizerRig.h"
#include "tests/support/Render.h"

TEST(QuantizerSmoothing, SlewFromTheStateTheDisabledBlocksLeft) {
    auto driver = BR::Test::MakeQuantizer();
    driver->SetParameterByName("Enable L", 1);
    driver->SetParameterByName("Steps L", 4);
    driver->SetParameterByName("Smoothing L", 10);  // 480 samples from -1 to 1: 2 / 480 a sample
    const float step = 2.0f / (10.0f * 0.001f * 48000.0f);
    std::vector<float> zeros(8, 0.0f), ones(8, 1.0f), halves(8, 0.5f);
    EXPECT_EQ(BR::Test::RenderFrames(*driver, 8, 8, {zeros, zeros})[0], zeros);

    driver->SetParameterByName("Enable L", 0);
    EXPECT_EQ(BR::Test::RenderFrames(*driver, 8, 8, {ones, ones})[0], ones);  // a plain copy
    EXPECT_EQ(BR::Test::Quantizer(*driver).CurrentNote(0), -1);

    driver->SetParameterByName("Enable L", 1);
    const std::vector<float> out = BR::Test::RenderFrames(*driver, 8, 8, {halves, halves})[0];
    // The slew starts from 0, where the last enabled block left it, not from the copied 1.
    EXPECT_FLOAT_EQ(out[0], step);
    EXPECT_FLOAT_EQ(out[7], 8.0f * step);
}

TEST(QuantizerSmoothing, OnePoleForNegativeTimes) {
    auto driver = BR::Test::MakeQuantizer();
    driver->SetParameterByName("Enable R", 1);
    driver->SetParameterByName("Steps R", 4);
    driver->SetParameterByName("Smoothing R", -2);
    const float coefficient = std::exp(5.2f / (-2.0f * 0.001f * 48000.0f));
    std::vector<float> in(4, 0.6f);  // quantized to 0.5
    const std::vector<float> out = BR::Test::RenderFrames(*driver, 4, 4, {in, in})[1];
    float state = 0.0f;
    for (int i = 0; i < 4; ++i) {
        state = (state - 0.5f) * coefficient + 0.5f;
        EXPECT_FLOAT_EQ(out[size_t(i)], state);
    }
}
