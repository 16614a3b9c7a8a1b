// The display's line for a mapping names the source instance by module name, local and global id,
// the channel from 1, the kind and the number; channel pressure has no number; no mapping, no text.
#include <gtest/gtest.h>

#include "LearnerRig.h"
#include "framework/InstanceRegistry.h"

using BR::Test::LearnerTest;
namespace L = BrelCorvaneLearner;

TEST_F(LearnerTest, DescriptionLines) {
    auto first = BR::Test::MakeDriver("dc");
    auto dc = BR::Test::MakeDriver("dc");
    auto learner = BR::Test::MakeDriver("learner");
    uint32_t localId = 0, globalId = 0;
    {
        std::lock_guard<std::recursive_mutex> lock(BR::InstanceRegistry::Lock());
        uint32_t l = 0, g = 0;
        BR::InstanceRegistry::GetInstanceIds(&first->Module(), l, g);
        BR::InstanceRegistry::GetInstanceIds(&dc->Module(), localId, globalId);
    }
    ASSERT_EQ(localId, 2u);
    BR::Test::Learn(*first, "Output Positive L", *dc, {0xB3, 74, 0});
    BR::Test::Learn(*first, "Output Positive R", *dc, {0xDF, 0});
    BR::Test::Learn(*first, "Multiplier L", *dc, {0xA0, 61, 0});
    char line[96];
    L::DescribeMapping(&first->Module(), 0, line, sizeof line);
    EXPECT_EQ(std::string(line), "Corvane DC 2 (" + std::to_string(globalId) + ") Ch4 CC74");
    L::DescribeMapping(&first->Module(), BR::Test::Row(*first, "Output Positive R"), line, sizeof line);
    EXPECT_EQ(std::string(line), "Corvane DC 2 (" + std::to_string(globalId) + ") Ch16 CP");
    L::DescribeMapping(&first->Module(), BR::Test::Row(*first, "Multiplier L"), line, sizeof line);
    EXPECT_EQ(std::string(line), "Corvane DC 2 (" + std::to_string(globalId) + ") Ch1 PP61");
    L::DescribeMapping(&first->Module(), BR::Test::Row(*first, "Input Add L"), line, sizeof line);
    EXPECT_STREQ(line, "");
}
