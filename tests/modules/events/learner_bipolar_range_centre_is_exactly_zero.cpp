// A controller on a range of -1 to 1 (minimum = -maximum): 64 gives exactly 0, 127 gives 1, and 1 and 0
// both give -1, in 126 steps; learned onto DC's "Output Symmetric L" and read from the parameter.
#include <gtest/gtest.h>

#include "LearnerRig.h"

using BR::Test::LearnerTest;
using BrelCorvaneLearner::MappedValue;

TEST_F(LearnerTest, BipolarValuesOfTheFormula) {
    EXPECT_EQ(MappedValue(-1.0f, 1.0f, BR::kUnitGeneric, 64), 0.0f);
    EXPECT_FLOAT_EQ(MappedValue(-1.0f, 1.0f, BR::kUnitGeneric, 127), 1.0f);
    EXPECT_EQ(MappedValue(-1.0f, 1.0f, BR::kUnitGeneric, 1), -1.0f);
    EXPECT_EQ(MappedValue(-1.0f, 1.0f, BR::kUnitGeneric, 0), -1.0f);
    // One step is 1/126 of the range: 65 lies 64/126 of the way up.
    EXPECT_FLOAT_EQ(MappedValue(-1.0f, 1.0f, BR::kUnitGeneric, 65), 64.0f * 2.0f * 0.007936508f - 1.0f);
    EXPECT_FLOAT_EQ(MappedValue(-2.0f, 2.0f, BR::kUnitGeneric, 127), 2.0f);
    EXPECT_EQ(MappedValue(-2.0f, 2.0f, BR::kUnitGeneric, 64), 0.0f);
}

TEST_F(LearnerTest, BipolarParameterThroughALearnedController) {
    auto dc = BR::Test::MakeDriver("dc");
    auto learner = BR::Test::MakeDriver("learner");
    ASSERT_EQ(dc->Module().ParameterTable()[1].minimum, -1.0f);  // "Output Symmetric L"
    BR::Test::Learn(*dc, "Output Symmetric L", *dc, {0xB0, 7, 100});
    for (const auto& [cc, expected] : std::vector<std::pair<uint8_t, float>>{
             {64, 0.0f}, {127, 1.0f}, {1, -1.0f}, {0, -1.0f}, {64, 0.0f}}) {
        BR::Test::SendMIDI(*dc, {0xB0, 7, cc});
        EXPECT_FLOAT_EQ(BR::Test::Value(*dc, "Output Symmetric L"), expected) << int(cc);
        if (cc == 64) {
            EXPECT_EQ(BR::Test::Value(*dc, "Output Symmetric L"), 0.0f);
        }
    }
    // The output follows at the next block: 0.0 symmetric plus 0 positive, times 1.
    BR::Test::SendMIDI(*dc, {0xB0, 7, 127});
    const auto out = BR::Test::RenderFrames(*dc, 64, 64);
    EXPECT_FLOAT_EQ(out[0][10], 1.0f);
}
