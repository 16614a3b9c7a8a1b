// A second note-on for a note the master holds ends the note on its old voice and gives it a new one.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

TEST(VoiceControllerMaster, SecondNoteOnMovesTheNoteToANewVoice) {
    BR::Test::PolyRig rig(4, {1, 2});
    rig.Render(512, {{10, BR::Test::Midi(0x90, 60, 100)}, {200, BR::Test::Midi(0x90, 60, 90)}});
    auto& master = rig.Master();
    ASSERT_EQ(master.BatchWrite(), 2);
    const auto& first = master.Batch(0);
    EXPECT_EQ(first.start, 0);
    EXPECT_EQ(first.count, 1);
    EXPECT_EQ(master.RingEvent(0).status, 0x90);
    EXPECT_EQ(master.RingEvent(0).voice, 1);

    const auto& second = master.Batch(1);
    EXPECT_EQ(second.start, 1);
    EXPECT_EQ(second.count, 2);
    const auto& off = master.RingEvent(1);
    EXPECT_EQ(off.kind, uint32_t(BR::kMessageShortMIDI));
    EXPECT_EQ(off.status, 0x80);
    EXPECT_EQ(off.dataByte1, 60);
    EXPECT_EQ(off.dataByte2, 127);
    EXPECT_EQ(off.voice, 1);
    EXPECT_EQ(master.RingEvent(2).status, 0x90);
    EXPECT_EQ(master.RingEvent(2).dataByte2, 90);
    EXPECT_EQ(master.RingEvent(2).voice, 2);
    EXPECT_EQ(master.HeldNote(60), 2);
    EXPECT_EQ(master.HeldCount(), 1);
    EXPECT_EQ(master.VoiceNote(2), 60);

    // Voice 1 closes its gate and voice 2 opens its own on the same sample.
    EXPECT_EQ(rig.voiceOut[0][1][199], 1.0f);
    EXPECT_EQ(rig.voiceOut[0][1][200], 0.0f);
    EXPECT_EQ(rig.voiceOut[1][1][199], 0.0f);
    EXPECT_EQ(rig.voiceOut[1][1][200], 1.0f);
    EXPECT_FALSE(rig.Voice(0).GateOpen());
    EXPECT_TRUE(rig.Voice(1).GateOpen());
}
