// A note-off that comes in the same sample as a note-on on the same voice goes in one batch, in order,
// and the voice acts on both at that sample.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

TEST(VoiceControllerMaster, OffAndOnOfOneSampleShareABatch) {
    BR::Test::PolyRig rig(1, {1});
    rig.voices[0]->LinearCalibration();
    rig.voices[0]->Set("Trigger Length", 0.0f);  // one sample
    rig.Render(1024, {{10, BR::Test::Midi(0x90, 60, 100)},
                      {500, BR::Test::Midi(0x80, 60, 0)},
                      {500, BR::Test::Midi(0x90, 62, 100)}});
    auto& master = rig.Master();
    ASSERT_EQ(master.BatchWrite(), 2);
    const auto& batch = master.Batch(1);
    EXPECT_EQ(batch.start, 1);
    EXPECT_EQ(batch.count, 2);
    EXPECT_EQ(master.RingEvent(1).status, 0x80);
    EXPECT_EQ(master.RingEvent(1).dataByte1, 60);
    EXPECT_EQ(master.RingEvent(1).voice, 1);
    EXPECT_EQ(master.RingEvent(2).status, 0x90);
    EXPECT_EQ(master.RingEvent(2).dataByte1, 62);
    EXPECT_EQ(master.RingEvent(2).voice, 1);
    // One marker at 500 carries both.
    EXPECT_EQ(rig.masterOut[0][500], BrelCorvaneVoiceController::MarkerSample(1));
    EXPECT_EQ(rig.masterOut[0][501], 0.0f);

    const auto& voice = rig.voiceOut[0];
    EXPECT_FLOAT_EQ(voice[0][499], 60 / 128.0f);
    EXPECT_FLOAT_EQ(voice[0][500], 62 / 128.0f);
    EXPECT_EQ(voice[1][500], 1.0f);  // off then on: the gate stays open
    EXPECT_EQ(voice[5][499], 0.0f);
    EXPECT_EQ(voice[5][500], 1.0f);  // and the trigger fires again
    EXPECT_EQ(rig.Voice(0).HeldCount(), 1);
}
