// "Manual" snaps to "Steps" even steps across -1..1: values fall to the step at or below them, exact
// negative grid points land one step lower, and "Offset", "Transpose" and "Steps Fine" move the grid.
#include <gtest/gtest.h>

#include "QuantizerRig.h"
#include "tests/support/Render.h"

namespace {

const std::vector<float> kInput = {0.3f, 0.5f, 0.74f, -0.1f, -0.5f, -0.6f, -1.0f, 0.0f, 1.0f, 0.76f};

std::vector<float> RenderLeft(BR::HostDriver& driver) {
    return BR::Test::RenderFrames(driver, uint32_t(kInput.size()), 256, {kInput, kInput})[0];
}

}  // namespace

TEST(QuantizerManual, ExactGridSteps) {
    auto driver = BR::Test::MakeQuantizer();
    driver->SetParameterByName("Enable L", 1);
    driver->SetParameterByName("Steps L", 4);  // steps of 0.5
    const std::vector<float> out = RenderLeft(*driver);
    // -0.5, -1.0 and 0.5 are grid points; only the negative ones land a step lower.
    const std::vector<float> expected = {0.0f, 0.5f, 0.5f, -0.5f, -1.0f, -1.0f, -1.5f, 0.0f, 1.0f, 0.5f};
    EXPECT_EQ(out, expected);
    EXPECT_EQ(BR::Test::Quantizer(*driver).CurrentNote(0), -1);
}

TEST(QuantizerManual, OffsetTransposeAndFineSteps) {
    auto driver = BR::Test::MakeQuantizer();
    driver->SetParameterByName("Enable L", 1);
    driver->SetParameterByName("Steps L", 4);
    driver->SetParameterByName("Offset L", 50);  // half a step: the grid lies at 0.25 + k * 0.5
    std::vector<float> out = RenderLeft(*driver);
    EXPECT_EQ(out[0], 0.25f);   // 0.3
    EXPECT_EQ(out[2], 0.25f);   // 0.74 lies below 0.75
    EXPECT_EQ(out[9], 0.75f);   // 0.76
    EXPECT_EQ(out[7], -0.25f);  // 0.0
    EXPECT_EQ(out[6], -1.25f);  // -1.0

    driver->SetParameterByName("Offset L", 0);
    driver->SetParameterByName("Transpose L", 2);  // two steps up
    out = RenderLeft(*driver);
    EXPECT_EQ(out[0], 1.0f);
    EXPECT_EQ(out[4], 0.0f);  // -0.5, a step lower, then two up

    // "Steps Fine" adds to "Steps": 3 and 1 make the same grid as 4.
    driver->SetParameterByName("Transpose L", 0);
    driver->SetParameterByName("Steps L", 3);
    driver->SetParameterByName("Steps Fine L", 1);
    out = RenderLeft(*driver);
    EXPECT_EQ(out, (std::vector<float>{0.0f, 0.5f, 0.5f, -0.5f, -1.0f, -1.0f, -1.5f, 0.0f, 1.0f, 0.5f}));
}

TEST(QuantizerManual, DefaultNinetySixStepsOnTheRightChannel) {
    auto driver = BR::Test::MakeQuantizer();
    driver->SetParameterByName("Enable R", 1);  // 96 steps: one step is 1/48
    const std::vector<float> in = {0.5f / 48.0f, 1.0f / 48.0f, -0.25f / 48.0f, 0.7f};
    const auto out = BR::Test::RenderFrames(*driver, 4, 4, {in, in});
    EXPECT_EQ(out[0], in);  // the left channel is off and passes its input
    EXPECT_EQ(out[1][0], 0.0f);
    EXPECT_EQ(out[1][1], 1.0f / 48.0f);
    EXPECT_EQ(out[1][2], -1.0f / 48.0f);
    EXPECT_EQ(out[1][3], 33.0f / 48.0f);  // 0.7 * 48 = 33.6
}

TEST(QuantizerManual, NoStepsLeftPassesTheSignal) {
    auto driver = BR::Test::MakeQuantizer();
    driver->SetParameterByName("Enable L", 1);
    driver->SetParameterByName("Steps L", 1);
    driver->SetParameterByName("Steps Fine L", -1);
    EXPECT_EQ(RenderLeft(*driver), kInput);
}
