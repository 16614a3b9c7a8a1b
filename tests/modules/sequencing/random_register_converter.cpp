// The converter: a plain binary read of the low "DAC Bits" (1 bit gives exactly -1 or 1), bits beyond
// "Register Length" (zero in "Rotate Left", left over in "Rotate Right"), and the weighted sum with its
// scale modes, "Dynamic" with all weights 0 giving a factor and an output of 0.
#include <gtest/gtest.h>

#include "modules/sequencing/RandomRegister.h"

TEST(RandomConverter, OneBitIsExactlyMinusOneOrOne) {
    BR::RandomSettings s;
    s.dacBits = 1;
    BR::RandomRegister reg;
    reg.registerBits = 0b10;
    EXPECT_EQ(reg.ReadConverter(s, nullptr), -1.0f);
    reg.registerBits = 0b11;
    EXPECT_EQ(reg.ReadConverter(s, nullptr), 1.0f);
}

TEST(RandomConverter, BinaryReadOfTheLowBits) {
    BR::RandomSettings s;
    s.dacBits = 8;
    BR::RandomRegister reg;
    reg.registerBits = 0x1FF;  // bit 8 is beyond the converter
    EXPECT_EQ(reg.ReadConverter(s, nullptr), 1.0f);
    reg.registerBits = 0x40;
    EXPECT_FLOAT_EQ(reg.ReadConverter(s, nullptr), (64.0f - 127.5f) / 127.5f);
}

TEST(RandomConverter, BitsBeyondTheRegisterLength) {
    BR::RandomSettings s;
    s.randomEnabled = true;
    s.registerLength = 4;
    s.dacBits = 8;
    s.randomness = 1.0f;  // no flips
    BR::RandomRegister left, right;
    left.registerBits = right.registerBits = 0x40;  // from a former longer setting
    s.randomMode = BR::kRotateLeft;
    EXPECT_EQ(left.Step(s, nullptr), -1.0f);  // masked to four bits: all high bits read 0
    EXPECT_EQ(left.registerBits, 0u);
    s.randomMode = BR::kRotateRight;
    EXPECT_FLOAT_EQ(right.Step(s, nullptr), (32.0f - 127.5f) / 127.5f);  // moved down, still there
    EXPECT_EQ(right.registerBits, 0x20u);
}

TEST(RandomConverter, WeightedSumAndRanges) {
    float weights[BR::kNumDACBits] = {0.5f, -0.25f, 0.125f, 1.0f};
    BR::RandomSettings s;
    s.dacEnabled = true;
    s.dacBits = 3;
    s.dacScaleFactor = 1.0f;
    BR::RandomRegister reg;
    reg.registerBits = 0b1111;
    s.dacRangeMode = 1;  // Bipolar: the negative weight counts
    EXPECT_FLOAT_EQ(reg.ReadConverter(s, weights), 0.375f);
    s.dacRangeMode = 0;  // Unipolar: it counts as 0
    EXPECT_FLOAT_EQ(reg.ReadConverter(s, weights), 0.625f);
    s.dacScaleFactor = 4.0f;  // clamped to 1
    EXPECT_EQ(reg.ReadConverter(s, weights), 1.0f);
}

TEST(RandomConverter, ScaleModes) {
    float weights[BR::kNumDACBits] = {0.5f, 0.25f, 0.25f, 7.0f};
    EXPECT_FLOAT_EQ(BR::DACScaleFactor(BR::kDACScaleManual, 3, 8.0f, weights), 0.125f);
    EXPECT_FLOAT_EQ(BR::DACScaleFactor(BR::kDACScaleAutomatic, 3, 8.0f, weights), 1.0f / 3.0f);
    EXPECT_FLOAT_EQ(BR::DACScaleFactor(BR::kDACScaleDynamic, 3, 8.0f, weights), 1.0f);
    float negative[BR::kNumDACBits] = {-0.5f, 0.25f};
    EXPECT_FLOAT_EQ(BR::DACScaleFactor(BR::kDACScaleDynamic, 2, 8.0f, negative), -0.25f);  // kept raw
}

TEST(RandomConverter, DynamicWithZeroWeightsGivesZero) {
    const float zeros[BR::kNumDACBits] = {};
    BR::RandomSettings s;
    s.dacEnabled = true;
    s.dacBits = 8;
    s.dacScaleFactor = BR::DACScaleFactor(BR::kDACScaleDynamic, 8, 8.0f, zeros);
    EXPECT_EQ(s.dacScaleFactor, 0.0f);
    BR::RandomRegister reg;
    reg.registerBits = 0xFF;
    EXPECT_EQ(reg.ReadConverter(s, zeros), 0.0f);
}
