// A master takes a note-on with velocity 0 as a note-on of its own: the held note ends on its old
// voice, and the event goes on unchanged to a newly picked voice, which reads it as a note-off. The
// master keeps the note as held and opens its own gate at velocity 0.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

TEST(VoiceControllerMaster, VelocityZeroNoteOnIsAMasterNoteOn) {
    BR::Test::PolyRig rig(2, {1, 2});
    rig.master->Set("Output 3 Env1", 0.0f);  // output 3 shows the master's own gate
    rig.master->Set("Output 3 Gate", 1.0f);
    rig.Render(1024, {{10, BR::Test::Midi(0x90, 60, 100)}, {500, BR::Test::Midi(0x90, 60, 0)}});
    auto& master = rig.Master();
    ASSERT_EQ(master.BatchWrite(), 2);
    const auto& batch = master.Batch(1);
    EXPECT_EQ(batch.start, 1);
    ASSERT_EQ(batch.count, 2);
    // The synthetic note-off to voice 1, then the event itself to voice 2.
    EXPECT_EQ(master.RingEvent(1).status, 0x80);
    EXPECT_EQ(master.RingEvent(1).dataByte1, 60);
    EXPECT_EQ(master.RingEvent(1).dataByte2, 127);
    EXPECT_EQ(master.RingEvent(1).voice, 1);
    EXPECT_EQ(master.RingEvent(2).status, 0x90);
    EXPECT_EQ(master.RingEvent(2).dataByte1, 60);
    EXPECT_EQ(master.RingEvent(2).dataByte2, 0);
    EXPECT_EQ(master.RingEvent(2).voice, 2);
    EXPECT_EQ(rig.masterOut[0][500], BrelCorvaneVoiceController::MarkerSample(1));
    EXPECT_EQ(master.HeldNote(60), 2);
    EXPECT_EQ(master.HeldCount(), 1);
    EXPECT_EQ(master.VoiceNote(2), 60);
    EXPECT_EQ(master.NextVoice(), 1);
    EXPECT_TRUE(master.GateOpen());
    EXPECT_EQ(rig.masterOut[2][1023], 1.0f);

    // Voice 1 closes at the marker; voice 2 takes the event as a note-off and never opens.
    EXPECT_EQ(rig.voiceOut[0][1][499], 1.0f);
    EXPECT_EQ(rig.voiceOut[0][1][500], 0.0f);
    for (uint32_t i = 0; i < 1024; ++i)
        ASSERT_EQ(rig.voiceOut[1][1][i], 0.0f) << i;
    EXPECT_EQ(rig.Voice(1).HeldCount(), 0);
}
