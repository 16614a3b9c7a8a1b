// A voice with a voiceId that no event names plays nothing, but acts on controller 120 and pitch bend,
// which go to all voices.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

TEST(VoiceControllerVoice, WrongIdPlaysNothingButTakesBroadcasts) {
    BR::Test::PolyRig rig(2, {1, 2, 5});
    for (auto& voice : rig.voices)
        voice->LinearCalibration();
    rig.Render(2048, {{10, BR::Test::Midi(0x90, 60, 100)},
                      {20, BR::Test::Midi(0x90, 64, 100)},
                      {30, BR::Test::Midi(0x90, 67, 100)},
                      {500, BR::Test::Midi(0xE0, 0x00, 0x60)}});
    auto& lost = rig.Voice(2);
    for (uint32_t i = 0; i < 2048; ++i)
        ASSERT_EQ(rig.voiceOut[2][1][i], 0.0f) << i;
    EXPECT_EQ(lost.HeldCount(), 0);
    // +0x1000 of bend at a wheel range of 2 semitones: one semitone, from the marker's sample on.
    EXPECT_FLOAT_EQ(lost.PitchBend(), 1.0f);
    EXPECT_FLOAT_EQ(rig.Voice(0).PitchBend(), 1.0f);
    EXPECT_EQ(rig.voiceOut[2][0][499], 0.0f);
    EXPECT_FLOAT_EQ(rig.voiceOut[2][0][500], 1 / 128.0f);
    // The master itself does not bend.
    EXPECT_EQ(rig.Master().PitchBend(), 0.0f);

    rig.Render(256, {{2100, BR::Test::Midi(0xB0, 120, 0)}});
    EXPECT_EQ(lost.CurrentNote(), 60.0f);
    EXPECT_FALSE(rig.Voice(0).GateOpen());
    EXPECT_FALSE(rig.Voice(1).GateOpen());
    EXPECT_EQ(rig.Voice(0).GetEnvelope(0).stageIndex, 0);
    EXPECT_EQ(rig.Master().VoiceNote(1), -1);
    EXPECT_EQ(rig.Master().NextVoice(), 1);
}
