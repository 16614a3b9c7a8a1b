// Notes above 127 after transpose clamp at 127, where entry 128 of the table has weight 0.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

TEST(VoiceControllerPitch, TransposeClampsAtTheTop) {
    BR::Test::VoiceRig rig;
    rig.vc.Calibration().notes[127].value = 0.5f;
    rig.vc.Calibration().notes[128].value = -1.0f;
    rig.vc.Calibration().notes[126].value = 0.25f;
    rig.Set("Transpose", 24);
    auto out = rig.Render(64, 64, {{0, BR::Test::Midi(0x90, 120, 100)}});
    EXPECT_EQ(out[0][10], 0.5f);
    // The display gets the clamped note and its value.
    const auto& status = rig.vc.GetStatusBlock()->As<BrelCorvaneVoiceController::VoiceControllerStatus>();
    EXPECT_EQ(status.note, 127.0f);
    EXPECT_EQ(status.value, 0.5f);
    // Detune and vibrato are added before the clamp as well.
    rig.Set("Transpose", 6);
    rig.Set("Detune", 50);
    out = rig.Render(64, 64);
    EXPECT_FLOAT_EQ(out[0][10], 0.5f * 0.25f + 0.5f * 0.5f);  // note 126.5
    rig.Set("Override Pitch", 1);
    rig.Set("Pitch", 100);
    rig.Set("Transpose", 48);
    out = rig.Render(64, 64);
    EXPECT_EQ(out[0][10], 0.5f);  // the override keeps transpose and detune in force
}
