// "Override Gate" replaces the gate only in Gate mode: in Envelope mode the override is ignored.
#include <gtest/gtest.h>

#include "tests/support/Render.h"

namespace {
std::unique_ptr<BR::HostDriver> Overridden(float mode) {
    auto driver = BR::Test::MakeDriver("trigger");
    driver->SetParameterByName("Output Mode", mode);
    driver->SetParameterByName("Override Gate", 1.0f);
    driver->SetParameterByName("Gate", 0.25f);
    driver->SetParameterByName("Min Voltage", -0.5f);
    driver->SetParameterByName("Max Voltage", 0.5f);
    return driver;
}
}  // namespace

TEST(TriggerOverride, GateModeGivesTheFixedLevel) {
    auto driver = Overridden(0.0f);
    const auto out = BR::Test::RenderFrames(*driver, 512, 128, {}, {{100, {0x90, 60, 100}}});
    for (float v : out[0])
        ASSERT_FLOAT_EQ(v, 1.0f * 0.25f - 0.5f);
}

TEST(TriggerOverride, EnvelopeModeIgnoresIt) {
    auto driver = Overridden(2.0f);
    driver->SetParameterByName("Env 1 Time A2", 0.001f);  // 48 samples to the top
    const auto out = BR::Test::RenderFrames(*driver, 512, 128, {}, {{100, {0x90, 60, 127}}});
    for (int i = 0; i < 100; ++i)
        ASSERT_FLOAT_EQ(out[0][size_t(i)], -0.5f) << i;  // level 0 maps to Min Voltage
    EXPECT_GT(out[0][120], -0.4f);
    EXPECT_NEAR(out[0][148], 0.5f, 1e-3f);  // A2 reaches level 1, Max Voltage
}
