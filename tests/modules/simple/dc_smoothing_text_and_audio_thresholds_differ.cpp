// The text and the audio path use different thresholds: 0.4 ms reads "Off" while at 44.1 kHz s is
// about 17.6 and the stage acts; at 0.01 ms s is below 0.5 and the stage is off.
#include <gtest/gtest.h>

#include "modules/simple/DC.h"
#include "tests/support/Render.h"

namespace {
std::string ValueText(BrelCorvaneBase& module, int32_t row) {
    char out[25];
    module.GetParameterValueText(row, out);
    return out;
}
}  // namespace

TEST(DCSmoothingThresholds, PointFourMillisecondsReadsOffButActs) {
    auto driver = BR::Test::MakeDriver("dc", 44100.0f);
    driver->SetParameterByName("Output Positive L", 1.0f);
    driver->SetParameterByName("Smoothing L", 0.4f);
    EXPECT_EQ(ValueText(driver->Module(), BrelCorvaneDC::kSmoothingL), "Off");
    const auto out = BR::Test::RenderFrames(*driver, 64, 64);
    auto& dc = static_cast<BrelCorvaneDC::BrelCorvane&>(driver->Module());
    EXPECT_NEAR(dc.Smoother(0).slewStep, 2.0f / 17.64f, 1e-5f);
    EXPECT_LT(out[0][0], 1.0f);  // the stage slews
    EXPECT_EQ(out[0][63], 1.0f);
}

TEST(DCSmoothingThresholds, PointZeroOneMillisecondsIsOff) {
    auto driver = BR::Test::MakeDriver("dc", 44100.0f);
    driver->SetParameterByName("Output Positive L", 1.0f);
    driver->SetParameterByName("Smoothing L", 0.01f);
    driver->SetParameterByName("Smoothing R", -0.01f);
    const auto out = BR::Test::RenderFrames(*driver, 16, 16);
    auto& dc = static_cast<BrelCorvaneDC::BrelCorvane&>(driver->Module());
    EXPECT_EQ(dc.Smoother(0).slewStep, 0.0f);
    EXPECT_EQ(dc.Smoother(0).smoothCoefficient, 0.0f);
    EXPECT_EQ(dc.Smoother(1).smoothCoefficient, 0.0f);
    EXPECT_EQ(out[0][0], 1.0f);
    EXPECT_EQ(ValueText(driver->Module(), BrelCorvaneDC::kSmoothingR), "Off");
    driver->SetParameterByName("Smoothing R", 0.75f);
    EXPECT_EQ(ValueText(driver->Module(), BrelCorvaneDC::kSmoothingR), "0.750");
}
