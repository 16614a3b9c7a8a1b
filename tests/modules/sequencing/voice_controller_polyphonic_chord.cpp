// A master with four voices fed by its first output plays a four-note chord: each voice's gate opens
// on the exact sample of its note, the notes go to the voices in the order pickVoice rotates through,
// and each voice's pitch output is its note.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

TEST(VoiceControllerPoly, ChordOpensEachGateOnItsSample) {
    BR::Test::PolyRig rig(4, {1, 2, 3, 4});
    for (auto& voice : rig.voices)
        voice->LinearCalibration();
    const uint32_t at[4] = {300, 300, 517, 1029};
    const uint8_t notes[4] = {60, 64, 67, 72};
    std::vector<BR::Test::MidiAt> midi;
    for (int k = 0; k < 4; ++k)
        midi.push_back({at[k], BR::Test::Midi(0x90, notes[k], 100)});
    rig.Render(2048, midi);

    for (size_t v = 0; v < 4; ++v) {
        const auto& gate = rig.voiceOut[v][1];
        // Two notes at frame 300 share one marker there; the later notes have markers of their own.
        const uint32_t expected = at[v];
        for (uint32_t i = 0; i < expected; ++i)
            ASSERT_EQ(gate[i], 0.0f) << "voice " << v + 1 << " frame " << i;
        EXPECT_EQ(gate[expected], 1.0f) << "voice " << v + 1;
        EXPECT_FLOAT_EQ(rig.voiceOut[v][0][2000], notes[v] / 128.0f);
        EXPECT_EQ(rig.Voice(v).CurrentNote(), float(notes[v]));
    }
    EXPECT_EQ(rig.Master().VoiceNote(1), 60);
    EXPECT_EQ(rig.Master().VoiceNote(4), 72);
    EXPECT_EQ(rig.Master().BatchWrite(), 3);
}
