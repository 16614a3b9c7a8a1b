// With the pedal down in the master, a released note stays in voiceNote and its voice keeps playing
// until the pedal goes up, or until pickVoice steals the voice.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

TEST(VoiceControllerMaster, PedalHoldsTheVoiceUntilItGoesUp) {
    BR::Test::PolyRig rig(2, {1, 2});
    rig.master->Set("Output 3 Env1", 0.0f);  // output 3 shows the master's own gate
    rig.master->Set("Output 3 Gate", 1.0f);
    rig.Render(2048, {{10, BR::Test::Midi(0x90, 60, 100)},
                      {20, BR::Test::Midi(0xB0, 64, 127)},
                      {30, BR::Test::Midi(0x80, 60, 0)},
                      {1000, BR::Test::Midi(0xB0, 64, 0)}});
    auto& master = rig.Master();
    // The note-off and the pedal-down add nothing to the ring: no marker for them.
    EXPECT_EQ(rig.masterOut[0][20], 0.0f);
    EXPECT_EQ(rig.masterOut[0][30], 0.0f);
    const auto& gate = rig.voiceOut[0][1];
    EXPECT_EQ(gate[999], 1.0f);
    EXPECT_EQ(gate[1000], 0.0f);
    ASSERT_EQ(master.BatchWrite(), 2);
    EXPECT_EQ(master.Batch(1).count, 1);
    EXPECT_EQ(master.RingEvent(1).status, 0x80);
    EXPECT_EQ(master.RingEvent(1).dataByte1, 60);
    EXPECT_EQ(master.RingEvent(1).voice, 1);
    EXPECT_EQ(master.VoiceNote(1), -1);
    // The master's own gate closed at the note-off, pedal or not.
    EXPECT_EQ(rig.masterOut[2][29], 1.0f);
    EXPECT_EQ(rig.masterOut[2][30], 0.0f);
    EXPECT_FALSE(master.GateOpen());
}

TEST(VoiceControllerMaster, PedalNoteIsStolenByTheNextAllocation) {
    BR::Test::PolyRig rig(1, {1});
    rig.voices[0]->LinearCalibration();
    rig.Render(2048, {{10, BR::Test::Midi(0x90, 60, 100)},
                      {20, BR::Test::Midi(0xB0, 64, 127)},
                      {30, BR::Test::Midi(0x80, 60, 0)},
                      {700, BR::Test::Midi(0x90, 65, 100)}});
    auto& master = rig.Master();
    EXPECT_EQ(master.VoiceNote(1), 65);
    const auto& batch = master.Batch(1);
    ASSERT_EQ(batch.count, 2);
    EXPECT_EQ(master.RingEvent(batch.start).status, 0x80);
    EXPECT_EQ(master.RingEvent(batch.start).dataByte1, 60);
    EXPECT_EQ(master.RingEvent(batch.start + 1).dataByte1, 65);
    EXPECT_EQ(rig.voiceOut[0][1][699], 1.0f);  // still sounding on the pedal
    EXPECT_FLOAT_EQ(rig.voiceOut[0][0][699], 60 / 128.0f);
    EXPECT_FLOAT_EQ(rig.voiceOut[0][0][700], 65 / 128.0f);
    EXPECT_EQ(rig.Voice(0).HeldCount(), 1);
}
