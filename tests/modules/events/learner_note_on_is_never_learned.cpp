// Notes (on and off), program changes and the pitch wheel are never learned nor applied, nor kept in
// the history; controller and pressure messages are, newest first.
#include <gtest/gtest.h>

#include "LearnerRig.h"

using BR::Test::LearnerTest;
namespace L = BrelCorvaneLearner;

TEST_F(LearnerTest, NoteOnIsNeverLearned) {
    auto dc = BR::Test::MakeDriver("dc");
    auto learner = BR::Test::MakeDriver("learner");
    BR::SetActiveParameter(&dc->Module(), 0);
    L::SetLearnActive(true);
    const L::RecentMessage before = L::RecentMessageAt(0);
    for (std::vector<uint8_t> bytes : std::vector<std::vector<uint8_t>>{
             {0x90, 60, 100}, {0x80, 60, 0}, {0x90, 60, 0}, {0xC0, 5}, {0xE0, 0, 127}})
        BR::Test::SendMIDI(*dc, bytes);
    EXPECT_EQ(L::NumMappings(), 0);
    EXPECT_EQ(BR::Test::Value(*dc, "Output Positive L"), 0.0f);
    const L::RecentMessage after = L::RecentMessageAt(0);
    EXPECT_EQ(after.source, before.source);
    EXPECT_EQ(after.status, before.status);
    EXPECT_EQ(after.dataByte1, before.dataByte1);
    BR::Test::SendMIDI(*dc, {0xB1, 7, 127});
    EXPECT_EQ(L::NumMappings(), 1);
    EXPECT_FLOAT_EQ(BR::Test::Value(*dc, "Output Positive L"), 1.0f);
}

TEST_F(LearnerTest, HistoryHoldsTheLastFive) {
    auto dc = BR::Test::MakeDriver("dc");
    auto learner = BR::Test::MakeDriver("learner");
    for (uint8_t cc = 1; cc <= 7; ++cc)
        BR::Test::SendMIDI(*dc, {0xB0, cc, uint8_t(cc * 10)});
    BR::Test::SendMIDI(*dc, {0x90, 60, 100});  // not recorded
    for (int k = 0; k < 5; ++k) {
        const L::RecentMessage m = L::RecentMessageAt(k);
        EXPECT_EQ(m.source, &dc->Module());
        EXPECT_EQ(m.status, 0xB0);
        EXPECT_EQ(m.dataByte1, 7 - k);
        EXPECT_EQ(m.dataByte2, (7 - k) * 10);
    }
}
