// "Voice ID" 0 (its value reading "Off") makes all six outputs 0, with each output's smoothing acting
// towards 0; a voice without touch data reads an entry of zeros: no gate, the offset row plus the
// calibrated note of note 0 through the note row.
#include <gtest/gtest.h>

#include <cmath>

#include "SoundplaneRig.h"

using namespace BR::Test;

TEST(SoundplaneVoice, VoiceZeroGivesZeroThroughSmoothing) {
    ClearTouches();
    PutTouch({1, 0.5f, 0.5f, 0.5f, 60});
    SoundplaneRig rig;
    rig.Set("Output 1 Offset", 0.5f);
    rig.Set("Output 1 Smoothing", 10);   // slew: 0.5 falls by 2/480 per sample
    rig.Set("Output 2 Smoothing", -10);  // one-pole
    rig.Set("Output 3 Offset", -0.75f);  // not smoothed
    rig.Render(48000, 256);
    const float one = rig.Module().Smoother(0).smoothState, two = rig.Module().Smoother(1).smoothState;
    ASSERT_FLOAT_EQ(one, 0.5f);
    ASSERT_NEAR(two, 1.0f, 1e-5);  // the gate of the active touch, nearly reached
    rig.Set("Voice ID", 0);
    char text[25];
    rig.Module().GetParameterValueText(0, text);
    EXPECT_STREQ(text, "Off");
    const Channels out = rig.Render(480, 64);
    const float step = 2.0f / 480.0f;
    EXPECT_NEAR(out[0][0], 0.5f - step, 1e-6);
    EXPECT_NEAR(out[0][99], 0.5f - 100 * step, 1e-5);
    EXPECT_EQ(out[0][479], 0.0f);
    const float coefficient = std::exp(5.2f / -480.0f);
    EXPECT_NEAR(out[1][0], two * coefficient, 1e-6);
    EXPECT_NEAR(out[1][99], two * std::pow(coefficient, 100.0f), 1e-4);
    EXPECT_GT(out[1][479], 0.0f);
    EXPECT_LT(out[1][479], 0.01f);
    for (int k = 2; k < 6; ++k)
        EXPECT_EQ(out[k], std::vector<float>(480, 0.0f)) << k;
}

TEST(SoundplaneVoice, MissingTouchReadsZeros) {
    ClearTouches();
    SoundplaneRig rig;
    rig.Set("Voice ID", 16);
    rig.Module().Calibration().notes[0].value = -0.25f;
    rig.Set("Output 1 Offset", 0.125f);
    rig.Set("Output 2 Offset", -0.5f);
    const Channels out = rig.Render(64);
    EXPECT_EQ(out[0], std::vector<float>(64, -0.25f + 0.125f));  // note 0's value through the note row
    EXPECT_EQ(out[1], std::vector<float>(64, -0.5f));            // no gate
    for (int k = 2; k < 6; ++k)
        EXPECT_EQ(out[k], std::vector<float>(64, 0.0f)) << k;
}
