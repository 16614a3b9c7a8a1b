// With polyphony 4 and only voices 1 and 2 present, `current` can be 3: its score stays at 0, so it
// wins when a present voice is idle, and it is the result when all are busy too. The note then goes
// to no instance.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

using BrelCorvaneVoiceController::pickVoice;

TEST(VoiceControllerPickVoice, AbsentVoiceThreeWhenOneIsIdle) {
    BR::Test::PolyRig rig(4, {1, 2});
    rig.Render(256);
    EXPECT_EQ(pickVoice(3, 4), 3);
    EXPECT_EQ(pickVoice(2, 4), 2);  // idle and current: taken at once
    EXPECT_EQ(pickVoice(1, 4), 1);
}

TEST(VoiceControllerPickVoice, AbsentVoiceThreeWhenAllAreBusy) {
    BR::Test::PolyRig rig(4, {1, 2});
    rig.Render(512, {{10, BR::Test::Midi(0x90, 60, 100)}, {20, BR::Test::Midi(0x90, 64, 100)}});
    EXPECT_EQ(rig.Master().NextVoice(), 3);
    EXPECT_TRUE(rig.Voice(0).GateOpen());
    EXPECT_TRUE(rig.Voice(1).GateOpen());
    EXPECT_EQ(pickVoice(3, 4), 3);
    // A busy current voice with an idle other one loses to the idle one.
    EXPECT_EQ(pickVoice(1, 2), 1);  // both busy: current

    rig.Render(256, {{600, BR::Test::Midi(0x90, 67, 100)}});
    EXPECT_EQ(rig.Master().VoiceNote(3), 67);
    EXPECT_EQ(rig.Master().HeldNote(67), 3);
    EXPECT_EQ(rig.Voice(0).CurrentNote(), 60.0f);
    EXPECT_EQ(rig.Voice(1).CurrentNote(), 64.0f);
    EXPECT_EQ(rig.Master().NextVoice(), 4);
}

TEST(VoiceControllerPickVoice, IdleVoiceBeatsBusyCurrent) {
    BR::Test::PolyRig rig(2, {1, 2});
    rig.Render(512, {{10, BR::Test::Midi(0x90, 60, 100)}});
    // Voice 1 busy (attack), voice 2 idle: with current 1 the idle voice 2 is chosen.
    EXPECT_EQ(pickVoice(1, 2), 2);
    // Scores: idle 0, release 1 to 3, attack or sustain at least 11.
    rig.Render(256, {{600, BR::Test::Midi(0x80, 60, 0)}});
    EXPECT_EQ(rig.Voice(0).GetEnvelope(0).stageIndex, BR::kEnvR1);
    rig.Render(256, {{800, BR::Test::Midi(0x90, 72, 100)}});
    // nextVoice was 2, idle: voice 2 plays 72; voice 1 still releasing.
    EXPECT_EQ(rig.Master().VoiceNote(2), 72);
    EXPECT_EQ(pickVoice(2, 2), 1);  // 2 busy, 1 in release scores lower
}
