// "Quadrature": lane R runs at lane L's rate and is pulled to L's phase plus its own "Phase" at every
// block. A loop of one step repeats it, and "Linear" interpolates from the step to itself.
#include <gtest/gtest.h>

#include "StepLFORig.h"

using StepLFOTest::Set;

TEST(StepLFOQuadrature, FollowsLaneLAQuarterAhead) {
    auto driver = StepLFOTest::FreeRamp();
    StepLFOTest::SetSteps(*driver, "R", StepLFOTest::Ramp());
    Set(*driver, "Sync R", 3.0f);
    Set(*driver, "Phase R", 90.0f);
    Set(*driver, "Speed R", 1.0f);  // not used: the rate is lane L's
    const auto out = BR::Test::RenderFrames(*driver, 2048, 256);
    auto& module = StepLFOTest::Module(*driver);
    EXPECT_EQ(module.Settings(1).rate, module.Settings(0).rate);
    for (size_t i = 0; i < 2048; ++i)
        ASSERT_EQ(out[1][i], StepLFOTest::Ramp()[(i / 64 + 4) % 16]) << i;
}

TEST(StepLFOQuadrature, LaneLHasNoRateOfItsOwn) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Sync L", 3.0f);
    BR::Test::RenderFrames(*driver, 64, 64);
    EXPECT_EQ(StepLFOTest::Module(*driver).Settings(0).rate, 0.0);
}

TEST(StepLFOSingleStep, RepeatsAndInterpolatesToItself) {
    for (float linear : {0.0f, 1.0f}) {
        auto driver = StepLFOTest::FreeRamp();
        Set(*driver, "Start Step L", 7.0f);
        Set(*driver, "Length In Steps L", 1.0f);
        Set(*driver, "Interpolation L", linear);
        const auto out = BR::Test::RenderFrames(*driver, 1024, 256);
        EXPECT_EQ(StepLFOTest::Module(*driver).Settings(0).stepCount, 1);
        for (size_t i = 0; i < 1024; ++i)
            ASSERT_EQ(out[0][i], StepLFOTest::Ramp()[6]) << linear << " " << i;
    }
}
