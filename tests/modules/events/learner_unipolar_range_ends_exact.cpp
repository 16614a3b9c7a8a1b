// A controller on a range of 0 to 1: 127 gives 1 to float precision and 0 gives 0, in 127 steps; the
// unit of the row learned decides rounding: indexed and relative semitones floor, boolean is 0 or 1.
#include <gtest/gtest.h>

#include "LearnerRig.h"

using BR::Test::LearnerTest;
using BrelCorvaneLearner::MappedValue;

TEST_F(LearnerTest, UnipolarValuesOfTheFormula) {
    EXPECT_FLOAT_EQ(MappedValue(0.0f, 1.0f, BR::kUnitGeneric, 127), 1.0f);
    EXPECT_EQ(MappedValue(0.0f, 1.0f, BR::kUnitGeneric, 0), 0.0f);
    EXPECT_FLOAT_EQ(MappedValue(0.0f, 1.0f, BR::kUnitGeneric, 64), 64.0f * 0.007874016f);
    EXPECT_FLOAT_EQ(MappedValue(-500.0f, 500.0f, BR::kUnitGeneric, 0), -500.0f);  // bipolar: 0 is the minimum
    EXPECT_FLOAT_EQ(MappedValue(20.0f, 100.0f, BR::kUnitGeneric, 127), 100.0f);
}

TEST_F(LearnerTest, UnitsRoundTheResult) {
    // Indexed 0 to 100: 127 * 100 / 127 = 99.99999 floors to 99; 64 gives 50.39 and floors to 50.
    EXPECT_EQ(MappedValue(0.0f, 100.0f, BR::kUnitIndexed, 64), 50.0f);
    EXPECT_EQ(MappedValue(0.0f, 3.0f, BR::kUnitIndexed, 127), std::floor(3.0f * 127 * 0.007874016f));
    EXPECT_EQ(MappedValue(-24.0f, 24.0f, BR::kUnitRelativeSemitones, 65),
              std::floor(64 * 48 * 0.007936508f - 24.0f));
    EXPECT_EQ(MappedValue(-24.0f, 24.0f, BR::kUnitRelativeSemitones, 64), 0.0f);
    EXPECT_EQ(MappedValue(0.0f, 1.0f, BR::kUnitBoolean, 0), 0.0f);
    EXPECT_EQ(MappedValue(0.0f, 1.0f, BR::kUnitBoolean, 1), 1.0f);
    EXPECT_EQ(MappedValue(0.0f, 1.0f, BR::kUnitBoolean, 127), 1.0f);
    // Other units keep the fraction.
    EXPECT_FLOAT_EQ(MappedValue(0.0f, 1000.0f, BR::kUnitMilliseconds, 1), 1000.0f * 0.007874016f);
}

TEST_F(LearnerTest, UnipolarParameterThroughALearnedController) {
    auto dc = BR::Test::MakeDriver("dc");
    auto learner = BR::Test::MakeDriver("learner");
    BR::Test::Learn(*dc, "Output Positive L", *dc, {0xB3, 20, 5});
    BR::Test::SendMIDI(*dc, {0xB3, 20, 127});
    EXPECT_FLOAT_EQ(BR::Test::Value(*dc, "Output Positive L"), 1.0f);
    BR::Test::SendMIDI(*dc, {0xB3, 20, 0});
    EXPECT_EQ(BR::Test::Value(*dc, "Output Positive L"), 0.0f);
    // Another channel or controller is another source.
    BR::Test::SendMIDI(*dc, {0xB4, 20, 127});
    BR::Test::SendMIDI(*dc, {0xB3, 21, 127});
    EXPECT_EQ(BR::Test::Value(*dc, "Output Positive L"), 0.0f);
}
