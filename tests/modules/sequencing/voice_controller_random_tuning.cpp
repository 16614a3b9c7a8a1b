// "Random Tuning" draws a new offset at each start of a voice from state * 49979693 + 15485867,
// read as ((state AND 0xFFFFF) - 0x80000) * 1.9073486e-6, and scales it by the cents of the row. It
// changes the pitch only at the next voice start; a fall-back under "Retrig Off" keeps it.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

using BR::Test::Midi;

namespace {
float Draw(uint32_t& state) {
    state = state * 49979693u + 15485867u;
    return float(int32_t(state & 0xFFFFFu) - 0x80000) * 1.9073486e-6f;
}
}  // namespace

TEST(VoiceControllerRandomTuning, NewOffsetOnlyAtAVoiceStart) {
    BR::Test::VoiceRig rig;
    rig.LinearCalibration();
    rig.Set("Random Tuning", 10.0f);
    rig.Set("Retrigger Mode", 1);
    uint32_t state = 0;
    const float first = Draw(state);
    auto out = rig.Render(64, 64, {{0, Midi(0x90, 60, 100)}});
    EXPECT_EQ(rig.vc.RandomTuning(), first);
    EXPECT_FLOAT_EQ(out[0][10], (60.0f + 10.0f * 0.01f * first) / 128.0f);
    // A second note under "Retrig Off" moves the pitch but draws nothing; so does the fall-back.
    out = rig.Render(64, 64, {{0, Midi(0x90, 64, 100)}});
    EXPECT_EQ(rig.vc.RandomTuning(), first);
    EXPECT_FLOAT_EQ(out[0][10], (64.0f + 10.0f * 0.01f * first) / 128.0f);
    out = rig.Render(64, 64, {{0, Midi(0x80, 64, 0)}});
    EXPECT_EQ(rig.vc.RandomTuning(), first);
    EXPECT_FLOAT_EQ(out[0][10], (60.0f + 10.0f * 0.01f * first) / 128.0f);
    // A new voice start after the gate closed draws the next value.
    const float second = Draw(state);
    out = rig.Render(64, 64, {{0, Midi(0x80, 60, 0)}, {1, Midi(0x90, 62, 100)}});
    EXPECT_EQ(rig.vc.RandomTuning(), second);
    EXPECT_FLOAT_EQ(out[0][10], (62.0f + 10.0f * 0.01f * second) / 128.0f);
    EXPECT_NE(first, second);
}

TEST(VoiceControllerRandomTuning, RetrigOnDrawsAtEveryPress) {
    BR::Test::VoiceRig rig;
    rig.Set("Random Tuning", 5.0f);
    uint32_t state = 0;
    Draw(state);
    const float second = Draw(state);
    rig.Render(64, 64, {{0, Midi(0x90, 60, 100)}, {10, Midi(0x90, 64, 100)}});
    EXPECT_EQ(rig.vc.RandomTuning(), second);
}
