// Velocity mode: (max - min) * velocity + min, where velocity stays after the note ends.
#include <gtest/gtest.h>

#include "tests/support/Render.h"

TEST(TriggerVelocity, KeepsLastVelocityAfterNoteOff) {
    auto driver = BR::Test::MakeDriver("trigger");
    driver->SetParameterByName("Output Mode", 3.0f);
    driver->SetParameterByName("Min Voltage", -1.0f);
    driver->SetParameterByName("Max Voltage", 1.0f);
    const auto out = BR::Test::RenderFrames(
        *driver, 512, 128, {}, {{100, {0x90, 60, 64}}, {200, {0x80, 60, 0}}, {300, {0x90, 61, 127}}});
    const float expected = 2.0f * (64.0f * 0.007874016f) - 1.0f;
    EXPECT_EQ(out[0][99], -1.0f);  // velocity 0 before any note
    EXPECT_FLOAT_EQ(out[0][100], expected);
    EXPECT_FLOAT_EQ(out[0][250], expected);
    EXPECT_FLOAT_EQ(out[0][511], expected);  // another note does not match
}
