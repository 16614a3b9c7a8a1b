// A moving signal whose coefficient is at or below 0.001 in magnitude is left out of the mix; 0.0011 is
// not. The pitch coefficient counts at any size while no portamento runs (pitch is then a constant),
// and falls under the same rule while one runs.
#include <gtest/gtest.h>

#include <cmath>

#include "VoiceControllerRig.h"

using BR::Test::Midi;

TEST(VoiceControllerMix, EnvelopeCoefficientThreshold) {
    BR::Test::VoiceRig rig;
    rig.Set("Output 1 Pitch", 0.0f);
    rig.Set("Output 1 Env1", 0.001f);
    rig.Set("Output 2 Gate", 0.0f);
    rig.Set("Output 2 Env1", 0.0011f);
    rig.Set("Output 3 Env1", -0.001f);
    rig.Set("Output 4 Env2", 0.0f);
    rig.Set("Output 4 Trigger", 0.001f);
    rig.Set("Output 4 Offset", 0.25f);
    const auto out = rig.Render(2048, 256, {{0, Midi(0x90, 60, 127)}});
    for (uint32_t i = 0; i < 2048; ++i) {
        ASSERT_EQ(out[0][i], 0.0f) << i;
        ASSERT_EQ(out[2][i], 0.0f) << i;
        ASSERT_EQ(out[3][i], 0.25f) << i;
    }
    // Env1 rises through its attack; output 2 follows at 0.0011 times its level.
    EXPECT_GT(out[1][2047], out[1][100]);
    EXPECT_GT(out[1][2047], 0.0f);
    EXPECT_LE(out[1][2047], 0.0011f);
}

TEST(VoiceControllerMix, PitchCoefficientBelowThreshold) {
    BR::Test::VoiceRig rig;
    rig.LinearCalibration();
    rig.Set("Output 1 Pitch", 0.0005f);
    auto out = rig.Render(256, 256, {{0, Midi(0x90, 64, 100)}});
    EXPECT_FLOAT_EQ(out[0][100], 0.0005f * 0.5f);  // no portamento: counts
    rig.Set("Portamento Mode", 1);
    rig.Set("Portamento Time", 0.1f);
    out = rig.Render(256, 256, {{0, Midi(0x90, 72, 100)}});
    EXPECT_TRUE(rig.vc.PortamentoActive());
    for (float v : out[0])
        ASSERT_EQ(v, 0.0f);
    rig.Set("Output 1 Pitch", 0.0011f);
    out = rig.Render(256, 256);
    EXPECT_GT(out[0][0], 0.0011f * 0.5f);
    EXPECT_LT(out[0][255], 0.0011f * 72.0f / 128.0f);
}
