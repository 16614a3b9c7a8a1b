// The register's rotation and flip: "Register Length" 1 wraps the bit onto itself, so "Rotate Right"
// gives it back, flipped or not; the flips follow the shared generator against "Randomness".
#include <gtest/gtest.h>

#include "modules/sequencing/RandomRegister.h"

namespace {
// The generator written out independently: x = x * 49979693 + 15485867, read around 0x80000.
float NextDraw(uint32_t& x) {
    x = x * 49979693u + 15485867u;
    return float(int32_t(x & 0xFFFFF) - 0x80000) * 1.9073486e-6f;
}
}  // namespace

TEST(RandomRegisterRotation, LengthOneGivesTheBitBack) {
    BR::RandomSettings s;
    s.randomEnabled = true;
    s.registerLength = 1;
    s.dacBits = 1;
    for (uint64_t start : {0u, 1u}) {
        BR::RandomRegister reg;
        reg.registerBits = start;
        s.randomness = 1.0f;  // never flips
        for (int i = 0; i < 10; ++i) {
            reg.Step(s, nullptr);
            ASSERT_EQ(reg.registerBits, start);
        }
        s.randomness = -1.0f;  // flips whenever the draw is above -1
        uint32_t x = reg.randomState;
        uint64_t bit = start;
        for (int i = 0; i < 50; ++i) {
            if (NextDraw(x) > -1.0f) bit ^= 1u;
            reg.Step(s, nullptr);
            ASSERT_EQ(reg.registerBits, bit) << i;
        }
    }
}

TEST(RandomRegisterRotation, RightAndLeftWithFlipsAtRandomnessZero) {
    BR::RandomSettings s;
    s.randomEnabled = true;
    s.registerLength = 5;
    s.randomness = 0.0f;
    for (int32_t mode : {BR::kRotateRight, BR::kRotateLeft}) {
        s.randomMode = mode;
        BR::RandomRegister reg;
        reg.registerBits = 0b00101;
        uint64_t r = reg.registerBits;
        uint32_t x = 0;
        int flips = 0;
        for (int i = 0; i < 200; ++i) {
            const bool flip = NextDraw(x) > 0.0f;
            flips += flip;
            if (mode == BR::kRotateRight) {
                const uint64_t b = (r & 1u) ^ uint64_t(flip);
                r = (b << 4) | (r >> 1);
            } else {
                const uint64_t b = ((r >> 4) & 1u) ^ uint64_t(flip);
                r = ((r << 1) & 0x1Fu) | b;
            }
            reg.Step(s, nullptr);
            ASSERT_EQ(reg.registerBits, r) << mode << " " << i;
        }
        EXPECT_GT(flips, 70);  // about half the time
        EXPECT_LT(flips, 130);
        EXPECT_EQ(reg.randomState, x);
    }
}

TEST(RandomRegisterRotation, EveryRunFromAResetIsTheSame) {
    BR::RandomSettings s;
    s.randomEnabled = true;
    BR::RandomRegister a, b;
    for (int i = 0; i < 30; ++i)
        ASSERT_EQ(a.Step(s, nullptr), b.Step(s, nullptr));
    // An all-zero register stays at zero until a flip: with Randomness 1 nothing ever flips.
    s.randomness = 1.0f;
    BR::RandomRegister zero;
    for (int i = 0; i < 30; ++i)
        zero.Step(s, nullptr);
    EXPECT_EQ(zero.registerBits, 0u);
}
