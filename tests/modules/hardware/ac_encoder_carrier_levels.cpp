// AC Encoder: a square carrier at half the rate whose amplitude is the scaled input, held within the
// output levels; the first sample after start is positive and the carrier runs on across blocks of
// any length; a disabled channel passes its input; non-numbers and infinities stay within the levels.
#include <gtest/gtest.h>

#include <cmath>

#include "modules/hardware/ACEncoder.h"
#include "tests/support/Render.h"

namespace {
BR::Test::Channels Constant(float l, float r, uint32_t frames) {
    return {std::vector<float>(frames, l), std::vector<float>(frames, r)};
}
}  // namespace

TEST(ACEncoder, BipolarZeroAlternatesHalf) {
    auto driver = BR::Test::MakeDriver("acencoder");
    driver->SetParameterByName("Enable L", 1.0f);
    const auto out = BR::Test::RenderFrames(*driver, 8, 8, Constant(0.0f, 0.3f, 8));
    EXPECT_EQ(out[0], (std::vector<float>{0.5f, -0.5f, 0.5f, -0.5f, 0.5f, -0.5f, 0.5f, -0.5f}));
    EXPECT_EQ(out[1], std::vector<float>(8, 0.3f));  // disabled: copied through
}

TEST(ACEncoder, UnipolarMinusOneIsSilent) {
    auto driver = BR::Test::MakeDriver("acencoder");
    driver->SetParameterByName("Enable R", 1.0f);
    driver->SetParameterByName("Input Polarity R", 1.0f);
    const auto out = BR::Test::RenderFrames(*driver, 16, 16, Constant(0.0f, -1.0f, 16));
    for (float v : out[1])
        EXPECT_EQ(std::fabs(v), 0.0f);
}

TEST(ACEncoder, InputAboveRangeHeldAtMaxLevel) {
    auto driver = BR::Test::MakeDriver("acencoder");
    driver->SetParameterByName("Enable L", 1.0f);
    driver->SetParameterByName("Max Output Level L", 0.8f);
    const auto out = BR::Test::RenderFrames(*driver, 6, 6, Constant(2.0f, 0.0f, 6));
    EXPECT_EQ(out[0], (std::vector<float>{0.8f, -0.8f, 0.8f, -0.8f, 0.8f, -0.8f}));
}

TEST(ACEncoder, UnipolarSpansMinToMaxAndMinWinsOverMax) {
    auto driver = BR::Test::MakeDriver("acencoder");
    driver->SetParameterByName("Enable L", 1.0f);
    driver->SetParameterByName("Input Polarity L", 1.0f);
    driver->SetParameterByName("Min Output Level L", 0.2f);
    driver->SetParameterByName("Max Output Level L", 0.6f);
    auto out = BR::Test::RenderFrames(*driver, 2, 2, Constant(0.5f, 0.0f, 2));
    EXPECT_FLOAT_EQ(out[0][0], 0.4f);
    EXPECT_FLOAT_EQ(out[0][1], -0.4f);
    driver->SetParameterByName("Min Output Level L", 0.7f);
    driver->SetParameterByName("Max Output Level L", 0.3f);
    out = BR::Test::RenderFrames(*driver, 2, 2, Constant(1.0f, 0.0f, 2));
    EXPECT_FLOAT_EQ(out[0][0], 0.7f);
    EXPECT_FLOAT_EQ(out[0][1], -0.7f);
}

TEST(ACEncoder, CarrierRunsAcrossOddBlocksAndStandsStillWhenOff) {
    for (uint32_t block : {1u, 3u, 7u, 64u}) {
        auto driver = BR::Test::MakeDriver("acencoder");
        driver->SetParameterByName("Enable L", 1.0f);
        const auto out = BR::Test::RenderFrames(*driver, 101, block, Constant(1.0f, 0.0f, 101));
        for (uint32_t i = 0; i < 101; ++i)
            ASSERT_EQ(out[0][i], i & 1 ? -1.0f : 1.0f) << block << " " << i;
    }
    auto driver = BR::Test::MakeDriver("acencoder");
    auto& m = static_cast<BrelCorvaneACEncoder::BrelCorvane&>(driver->Module());
    driver->SetParameterByName("Enable L", 1.0f);
    BR::Test::RenderFrames(*driver, 3, 3, Constant(1.0f, 0.0f, 3));
    EXPECT_EQ(m.CarrierPhase(0), 1.0f);
    driver->SetParameterByName("Enable L", 0.0f);
    BR::Test::RenderFrames(*driver, 5, 5, Constant(1.0f, 0.0f, 5));
    EXPECT_EQ(m.CarrierPhase(0), 1.0f);
    EXPECT_EQ(m.CarrierPhase(1), 0.0f);
}

TEST(ACEncoder, NonNumbersStayWithinTheLevels) {
    auto driver = BR::Test::MakeDriver("acencoder");
    driver->SetParameterByName("Enable L", 1.0f);
    driver->SetParameterByName("Enable R", 1.0f);
    driver->SetParameterByName("Min Output Level L", 0.1f);
    BR::Test::Channels in = {{NAN, INFINITY, -INFINITY, 0.0f}, {INFINITY, NAN, -INFINITY, NAN}};
    const auto out = BR::Test::RenderFrames(*driver, 4, 4, in);
    EXPECT_EQ(out[0], (std::vector<float>{0.1f, -1.0f, 0.1f, -0.55f}));
    EXPECT_EQ(out[1], (std::vector<float>{1.0f, -0.0f, 0.0f, -0.0f}));
}

TEST(ACEncoder, IdentityAndTexts) {
    auto driver = BR::Test::MakeDriver("acencoder");
    BrelCorvaneBase& m = driver->Module();
    EXPECT_STREQ(m.GetModuleName(), "Corvane AC Encoder");
    EXPECT_STREQ(m.GetGuiScriptName(), "gui_acencoder.lua");
    EXPECT_EQ(m.NumInputs(), 2);
    EXPECT_EQ(m.NumOutputs(), 2);
    EXPECT_EQ(m.NumTableParameters(), 9);
    EXPECT_EQ(driver->ParameterIndexByName("Max Output Level R"), 9);
    EXPECT_EQ(m.GetParameterFlags(0), BR::kDisplayStringFlag);
    BR::CountedTextList* names = nullptr;
    ASSERT_EQ(m.GetParameterValueStrings(6, &names), 0);
    EXPECT_EQ(names->Get(), (std::vector<std::string>{"Bipolar", "Unipolar"}));
    names->Release();
}
