// The trigger is "Trigger On Voltage" for max(1, (int)(sampleRate * "Trigger Length" * 0.001)) samples
// from each voice start, then "Trigger Off Voltage". Velocity maps linearly from "Velocity Min
// Voltage" to "Velocity Max Voltage".
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

using BR::Test::Midi;

TEST(VoiceControllerTrigger, LengthInSamples) {
    BR::Test::VoiceRig rig;
    rig.Set("Trigger Length", 1.0f);
    rig.Set("Trigger On Voltage", 0.9f);
    rig.Set("Trigger Off Voltage", -0.1f);
    // 48 samples, across a block boundary.
    const auto out = rig.Render(256, 64, {{40, Midi(0x90, 60, 100)}});
    EXPECT_EQ(rig.vc.TriggerLengthSamples(), 48u);
    for (uint32_t i = 0; i < 256; ++i)
        ASSERT_EQ(out[5][i], i >= 40 && i < 88 ? 0.9f : -0.1f) << i;
}

TEST(VoiceControllerTrigger, ZeroLengthIsOneSample) {
    BR::Test::VoiceRig rig(44100.0f);
    rig.Set("Trigger Length", 0.0f);
    const auto out = rig.Render(64, 64, {{10, Midi(0x90, 60, 100)}});
    EXPECT_EQ(rig.vc.TriggerLengthSamples(), 1u);
    EXPECT_EQ(out[5][10], 1.0f);
    EXPECT_EQ(out[5][11], 0.0f);
    rig.Set("Trigger Length", 0.2f);  // the default: 8.82 samples at 44.1 kHz
    rig.Render(64);
    EXPECT_EQ(rig.vc.TriggerLengthSamples(), 8u);
}

TEST(VoiceControllerVelocity, LinearBetweenTheTwoVoltages) {
    BR::Test::VoiceRig rig;
    rig.Set("Output 1 Pitch", 0.0f);
    rig.Set("Output 1 Velocity", 1.0f);
    rig.Set("Velocity Min Voltage", -0.5f);
    rig.Set("Velocity Max Voltage", 0.5f);
    auto out = rig.Render(64, 64, {{10, Midi(0x90, 60, 64)}});
    EXPECT_EQ(out[0][9], -0.5f);  // no note yet: velocity 0
    EXPECT_FLOAT_EQ(out[0][10], 64 * 0.007874016f - 0.5f);
    out = rig.Render(64, 64, {{10, Midi(0x90, 62, 127)}});
    EXPECT_FLOAT_EQ(out[0][10], 0.5f);
    // A release velocity changes nothing on the outputs.
    out = rig.Render(64, 64, {{0, Midi(0x80, 62, 20)}, {1, Midi(0x80, 60, 20)}});
    EXPECT_FLOAT_EQ(out[0][10], 0.5f);
}
