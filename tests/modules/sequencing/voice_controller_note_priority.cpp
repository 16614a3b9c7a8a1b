// Held-note logic of one voice: "Newest", "Lowest" and "Highest" choose the sounding note and the note
// to fall back to; under "Newest" equal sequence numbers fall back to the lowest note.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

namespace {
using BR::Test::Midi;
float Play(BR::Test::VoiceRig& rig, std::vector<std::vector<uint8_t>> events) {
    std::vector<BR::Test::MidiAt> midi;
    for (auto& e : events)
        midi.push_back({0, e});
    rig.Render(16, 16, midi);
    return rig.vc.CurrentNote();
}
}  // namespace

TEST(VoiceControllerPriority, Newest) {
    BR::Test::VoiceRig rig;
    EXPECT_EQ(Play(rig, {Midi(0x90, 60, 100), Midi(0x90, 64, 100), Midi(0x90, 62, 100)}), 62.0f);
    EXPECT_EQ(rig.vc.HeldCount(), 3);
    EXPECT_EQ(Play(rig, {Midi(0x80, 62, 0)}), 64.0f);
    EXPECT_EQ(Play(rig, {Midi(0x80, 64, 0)}), 60.0f);
    EXPECT_TRUE(rig.vc.GateOpen());
    EXPECT_EQ(Play(rig, {Midi(0x90, 60, 0)}), 60.0f);  // velocity 0 is a note-off
    EXPECT_FALSE(rig.vc.GateOpen());
    EXPECT_EQ(rig.vc.HeldCount(), 0);
}

TEST(VoiceControllerPriority, NewestTieFallsBackToTheLowestNote) {
    BR::Test::VoiceRig rig;
    // 60 gets 1, 62 gets 2; after 60 goes the count is 1, so 64 gets 2 as well; 65 gets 3.
    Play(rig, {Midi(0x90, 60, 100), Midi(0x90, 62, 100), Midi(0x80, 60, 0), Midi(0x90, 64, 100),
               Midi(0x90, 65, 100)});
    EXPECT_EQ(rig.vc.HeldNote(62), 2);
    EXPECT_EQ(rig.vc.HeldNote(64), 2);
    EXPECT_EQ(Play(rig, {Midi(0x80, 65, 0)}), 62.0f);
}

TEST(VoiceControllerPriority, Lowest) {
    BR::Test::VoiceRig rig;
    rig.Set("Note Priority", 1);
    EXPECT_EQ(Play(rig, {Midi(0x90, 64, 100)}), 64.0f);
    EXPECT_EQ(Play(rig, {Midi(0x90, 60, 100)}), 60.0f);
    EXPECT_EQ(Play(rig, {Midi(0x90, 67, 100)}), 60.0f);
    EXPECT_EQ(Play(rig, {Midi(0x80, 60, 0)}), 64.0f);
    EXPECT_EQ(Play(rig, {Midi(0x80, 67, 0)}), 64.0f);
}

TEST(VoiceControllerPriority, Highest) {
    BR::Test::VoiceRig rig;
    rig.Set("Note Priority", 2);
    EXPECT_EQ(Play(rig, {Midi(0x90, 60, 100), Midi(0x90, 67, 100)}), 67.0f);
    EXPECT_EQ(Play(rig, {Midi(0x90, 64, 100)}), 67.0f);
    EXPECT_EQ(Play(rig, {Midi(0x80, 67, 0)}), 64.0f);
    EXPECT_EQ(Play(rig, {Midi(0x80, 60, 0)}), 64.0f);
    EXPECT_EQ(Play(rig, {Midi(0x80, 64, 0)}), 64.0f);
    EXPECT_FALSE(rig.vc.GateOpen());
}
