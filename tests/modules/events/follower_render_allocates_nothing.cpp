// Rendering the Follower through the host driver performs no heap allocation, measurements included.
#include <gtest/gtest.h>

#include "FollowerSignals.h"
#include "tests/support/AllocationCounter.h"

TEST(FollowerRealtime, RenderAudioAllocatesNothing) {
    for (float mode : {0.0f, 1.0f, 2.0f}) {
        auto driver = BR::Test::MakeDriver("follower", 48000.0f);
        driver->SetParameterByName("Pitch Mode", mode);
        driver->SetParameterByName("Smoothing L", 5.0f);
        driver->SetParameterByName("Smoothing R", -5.0f);
        const uint32_t block = 256;
        const std::vector<float> x = BR::Test::Sine(300.0f, 48000.0f, block * 60);
        std::vector<float> outL(block), outR(block);
        float* outputs[2] = {outL.data(), outR.data()};
        const float* inputs[2] = {x.data(), x.data()};
        driver->Process(inputs, outputs, block, nullptr, 0);

        BR::Test::AllocationScope scope;
        for (uint32_t b = 1; b < 60; ++b) {
            const float* in[2] = {x.data() + b * block, x.data() + b * block};
            if (b == 30) driver->Module().SetTableValue(BrelCorvaneFollower::kEnvGain, 6.0f);
            driver->Process(in, outputs, block, nullptr, 0);
        }
        EXPECT_EQ(scope.Count(), 0u) << mode;
        EXPECT_FALSE(BR::Test::Follower(*driver).NoPitch());
    }
}
