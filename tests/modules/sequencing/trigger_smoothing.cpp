// The output smoothing of the whole sub-block: a positive time is a slew limit (full scale of 2 in
// that many milliseconds), a negative one a one-pole, values within half a sample are off.
#include <gtest/gtest.h>

#include <cmath>

#include "modules/sequencing/Trigger.h"
#include "tests/support/Render.h"

TEST(TriggerSmoothing, SlewLimitsTheGate) {
    auto driver = BR::Test::MakeDriver("trigger");
    driver->SetParameterByName("Smoothing", 10.0f);  // 480 samples for a swing of 2: step 1/240
    const auto out = BR::Test::RenderFrames(*driver, 512, 100, {}, {{0, {0x90, 60, 127}}});
    auto& trigger = static_cast<BrelCorvaneTrigger::BrelCorvane&>(driver->Module());
    const float step = trigger.Smoother().slewStep;
    EXPECT_FLOAT_EQ(step, 2.0f / 480.0f);
    float state = 0.0f;
    for (size_t i = 0; i < 512; ++i) {
        const float d = 1.0f - state;
        state = d >= step ? state + step : 1.0f;
        ASSERT_EQ(out[0][i], state) << i;
    }
    EXPECT_LT(out[0][237], 1.0f);  // about 240 samples for a swing of 1
    EXPECT_EQ(out[0][240], 1.0f);
}

TEST(TriggerSmoothing, NegativeIsAOnePole) {
    auto driver = BR::Test::MakeDriver("trigger");
    driver->SetParameterByName("Smoothing", -2.0f);  // s = -96
    const auto out = BR::Test::RenderFrames(*driver, 256, 64, {}, {{0, {0x90, 60, 127}}});
    const float c = std::exp(5.2f / -96.0f);
    float y = 0.0f;
    for (size_t i = 0; i < 256; ++i) {
        y = (y - 1.0f) * c + 1.0f;
        ASSERT_FLOAT_EQ(out[0][i], y) << i;
    }
}

TEST(TriggerSmoothing, WithinHalfASampleIsOff) {
    auto driver = BR::Test::MakeDriver("trigger");
    driver->SetParameterByName("Smoothing", 0.01f);  // 0.48 samples
    const auto out = BR::Test::RenderFrames(*driver, 64, 64, {}, {{10, {0x90, 60, 127}}});
    EXPECT_EQ(out[0][9], 0.0f);
    EXPECT_EQ(out[0][10], 1.0f);
    char text[32];
    driver->Module().GetParameterValueText(23, text);
    EXPECT_STREQ(text, "Off");
}
