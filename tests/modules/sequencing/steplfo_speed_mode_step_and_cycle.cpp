// "Speed Mode" "Step" keeps the step rate when the loop length changes; "Cycle" keeps the loop time.
#include <gtest/gtest.h>

#include "StepLFORig.h"

using StepLFOTest::Set;

TEST(StepLFOSpeedMode, StepKeepsStepRateCycleKeepsLoopTime) {
    auto driver = StepLFOTest::FreeRamp();
    auto& module = StepLFOTest::Module(*driver);
    Set(*driver, "Speed L", 2.0f);
    Set(*driver, "Speed Multiplier L", 1.0f);
    for (float mode : {1.0f, 0.0f}) {
        Set(*driver, "Speed Mode L", mode);
        double stepRate[2], loopRate[2];
        const float lengths[2] = {16.0f, 5.0f};
        for (int i = 0; i < 2; ++i) {
            Set(*driver, "Length In Steps L", lengths[i]);
            BR::Test::RenderFrames(*driver, 32, 32);
            const auto& c = module.Settings(0);
            ASSERT_EQ(c.stepCount, int32_t(lengths[i]));
            loopRate[i] = c.rate * 48000.0;
            stepRate[i] = c.rate * 48000.0 * c.stepCount;
        }
        if (mode == 1.0f) {
            EXPECT_DOUBLE_EQ(stepRate[0], 2.0);  // two steps a second at any length
            EXPECT_DOUBLE_EQ(stepRate[1], 2.0);
        } else {
            EXPECT_DOUBLE_EQ(loopRate[0], 2.0);  // two loops a second at any length
            EXPECT_DOUBLE_EQ(loopRate[1], 2.0);
        }
    }
}

TEST(StepLFOSpeedMode, TempoCycleInQuarterNotes) {
    auto driver = StepLFOTest::FreeRamp();
    BR::DriverTransport transport;
    transport.tempo = 90.0;
    driver->SetTransport(&transport);
    Set(*driver, "Sync L", 1.0f);
    Set(*driver, "Beat Divisor L", 3.0f);  // 1/8: q = 2^-3 * 4 * beats
    Set(*driver, "Beats L", 3.0f);
    Set(*driver, "Speed Mode L", 0.0f);
    BR::Test::RenderFrames(*driver, 32, 32);
    const double q = double(std::exp(-3.0f * 0.6931472f) * 4.0f * 3.0f);
    EXPECT_NEAR(StepLFOTest::Module(*driver).Settings(0).rate, 90.0 / (q * 60.0) / 48000.0, 1e-15);
    Set(*driver, "Triplet L", 1.0f);
    Set(*driver, "Speed Mode L", 1.0f);  // step mode: q times the 16 steps
    BR::Test::RenderFrames(*driver, 32, 32);
    const double q2 = double(float(std::exp(-3.0f * 0.6931472f) * 4.0f * 3.0f) * 2.0f / 3.0f * 16.0f);
    EXPECT_NEAR(StepLFOTest::Module(*driver).Settings(0).rate, 90.0 / (q2 * 60.0) / 48000.0, 1e-15);
}
