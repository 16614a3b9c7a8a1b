// "Retrig On": every start of a voice restarts the envelopes and fires the trigger, also a press that
// leaves the chosen note as it is, and a fall-back. "Retrig Off": with the gate open the pitch moves
// and the envelopes go on.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

using BR::Test::Midi;

namespace {
// Output 6 is the trigger; the sustain stage is reached after A1 + A2 + A3 = 0.2 s.
BR::Test::Channels PlayPhrase(BR::Test::VoiceRig& rig) {
    return rig.Render(36000, 256,
                      {{0, Midi(0x90, 60, 100)}, {12000, Midi(0x90, 67, 100)}, {24000, Midi(0x80, 60, 0)}});
}
}  // namespace

TEST(VoiceControllerRetrigger, OnRestartsEvenWhenTheChosenNoteStays) {
    BR::Test::VoiceRig rig;
    rig.Set("Note Priority", 1);  // "Lowest": pressing 67 over 60 keeps 60
    const auto out = PlayPhrase(rig);
    EXPECT_EQ(out[5][12000], 1.0f);  // trigger fired by the press of 67
    EXPECT_EQ(out[5][11999], 0.0f);
    // Env1 jumps back into its attack: A1 of time 0 restarts A2 from the sustain level upward.
    EXPECT_FLOAT_EQ(out[2][11999], 0.5f);
    EXPECT_GT(out[2][12100], 0.5f);
    // The fall-back from 60 to 67 restarts them too.
    EXPECT_EQ(out[5][24000], 1.0f);
    EXPECT_EQ(rig.vc.CurrentNote(), 67.0f);
}

TEST(VoiceControllerRetrigger, OffLetsTheEnvelopesGoOn) {
    BR::Test::VoiceRig rig;
    rig.Set("Retrigger Mode", 1);
    const auto out = PlayPhrase(rig);  // "Newest": 67 takes over, 60 comes back on release
    EXPECT_EQ(out[5][12000], 0.0f);
    EXPECT_EQ(out[5][24000], 0.0f);
    for (uint32_t i = 11000; i < 30000; ++i)
        ASSERT_FLOAT_EQ(out[2][i], 0.5f) << i;
    EXPECT_EQ(rig.vc.CurrentNote(), 67.0f);
    EXPECT_EQ(rig.vc.GetEnvelope(0).stageIndex, BR::kEnvSustain);
}
