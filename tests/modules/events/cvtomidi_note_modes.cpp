// Note behaviours: "Gate Only" ignores cv while the gate is open; "Max Note Length" with "Note Off Mode"
// "None" never ends a note; "Normal" sends the old note off first and "Legato" after; switching notes
// off mid-note sends the note off at the next block unless the mode is "None".
#include <gtest/gtest.h>

#include "CVToMIDIRig.h"

using BR::Test::SentMessage;

TEST(CVToMIDINoteModes, GateOnlyDoesNotFollowCvWhileOpen) {
    BR::Test::CVToMIDIRig rig;
    rig.Set("Enable Note L", 1);
    rig.Set("Note On Mode L", 1);
    std::vector<float> cv(400, 0.25f), gate(400, 0.0f);
    std::fill(cv.begin() + 150, cv.end(), 0.5f);  // note 72 from 150, gate still open
    std::fill(gate.begin() + 10, gate.begin() + 300, 1.0f);
    rig.Render(cv, gate);
    const std::vector<SentMessage> expected = {{10, 0x90, 60, 64}, {300, 0x80, 60, 0}};
    EXPECT_EQ(rig.sent, expected);

    // "Gated" does follow it.
    BR::Test::CVToMIDIRig gated;
    gated.Set("Enable Note L", 1);
    gated.Set("Note On Mode L", 2);
    gated.Render(cv, gate);
    const std::vector<SentMessage> following = {
        {10, 0x90, 60, 64}, {150, 0x80, 60, 0}, {150, 0x90, 72, 64}, {300, 0x80, 72, 0}};
    EXPECT_EQ(gated.sent, following);
}

TEST(CVToMIDINoteModes, MaxNoteLengthWithOffModeNoneNeverEnds) {
    for (float mode : {0.0f, 1.0f}) {
        BR::Test::CVToMIDIRig rig;
        rig.Set("Enable Note L", 1);
        rig.Set("Max Note Length L", 100.0f);
        rig.Set("Note Off Mode L", mode);
        rig.Render(std::vector<float>(44100, 0.25f), std::vector<float>(44100, 0.0f));
        if (mode == 0.0f) {
            EXPECT_EQ(rig.sent, (std::vector<SentMessage>{{0, 0x90, 60, 64}}));
        } else {
            // "Normal": 4410 samples, counted down from the note's own sample, so the off is at 4409.
            EXPECT_EQ(rig.sent, (std::vector<SentMessage>{{0, 0x90, 60, 64}, {4409, 0x80, 60, 0}}));
        }
    }
}

TEST(CVToMIDINoteModes, NormalSendsOffBeforeAndLegatoAfter) {
    std::vector<float> cv(200, 0.25f);
    std::fill(cv.begin() + 100, cv.end(), 0.5f);
    BR::Test::CVToMIDIRig normal;
    normal.Set("Enable Note L", 1);
    normal.Render(cv, std::vector<float>(200, 0.0f));
    EXPECT_EQ(normal.sent,
              (std::vector<SentMessage>{{0, 0x90, 60, 64}, {100, 0x80, 60, 0}, {100, 0x90, 72, 64}}));
    BR::Test::CVToMIDIRig legato;
    legato.Set("Enable Note L", 1);
    legato.Set("Note Off Mode L", 2);
    legato.Render(cv, std::vector<float>(200, 0.0f));
    EXPECT_EQ(legato.sent,
              (std::vector<SentMessage>{{0, 0x90, 60, 64}, {100, 0x90, 72, 64}, {100, 0x80, 60, 0}}));
}

TEST(CVToMIDINoteModes, DisablingNotesEndsTheSoundingNoteAtTheNextBlock) {
    for (float mode : {0.0f, 1.0f}) {
        BR::Test::CVToMIDIRig rig;
        rig.Set("Enable Note L", 1);
        rig.Set("Note Off Mode L", mode);
        rig.Render(std::vector<float>(64, 0.25f), std::vector<float>(64, 0.0f));
        rig.Set("Enable Note L", 0);
        rig.Render(std::vector<float>(64, 0.25f), std::vector<float>(64, 0.0f));
        if (mode == 0.0f)
            EXPECT_EQ(rig.sent, (std::vector<SentMessage>{{0, 0x90, 60, 64}}));
        else
            EXPECT_EQ(rig.sent, (std::vector<SentMessage>{{0, 0x90, 60, 64}, {64, 0x80, 60, 0}}));
    }
}
