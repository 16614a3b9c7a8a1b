// Gate groups: a trigger of 5 ms at 48000 Hz lasts exactly 240 samples wherever it begins and in
// any block size, and 0.001 ms lasts one sample; velocity 64 on an even gate with its accent on sets
// two gates, 63 sets one; a note above the base note + 7 touches nothing; a note off ends a trigger
// early and clears the accent gate with it.
#include <gtest/gtest.h>

#include "tests/modules/hardware/GateRig.h"

namespace {
std::unique_ptr<BR::HostDriver> Group2(float triggerMs = 0.0f) {
    auto driver = BR::Test::MakeGateDriver("ardentcontroller");
    driver->SetParameterByName("Gates 2 MIDI Channel", 3.0f);
    driver->SetParameterByName("Gates 2 Base Note", 36.0f);  // notes 36 to 43: bits 8 to 15
    driver->SetParameterByName("Trigger 2/3 Length", triggerMs);
    return driver;
}
}  // namespace

TEST(GateGroups, FiveMillisecondTriggerLasts240Samples) {
    for (uint32_t block : {1u, 7u, 256u, 1024u}) {
        for (uint32_t start : {0u, 5u, 255u, 1000u, 1023u}) {
            auto driver = Group2(5.0f);
            EXPECT_EQ(BR::Test::Controller(*driver).Group(1).triggerSamples[2], 0);  // not read yet
            const auto r = BR::Test::RenderGates(*driver, 1600, block, {{start, {0x92, 38, 100}}});
            EXPECT_EQ(r.Rises(10), (std::vector<uint32_t>{start})) << block << " " << start;
            EXPECT_EQ(r.Falls(10), (std::vector<uint32_t>{start + 240})) << block << " " << start;
            EXPECT_EQ(BR::Test::Controller(*driver).Group(1).triggerSamples[2], 240);
        }
    }
}

TEST(GateGroups, ThousandthOfAMillisecondIsOneSample) {
    auto driver = Group2(0.001f);
    const auto r = BR::Test::RenderGates(*driver, 100, 16, {{40, {0x92, 38, 100}}, {60, {0x92, 38, 100}}});
    EXPECT_EQ(r.Rises(10), (std::vector<uint32_t>{40, 60}));
    EXPECT_EQ(r.Falls(10), (std::vector<uint32_t>{41, 61}));
}

TEST(GateGroups, WithoutTriggerTheGateFollowsTheNote) {
    auto driver = Group2();
    const auto r = BR::Test::RenderGates(*driver, 300, 64, {{10, {0x92, 43, 1}}, {200, {0x82, 43, 0}}});
    EXPECT_EQ(r.Rises(15), (std::vector<uint32_t>{10}));
    EXPECT_EQ(r.Falls(15), (std::vector<uint32_t>{200}));
}

TEST(GateGroups, NoteOffEndsATriggerEarly) {
    auto driver = Group2(5.0f);
    const auto r = BR::Test::RenderGates(*driver, 400, 64, {{10, {0x92, 38, 100}}, {100, {0x92, 38, 0}}});
    EXPECT_EQ(r.Falls(10), (std::vector<uint32_t>{100}));
}

TEST(GateGroups, AccentVelocity64SetsTwoGates63One) {
    auto driver = Group2();
    driver->SetParameterByName("Accent 2/4", 1.0f);  // gate 4 is the accent of gate 3
    const auto r = BR::Test::RenderGates(
        *driver, 400, 64,
        {{10, {0x92, 38, 64}}, {100, {0x82, 38, 0}}, {200, {0x92, 38, 63}}, {300, {0x82, 38, 0}}});
    EXPECT_EQ(r.Rises(10), (std::vector<uint32_t>{10, 200}));
    EXPECT_EQ(r.Rises(11), (std::vector<uint32_t>{10}));
    EXPECT_EQ(r.Falls(11), (std::vector<uint32_t>{100}));
    // Without the accent, velocity 127 sets one gate; an odd gate has no accent partner.
    driver->SetParameterByName("Accent 2/4", 0.0f);
    const auto plain =
        BR::Test::RenderGates(*driver, 100, 64, {{10, {0x92, 38, 127}}, {20, {0x92, 39, 127}}});
    EXPECT_EQ(plain.Rises(11), (std::vector<uint32_t>{20}));
    EXPECT_TRUE(plain.Rises(12).empty());
}

TEST(GateGroups, NotesOutsideTheGroupTouchNothing) {
    auto driver = Group2();
    const auto r = BR::Test::RenderGates(*driver, 200, 64,
                                         {{0, {0x92, 36, 100}},
                                          {50, {0x82, 44, 0}},
                                          {60, {0x92, 44, 100}},
                                          {70, {0x92, 35, 100}},
                                          {80, {0x91, 37, 100}}});
    for (uint32_t i = 0; i < 200; ++i) {
        ASSERT_EQ(r.frames[i][1], 0x01) << i;  // only gate 1 of group 2, from the first note
        ASSERT_EQ(r.frames[i][0] | r.frames[i][2] | r.frames[i][3] | r.frames[i][4], 0) << i;
    }
}

TEST(GateGroups, ChangingTheChannelClearsTheGates) {
    auto driver = Group2();
    BR::Test::RenderGates(*driver, 50, 64, {{0, {0x92, 36, 100}}});
    driver->SetParameterByName("Gates 2 MIDI Channel", 4.0f);
    const auto r = BR::Test::RenderGates(*driver, 50, 64);
    EXPECT_EQ(r.frames[0][1], 0);
}
