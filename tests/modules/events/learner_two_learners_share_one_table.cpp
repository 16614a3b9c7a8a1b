// Two Learners in one process share one table: what one learns, the other saves; removing all in one
// removes in both, and only a "yes" to the confirmation removes; removing the active parameter's mapping
// leaves the others.
#include <gtest/gtest.h>

#include "LearnerRig.h"
#include "framework/StateChunkStore.h"

using BR::Test::LearnerTest;
namespace L = BrelCorvaneLearner;

namespace {
std::vector<uint8_t> MappingEntry(BrelCorvaneBase& learner) {
    uint32_t size = 0;
    EXPECT_EQ(learner.GetChunkSize(BR::kChunkIdChunky, &size), BR::kNoErr);
    BR::ChunkRecord record{};
    EXPECT_EQ(learner.GetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    BR::StateChunkStore store;
    EXPECT_TRUE(store.Parse(record.data.data(), record.data.size()));
    BR::StateChunkStore::Blob blob{};
    if (!store.Find(BrelCorvaneLearner::kTagMappings, blob)) return {};
    return std::vector<uint8_t>(blob.data, blob.data + blob.length);
}

int confirmations = 0;
bool answer = false;
bool Confirm(const char* title, const char* text) {
    ++confirmations;
    EXPECT_STREQ(title, "Remove All Mappings");
    EXPECT_STREQ(text, "This will completely remove all currently set up MIDI mappings.\nAre you sure?");
    return answer;
}
}  // namespace

TEST_F(LearnerTest, SavedStateOfBothHoldsTheSameTable) {
    auto dc = BR::Test::MakeDriver("dc");
    auto a = BR::Test::MakeDriver("learner");
    auto b = BR::Test::MakeDriver("learner");
    EXPECT_TRUE(MappingEntry(a->Module()).empty());  // no mapping: no entry
    BR::Test::Learn(*dc, "Output Positive L", *dc, {0xB0, 7, 0});
    BR::Test::Learn(*dc, "Multiplier R", *a, {0xB1, 8, 0});  // the source is the Learner a
    const std::vector<uint8_t> fromA = MappingEntry(a->Module());
    const std::vector<uint8_t> fromB = MappingEntry(b->Module());
    ASSERT_EQ(fromA.size(), 4u + 2 * 36u);
    EXPECT_EQ(fromA, fromB);
    EXPECT_EQ(BR::ReadU32(fromA.data()), 2u);  // version
}

TEST_F(LearnerTest, RemovingAllInOneRemovesInBoth) {
    auto dc = BR::Test::MakeDriver("dc");
    auto a = BR::Test::MakeDriver("learner");
    auto b = BR::Test::MakeDriver("learner");
    BR::Test::Learn(*dc, "Output Positive L", *dc, {0xB0, 7, 0});
    BR::Test::Learn(*dc, "Output Positive R", *dc, {0xB0, 8, 0});
    ASSERT_EQ(L::NumMappings(), 2);
    L::SetConfirmHandler(&Confirm);
    answer = false;
    confirmations = 0;
    EXPECT_EQ(a->Module().SetProperty(64132, nullptr, 0), BR::kNoErr);
    EXPECT_EQ(confirmations, 1);
    EXPECT_EQ(L::NumMappings(), 2);  // "no" keeps everything
    answer = true;
    EXPECT_EQ(a->Module().SetProperty(64132, nullptr, 0), BR::kNoErr);
    EXPECT_EQ(confirmations, 2);
    EXPECT_EQ(L::NumMappings(), 0);
    EXPECT_TRUE(MappingEntry(b->Module()).empty());
    BR::Test::SendMIDI(*dc, {0xB0, 7, 127});
    EXPECT_EQ(BR::Test::Value(*dc, "Output Positive L"), 0.0f);
}

TEST_F(LearnerTest, RemovingTheActiveParametersMapping) {
    auto dc = BR::Test::MakeDriver("dc");
    auto a = BR::Test::MakeDriver("learner");
    auto b = BR::Test::MakeDriver("learner");
    BR::Test::Learn(*dc, "Output Positive L", *dc, {0xB0, 7, 0});
    BR::Test::Learn(*dc, "Output Positive R", *dc, {0xB0, 7, 0});  // one controller, two parameters
    BR::Test::Learn(*dc, "Multiplier L", *dc, {0xB0, 9, 0});
    ASSERT_EQ(L::NumMappings(), 3);
    BR::SetActiveParameter(&dc->Module(), BR::Test::Row(*dc, "Output Positive L"));
    EXPECT_EQ(b->Module().SetProperty(64131, nullptr, 0), BR::kNoErr);
    EXPECT_EQ(L::NumMappings(), 2);
    BR::Test::SendMIDI(*dc, {0xB0, 7, 127});
    EXPECT_EQ(BR::Test::Value(*dc, "Output Positive L"), 0.0f);
    EXPECT_FLOAT_EQ(BR::Test::Value(*dc, "Output Positive R"), 1.0f);
    char line[96];
    L::DescribeMapping(&dc->Module(), BR::Test::Row(*dc, "Output Positive L"), line, sizeof line);
    EXPECT_STREQ(line, "");
}
