// Note channels: a note already held leaves the held count alone; priorities choose the note on the
// level byte; "Newest" falls back to the highest held note; velocity reaches its output; controller
// 120 and 123 clear the channel; the retrigger mode changes nothing audible.
#include <gtest/gtest.h>

#include "tests/modules/hardware/GateRig.h"

namespace {
std::unique_ptr<BR::HostDriver> Channel1(float priority) {
    auto driver = BR::Test::MakeDriver("ardentcontroller");
    driver->SetParameterByName("Ch 1 Note Priority", priority);
    driver->SetParameterByName("Ch 1 Vel Output", 4.0f);
    return driver;
}
int Pitch(const BR::Test::GateRender& r, uint32_t i) {
    return r.frames[i][0] / 4 + 48;
}
}  // namespace

TEST(GateNoteChannels, RepeatedNoteOnLeavesHeldCount) {
    auto driver = Channel1(0.0f);
    BR::Test::RenderGates(*driver, 100, 64, {{0, {0x90, 60, 100}}, {10, {0x90, 60, 90}}});
    EXPECT_EQ(BR::Test::Controller(*driver).Channel(0).heldCount, 1);
    BR::Test::RenderGates(*driver, 100, 64, {{0, {0x80, 60, 0}}});
    EXPECT_EQ(BR::Test::Controller(*driver).Channel(0).heldCount, 0);
    EXPECT_EQ(BR::Test::Controller(*driver).Channel(0).gate, 0);
}

TEST(GateNoteChannels, PrioritiesAndFallBack) {
    const std::vector<BR::Test::MidiAt> midi = {{0, {0x90, 60, 127}},
                                                {10, {0x90, 72, 127}},
                                                {20, {0x90, 64, 127}},
                                                {30, {0x80, 64, 0}},
                                                {40, {0x80, 72, 0}}};
    // Newest: 60, 72, 64; after 64's release the highest held (72); then 60.
    auto r = BR::Test::RenderGates(*Channel1(0.0f), 50, 7, midi);
    EXPECT_EQ((std::vector<int>{Pitch(r, 5), Pitch(r, 15), Pitch(r, 25), Pitch(r, 35), Pitch(r, 45)}),
              (std::vector<int>{60, 72, 64, 72, 60}));
    r = BR::Test::RenderGates(*Channel1(1.0f), 50, 7, midi);  // Lowest
    EXPECT_EQ((std::vector<int>{Pitch(r, 5), Pitch(r, 15), Pitch(r, 25), Pitch(r, 35), Pitch(r, 45)}),
              (std::vector<int>{60, 60, 60, 60, 60}));
    r = BR::Test::RenderGates(*Channel1(2.0f), 50, 7, midi);  // Highest
    EXPECT_EQ((std::vector<int>{Pitch(r, 5), Pitch(r, 15), Pitch(r, 25), Pitch(r, 35), Pitch(r, 45)}),
              (std::vector<int>{60, 72, 72, 72, 60}));
    // The gate ("Output 3") stays on throughout and the velocity byte is trunc(127/127 * 255).
    for (uint32_t i = 0; i < 50; ++i)
        ASSERT_EQ(r.frames[i][2], 255) << i;
    EXPECT_EQ(r.frames[5][3], 255);
}

TEST(GateNoteChannels, NotesOutsideTheRangeAreIgnored) {
    auto driver = Channel1(0.0f);
    driver->SetParameterByName("Ch 1 Range Max", 70.0f);
    const auto r = BR::Test::RenderGates(*driver, 20, 8, {{0, {0x90, 71, 100}}, {0, {0x90, 47, 100}}});
    EXPECT_EQ(r.frames[10][2], 0);
    EXPECT_EQ(BR::Test::Controller(*driver).Channel(0).heldCount, 0);
}

TEST(GateNoteChannels, AllSoundOffAndAllNotesOff) {
    for (uint8_t controller : {120, 123}) {
        auto driver = Channel1(0.0f);
        const auto r = BR::Test::RenderGates(
            *driver, 40, 8, {{0, {0x90, 60, 100}}, {1, {0x90, 62, 100}}, {20, {0xB0, controller, 0}}});
        EXPECT_EQ(r.frames[19][2], 255);
        EXPECT_EQ(r.frames[20][2], 0) << int(controller);
        const auto& ch = BR::Test::Controller(*driver).Channel(0);
        EXPECT_EQ(ch.heldCount, 0);
        // 120 returns the channel to note 0; 123 releases the notes and keeps the last level.
        EXPECT_EQ(Pitch(r, 30), controller == 120 ? 48 + 16 : 62) << int(controller);
    }
}

TEST(GateNoteChannels, SustainIsRecordedButHoldsNothing) {
    auto driver = Channel1(0.0f);
    const auto r = BR::Test::RenderGates(*driver, 40, 8,
                                         {{0, {0xB0, 64, 127}}, {5, {0x90, 60, 100}}, {10, {0x80, 60, 0}}});
    EXPECT_EQ(BR::Test::Controller(*driver).Channel(0).sustain, 1);
    EXPECT_EQ(r.frames[20][2], 0);
}

TEST(GateNoteChannels, RetriggerModeChangesNothingAudible) {
    const std::vector<BR::Test::MidiAt> midi = {
        {0, {0x90, 60, 100}}, {10, {0x90, 62, 50}}, {20, {0x80, 62, 0}}};
    auto a = Channel1(0.0f);
    auto b = Channel1(0.0f);
    b->SetParameterByName("Ch 1 Retrigger Mode", 1.0f);
    EXPECT_EQ(BR::Test::RenderGates(*a, 40, 8, midi).out, BR::Test::RenderGates(*b, 40, 8, midi).out);
}
