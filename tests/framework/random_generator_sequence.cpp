// The system's random generator: x = x * 49979693 + 15485867 in 32 bits, read as
// ((x AND 0xFFFFF) - 0x80000) * 1.9073486e-6. From state 0 the sequence is fixed.
#include <gtest/gtest.h>

#include <cstdint>

#include "framework/RandomGenerator.h"

TEST(RandomGenerator, FirstStatesFromZero) {
    const uint32_t states[4] = {15485867u, 17441722u, 3889204573u, 2957943300u};
    const float values[4] = {0.536947241f, 0.267444606f, -0.930974944f, 0.829109178f};
    uint32_t x = 0;
    for (int i = 0; i < 4; ++i) {
        x = BR::NextRandomState(x);
        EXPECT_EQ(x, states[i]) << i;
        EXPECT_NEAR(BR::RandomStateToFloat(x), values[i], 1e-7f) << i;
    }
}

TEST(RandomGenerator, StepWrapsIn32Bits) {
    for (uint32_t x : {0u, 1u, 0x7FFFFFFFu, 0xFFFFFFFFu, 123456789u}) {
        const uint64_t wide = (uint64_t(x) * 49979693u + 15485867u) & 0xFFFFFFFFu;
        EXPECT_EQ(BR::NextRandomState(x), uint32_t(wide)) << x;
    }
}

TEST(RandomGenerator, ReadingCoversMinusOneToJustBelowOne) {
    EXPECT_EQ(BR::RandomStateToFloat(0x00000000u), -1.0f);
    EXPECT_EQ(BR::RandomStateToFloat(0xFFF00000u), -1.0f);  // only the low 20 bits count
    EXPECT_EQ(BR::RandomStateToFloat(0x00080000u), 0.0f);
    EXPECT_FLOAT_EQ(BR::RandomStateToFloat(0x000FFFFFu), 524287.0f * 1.9073486e-6f);
    EXPECT_LT(BR::RandomStateToFloat(0x000FFFFFu), 1.0f);
}

TEST(RandomGenerator, StructDrawsTheSameSequence) {
    BR::RandomGenerator generator;
    EXPECT_EQ(generator.state, 0u);
    uint32_t x = 0;
    for (int i = 0; i < 1000; ++i) {
        x = BR::NextRandomState(x);
        EXPECT_EQ(generator.Next(), BR::RandomStateToFloat(x));
    }
    EXPECT_EQ(generator.state, x);
}
