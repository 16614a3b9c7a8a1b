// Each output has its own smoothing from its "Output N Smoothing" row: a slew limit of 2 / s per
// sample for positive times, a one-pole for negative ones.
#include <gtest/gtest.h>

#include <cmath>

#include "VoiceControllerRig.h"

TEST(VoiceControllerSmoothing, PerOutput) {
    BR::Test::VoiceRig rig;
    rig.Set("Output 2 Smoothing", 10.0f);  // s = 480: a step of 1 takes 240 samples
    rig.Set("Output 6 Smoothing", -1.0f);  // one-pole, exp(5.2 / -48)
    rig.Set("Trigger Length", 100.0f);
    const auto out = rig.Render(512, 128, {{0, BR::Test::Midi(0x90, 60, 100)}});
    for (uint32_t i = 0; i < 239; ++i)
        ASSERT_NEAR(out[1][i], float(i + 1) * 2.0f / 480.0f, 1e-5f) << i;
    EXPECT_EQ(out[1][240], 1.0f);
    const float c = std::exp(5.2f / -48.0f);
    float state = 0.0f;
    for (uint32_t i = 0; i < 512; ++i) {
        state = (state - 1.0f) * c + 1.0f;
        ASSERT_FLOAT_EQ(out[5][i], state) << i;
    }
    // Outputs without smoothing jump.
    rig.LinearCalibration();
    const auto next = rig.Render(16);
    EXPECT_FLOAT_EQ(next[0][0], 60 / 128.0f);
}
