// A free-running lane plays each step for its share of the cycle, and the per-sample chain: gate
// length, unipolar floor, linear interpolation wrapping to the loop's first step, multiplier and
// offset, the three input modes, and asymmetry.
#include <gtest/gtest.h>

#include "StepLFORig.h"

using StepLFOTest::Set;

TEST(StepLFOFree, EachStepFor64Samples) {
    auto driver = StepLFOTest::FreeRamp();
    const auto out = BR::Test::RenderFrames(*driver, 2048, 256);
    for (size_t i = 0; i < 2048; ++i)
        ASSERT_EQ(out[0][i], 0.05f * float((i / 64) % 16 + 1)) << i;
    EXPECT_EQ(StepLFOTest::Module(*driver).Settings(0).rate, 1.0 / 1024.0);
}

TEST(StepLFOFree, StartAndEndStep) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Start Step L", 3.0f);
    Set(*driver, "Length Mode L", 1.0f);
    Set(*driver, "End Step L", 6.0f);  // steps 3..6, still 64 samples each in "Step" speed mode
    const auto out = BR::Test::RenderFrames(*driver, 2048, 256);
    EXPECT_EQ(StepLFOTest::Module(*driver).Settings(0).stepCount, 4);
    for (size_t i = 0; i < 2048; ++i)
        ASSERT_EQ(out[0][i], 0.05f * float((i / 64) % 4 + 3)) << i;
    Set(*driver, "End Step L", 2.0f);  // before the start: a single step
    BR::Test::RenderFrames(*driver, 16, 16);
    EXPECT_EQ(StepLFOTest::Module(*driver).Settings(0).stepCount, 1);
}

TEST(StepLFOFree, GateLengthFloorMultiplierOffset) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Step 2 L", -0.5f);
    Set(*driver, "Gate Length L", 50.0f);
    Set(*driver, "Multiplier L", 2.0f);
    Set(*driver, "Offset L", 0.1f);
    Set(*driver, "Range Mode L", 0.0f);  // Unipolar: the negative step counts as 0
    const auto out = BR::Test::RenderFrames(*driver, 128, 128);
    for (size_t i = 0; i < 128; ++i) {
        const float step = i < 64 ? 0.05f : 0.0f;
        const bool gateOpen = (i % 64) <= 32;  // closes once past 50 percent of the step
        ASSERT_FLOAT_EQ(out[0][i], (gateOpen ? step : 0.0f) * 2.0f + 0.1f) << i;
    }
}

TEST(StepLFOFree, LinearInterpolationWrapsToTheFirstStep) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Interpolation L", 1.0f);
    const auto out = BR::Test::RenderFrames(*driver, 1024, 1024);
    EXPECT_FLOAT_EQ(out[0][0], 0.05f);
    EXPECT_FLOAT_EQ(out[0][32], 0.075f);
    EXPECT_FLOAT_EQ(out[0][15 * 64 + 32], 0.8f + (0.05f - 0.8f) * 0.5f);  // step 16 towards step 1
}

TEST(StepLFOFree, InputModes) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Signal Input L", 3.0f);  // the first sidechain
    const std::vector<float> x(64, 0.5f);
    const BR::Test::Channels inputs = {{}, {}, x};
    const float v = 0.05f;
    auto first = [&](float mode) {
        Set(*driver, "Input Mode L", mode);
        Set(*driver, "Speed L", 0.05f);  // slow enough to stay on step 1 here
        return BR::Test::RenderFrames(*driver, 64, 64, inputs)[0][10];
    };
    EXPECT_FLOAT_EQ(first(0.0f), v + 0.5f);         // Add
    EXPECT_FLOAT_EQ(first(1.0f), v * 0.5f);         // Multiply
    EXPECT_FLOAT_EQ(first(2.0f), 0.5f + v * 0.5f);  // Combine
}

TEST(StepLFOFree, AsymmetryStretchesTheFirstHalf) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Asymmetry L", 50.0f);  // the first half of the steps takes 3/4 of the cycle
    const auto out = BR::Test::RenderFrames(*driver, 1024, 1024);
    const auto step = StepLFOTest::Ramp();
    // First half: 8 steps in 768 samples (96 each); second half: 8 steps in 256 samples (32 each).
    EXPECT_EQ(out[0][95], step[0]);
    EXPECT_EQ(out[0][96], step[1]);
    EXPECT_EQ(out[0][767], step[7]);
    EXPECT_EQ(out[0][768], step[8]);
    EXPECT_EQ(out[0][799], step[8]);
    EXPECT_EQ(out[0][800], step[9]);
    EXPECT_EQ(out[0][1023], step[15]);
}
