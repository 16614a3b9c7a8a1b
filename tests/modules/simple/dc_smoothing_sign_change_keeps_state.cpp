// Changing "Smoothing" from positive to negative within a run leaves smoothState in place, so the
// output does not jump.
#include <gtest/gtest.h>

#include <cmath>

#include "modules/simple/DC.h"
#include "tests/support/Render.h"

TEST(DCSmoothingSignChange, OutputContinuesFromTheSameState) {
    auto driver = BR::Test::MakeDriver("dc");
    driver->SetParameterByName("Output Positive L", 1.0f);
    driver->SetParameterByName("Smoothing L", 100.0f);
    const auto first = BR::Test::RenderFrames(*driver, 1000, 250);
    const float last = first[0][999];
    ASSERT_GT(last, 0.1f);
    ASSERT_LT(last, 1.0f);

    driver->SetParameterByName("Smoothing L", -100.0f);
    const auto second = BR::Test::RenderFrames(*driver, 1000, 250);
    const float c = std::exp(5.2f / (-100.0f * 0.001f * 48000.0f));
    EXPECT_FLOAT_EQ(second[0][0], (last - 1.0f) * c + 1.0f);
    EXPECT_LT(std::fabs(second[0][0] - last), 0.01f);
    // Switching the stage off also keeps the last sample as its state.
    driver->SetParameterByName("Smoothing L", 0.0f);
    const auto third = BR::Test::RenderFrames(*driver, 10, 10);
    auto& dc = static_cast<BrelCorvaneDC::BrelCorvane&>(driver->Module());
    EXPECT_EQ(third[0][0], 1.0f);
    EXPECT_EQ(dc.Smoother(0).smoothState, 1.0f);
}
