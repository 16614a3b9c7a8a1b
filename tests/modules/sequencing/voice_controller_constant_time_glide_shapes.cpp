// Constant time portamento: a glide of "Portamento Time" seconds from where the pitch stands, on the
// output values after calibration; shape 0 is a straight line, shape 1 a parabola that lands softly.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

using BR::Test::Midi;

namespace {
BR::Test::Channels Glide(float shape) {
    BR::Test::VoiceRig rig;
    rig.LinearCalibration();
    rig.Set("Portamento Mode", 3);
    rig.Set("Portamento Time", 0.01f);  // 480 samples
    rig.Set("Portamento Shape", shape);
    return rig.Render(2048, 256, {{0, Midi(0x90, 60, 100)}, {1000, Midi(0x90, 72, 100)}});
}
}  // namespace

TEST(VoiceControllerPortamento, ConstantTimeLine) {
    const auto out = Glide(0.0f);
    const float from = 60 / 128.0f, to = 72 / 128.0f;
    EXPECT_FLOAT_EQ(out[0][1000], from);
    EXPECT_NEAR(out[0][1240], (from + to) / 2, 1e-5f);
    EXPECT_NEAR(out[0][1120], from + (to - from) / 4, 1e-5f);
    EXPECT_LT(out[0][1479], to);
    EXPECT_EQ(out[0][1480], to);
}

TEST(VoiceControllerPortamento, ConstantTimeParabola) {
    const auto out = Glide(1.0f);
    const float from = 60 / 128.0f, to = 72 / 128.0f;
    EXPECT_FLOAT_EQ(out[0][1000], from);
    // value = d t^2 + target with d = from - to and t falling from 1 to 0.
    EXPECT_NEAR(out[0][1240], to + (from - to) * 0.25f, 1e-5f);
    EXPECT_NEAR(out[0][1360], to + (from - to) * 0.0625f, 1e-5f);
    EXPECT_EQ(out[0][1480], to);
}

TEST(VoiceControllerPortamento, ConstantTimeFirstNoteGlidesFromTheLastPitch) {
    // In "CT Auto" the very first note glides too, from the pitch that stood before it.
    const auto out = Glide(0.0f);
    EXPECT_EQ(out[0][0], 0.0f);
    EXPECT_NEAR(out[0][240], 30 / 128.0f, 1e-5f);
}
