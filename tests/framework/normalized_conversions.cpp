// The editor's 0..1 mapping: logarithmic for frequency, rounded for indexed rows and beats, linear
// otherwise; a row with minimum equal to maximum converts every normalized value to the minimum.
#include <gtest/gtest.h>

#include <cmath>

#include "framework/ParameterModel.h"

TEST(NormalizedConversions, MinimumEqualToMaximumGivesTheMinimum) {
    const BR::ParameterDefinition scale{"Scale L", BR::kUnitIndexed, 0, 0, 0};
    for (float n : {0.0f, 0.3f, 0.5f, 1.0f})
        EXPECT_EQ(BR::NormalizedToValue(scale, n), 0.0f);
    const BR::ParameterDefinition flat{"Flat", BR::kUnitGeneric, 3, 3, 3};
    EXPECT_EQ(BR::NormalizedToValue(flat, 0.7f), 3.0f);
    // The logarithmic rule would divide 0 by 0 here; the flat row still gives its minimum.
    const BR::ParameterDefinition rate{"Rate", BR::kUnitFrequency, 0, 0, 0};
    for (float n : {0.0f, 0.5f, 1.0f})
        EXPECT_EQ(BR::NormalizedToValue(rate, n), 0.0f);
    // The way back gives a number too, never 0 / 0.
    EXPECT_EQ(BR::ValueToNormalized(scale, 0.0f), 0.0f);
    EXPECT_EQ(BR::ValueToNormalized(flat, 3.0f), 0.0f);
}

TEST(NormalizedConversions, FrequencyIsLogarithmic) {
    const BR::ParameterDefinition row{"Rate", BR::kUnitFrequency, 0.01f, 100.0f, 1.0f};
    EXPECT_NEAR(BR::NormalizedToValue(row, 0.5f), 1.0f, 1e-5f);
    EXPECT_NEAR(BR::NormalizedToValue(row, 0.25f), 0.1f, 1e-6f);
    EXPECT_NEAR(BR::ValueToNormalized(row, 10.0f), 0.75f, 1e-6f);
}

TEST(NormalizedConversions, IndexedAndBeatsRound) {
    const BR::ParameterDefinition indexed{"Wave", BR::kUnitIndexed, 0, 5, 0};
    EXPECT_EQ(BR::NormalizedToValue(indexed, 0.29f), 1.0f);  // 1.45 + 0.5 floors to 1
    EXPECT_EQ(BR::NormalizedToValue(indexed, 0.31f), 2.0f);  // 1.55 + 0.5 floors to 2
    const BR::ParameterDefinition beats{"Length", BR::kUnitBeats, 1, 16, 4};
    EXPECT_EQ(BR::NormalizedToValue(beats, 0.5f), 9.0f);  // 7.5 + 1 + 0.5
}

TEST(NormalizedConversions, OtherUnitsAreLinear) {
    const BR::ParameterDefinition ms{"Smoothing L", BR::kUnitMilliseconds, -500, 500, 0};
    EXPECT_EQ(BR::NormalizedToValue(ms, 0.75f), 250.0f);
    EXPECT_EQ(BR::ValueToNormalized(ms, -250.0f), 0.25f);
}
