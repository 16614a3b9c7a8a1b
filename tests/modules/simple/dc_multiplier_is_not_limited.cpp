// "Multiplier" at -2 with "Output Positive" at 1 gives -2: nothing limits the output to -1..1.
#include <gtest/gtest.h>

#include "tests/support/Render.h"

TEST(DCMultiplier, MinusTwoTimesOneIsMinusTwo) {
    auto driver = BR::Test::MakeDriver("dc");
    driver->SetParameterByName("Output Positive L", 1.0f);
    driver->SetParameterByName("Multiplier L", -2.0f);
    driver->SetParameterByName("Output Symmetric R", -0.5f);
    driver->SetParameterByName("Multiplier R", 2.0f);
    const auto out = BR::Test::RenderFrames(*driver, 300, 64);
    for (float v : out[0])
        ASSERT_EQ(v, -2.0f);
    for (float v : out[1])
        ASSERT_EQ(v, -1.0f);
}
