// The indexed rows' value names, and the "Off" texts of "OSC Port Offset" and "Smoothing", the only
// rows with display strings.
#include <gtest/gtest.h>

#include "tests/support/Render.h"

TEST(TriggerTexts, IndexedRowsAndOffTexts) {
    auto driver = BR::Test::MakeDriver("trigger");
    BrelCorvaneBase& module = driver->Module();
    EXPECT_EQ(module.NumTableParameters(), 33);
    char text[32];
    const char* modes[4] = {"Gate", "Trigger", "Envelope", "Velocity"};
    for (int m = 0; m < 4; ++m) {
        driver->SetParameterByName("Output Mode", float(m));
        module.GetParameterValueText(1, text);
        EXPECT_STREQ(text, modes[m]);
    }
    driver->SetParameterByName("Env 1 Multiplier", 3.0f);
    module.GetParameterValueText(27, text);
    EXPECT_STREQ(text, "100");
    module.GetParameterValueText(30, text);
    EXPECT_STREQ(text, "Exponential");
    driver->SetParameterByName("Env 1 Type A3", 0.0f);
    module.GetParameterValueText(30, text);
    EXPECT_STREQ(text, "Parabolic");
    module.GetParameterValueText(0, text);
    EXPECT_STREQ(text, "Off");
    for (int32_t row = 0; row < 33; ++row)
        EXPECT_EQ(module.GetParameterFlags(row) != 0, row == 0 || row == 23) << row;
    EXPECT_STREQ(module.GetModuleName(), "Corvane Trigger");
    EXPECT_STREQ(module.GetGuiScriptName(), "gui_trigger.lua");
}
