// Straight envelope runs written in closed form give the bits of the serial chain of rounded sums: for
// levels of every size and sign, steps that round to ties, steps of an eighth of a binade, tiny and zero
// steps, runs across zero and across many binades, starts on binade edges, NaN and infinite levels, and
// under flush-to-zero and every rounding mode. Also through renderEnvelope: a straight segment, sustain.
#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <bit>
#include <cfenv>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "modules/sequencing/Envelope.h"
#include "modules/sequencing/EnvelopeRamp.h"

namespace {

uint32_t Bits(float x) {
    return std::bit_cast<uint32_t>(x);
}

float FromBits(uint32_t b) {
    return std::bit_cast<float>(b);
}

// Compares the closed form with the serial sums; returns false (with a message) at the first difference.
bool SameAsSerial(float level, float step, uint32_t count) {
    std::vector<float> fast(count + 1, -7.0f), plain(count + 1, -7.0f);
    float a = level, b = level;
    BR::RampSamples(a, step, fast.data(), count);
    BR::RampSamplesSerial(b, step, plain.data(), count);
    for (uint32_t i = 0; i <= count; ++i)
        if (Bits(fast[i]) != Bits(plain[i])) {
            ADD_FAILURE() << "level " << level << " (0x" << std::hex << Bits(level) << ") step " << step
                          << " (0x" << Bits(step) << std::dec << ") sample " << i << ": " << fast[i]
                          << " against " << plain[i];
            return false;
        }
    if (Bits(a) != Bits(b)) {
        ADD_FAILURE() << "final level " << a << " against " << b << " from " << level << " by " << step;
        return false;
    }
    return true;
}

// Random levels and steps of all sizes, and the cases the closed form must hand to the serial sums.
bool RandomCases(uint32_t seed, int cases) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> exponent(-130, 40), shift(2, 30), length(1, 3000);
    std::uniform_real_distribution<float> unit(1.0f, 2.0f);
    for (int c = 0; c < cases; ++c) {
        const float level = std::ldexp(unit(random), exponent(random)) * (random() % 2 ? -1.0f : 1.0f);
        // A level flushed to zero (under flush-to-zero) has no exponent: steps of the smallest sizes.
        const int e = level == 0.0f ? -149 : std::ilogb(level);
        float step = std::ldexp(unit(random), e - shift(random)) * (random() % 2 ? -1.0f : 1.0f);
        switch (random() % 6) {
            case 0:  // exactly halfway between two multiples of the level's grid
                step = std::ldexp(float(2 * (random() % 1000) + 1), e - 24) * (random() % 2 ? -1.0f : 1.0f);
                break;
            case 1:  // an eighth of the binade, just below and at
                step = std::ldexp(random() % 2 ? 0.99999f : 1.0f, e - 3);
                break;
            case 2:  // a whole multiple of the grid
                step = std::ldexp(float(random() % 5000), e - 23);
                break;
            default:
                break;
        }
        if (!SameAsSerial(level, step, uint32_t(length(random)))) return false;
    }
    return true;
}

}  // namespace

TEST(EnvelopeStraightRamp, RandomLevelsAndSteps) {
    EXPECT_TRUE(RandomCases(1, 4000));
}

TEST(EnvelopeStraightRamp, EdgesZeroCrossingsAndSpecialValues) {
    const float inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
    // Starts on a binade edge, falling into the finer grid below and rising into the coarser one above.
    for (float level :
         {0.5f, 1.0f, 0.25f, -0.5f, -1.0f, std::nextafter(0.5f, 0.0f), std::nextafter(1.0f, 2.0f)})
        for (float step : {1.0f / 480.0f, -1.0f / 480.0f, 1e-7f, -1e-7f, 3e-8f, -3e-8f, 2.9802322e-8f})
            EXPECT_TRUE(SameAsSerial(level, step, 4000));
    // From 0 to 1 and from 1 through 0 to -1 (the release's overshoot), through every binade near zero.
    EXPECT_TRUE(SameAsSerial(0.0f, 1.0f / 480.0f, 500));
    EXPECT_TRUE(SameAsSerial(-0.0f, 1.0f / 4800.0f, 5000));
    EXPECT_TRUE(SameAsSerial(1.0f, -1.0f / 2400.0f, 4900));
    EXPECT_TRUE(SameAsSerial(0.5f, -1.0f / 24000.0f, 48000));
    EXPECT_TRUE(SameAsSerial(1e-3f, -1e-9f, 2000000));
    // Zero steps: sustain and finished stages, signed zeros.
    for (float level : {0.5f, 0.0f, -0.0f, 1e-40f, -3.0f})
        for (float step : {0.0f, -0.0f})
            EXPECT_TRUE(SameAsSerial(level, step, 300));
    // Subnormal steps and levels, huge levels, NaN and infinities.
    EXPECT_TRUE(SameAsSerial(1e-30f, 1e-40f, 300));
    EXPECT_TRUE(SameAsSerial(1e-40f, 1e-44f, 300));
    EXPECT_TRUE(SameAsSerial(1e30f, 1e24f, 300));
    EXPECT_TRUE(SameAsSerial(3e38f, 1e32f, 300));
    EXPECT_TRUE(SameAsSerial(0.5f, nan, 100));
    EXPECT_TRUE(SameAsSerial(nan, 0.001f, 100));
    EXPECT_TRUE(SameAsSerial(inf, -0.001f, 100));
    EXPECT_TRUE(SameAsSerial(0.5f, inf, 100));
    EXPECT_TRUE(SameAsSerial(0.5f, FromBits(0x00000001u), 100));
    // Every length from nothing to a few vectors past the serial run.
    for (uint32_t n = 0; n < 70; ++n)
        EXPECT_TRUE(SameAsSerial(0.3f, 1.0f / 4800.0f, n));
}

TEST(EnvelopeStraightRamp, FlushToZeroAndRoundingModes) {
    const unsigned int csr = _mm_getcsr();
    _mm_setcsr(csr | 0x8040u);  // flush to zero, denormals are zero, as many hosts run their audio
    EXPECT_TRUE(RandomCases(2, 1500));
    EXPECT_TRUE(SameAsSerial(1e-37f, -1e-40f, 1000));
    _mm_setcsr(csr);
    const int mode = std::fegetround();
    for (int rounding : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        std::fesetround(rounding);
        EXPECT_TRUE(RandomCases(3 + uint32_t(rounding), 1500)) << "rounding mode " << rounding;
        std::fesetround(mode);
    }
}

TEST(EnvelopeStraightRamp, PlanKeptBetweenPiecesStepsAndModes) {
    // One plan through ramps rendered piece by piece, with the step, the binade, the sign and the
    // rounding and flush modes changing between pieces: each piece matches the serial sums in its mode.
    BR::RampPlan plan;
    std::mt19937 random(9);
    const int modes[4] = {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};
    const unsigned int csr = _mm_getcsr();
    const int mode = std::fegetround();
    float fast = 0.0f, plain = 0.0f;
    float step = 1.0f / 480.0f;
    std::vector<float> a(64), b(64);
    for (int piece = 0; piece < 20000; ++piece) {
        if (piece % 500 == 0) {  // a new ramp: level and step of another size or sign
            fast = plain = std::ldexp(1.0f + float(random() % 1000) / 1000.0f, int(random() % 20) - 10) *
                           (random() % 2 ? -1.0f : 1.0f);
            step = std::ldexp(1.0f + float(random() % 1000) / 1000.0f,
                              std::ilogb(fast) - 8 - int(random() % 12)) *
                   (random() % 2 ? -1.0f : 1.0f);
        }
        if (piece % 97 == 0) {
            std::fesetround(modes[random() % 4]);
            _mm_setcsr((_mm_getcsr() & ~0x8040u) | (random() % 2 ? 0x8040u : 0u));
        }
        const uint32_t n = 1 + uint32_t(random() % 64);
        BR::RampSamples(fast, step, a.data(), n, &plan);
        BR::RampSamplesSerial(plain, step, b.data(), n);
        bool same = Bits(fast) == Bits(plain);
        for (uint32_t i = 0; i < n; ++i)
            same = same && Bits(a[i]) == Bits(b[i]);
        if (!same) {
            _mm_setcsr(csr);
            std::fesetround(mode);
            FAIL() << "piece " << piece << " from " << plain << " by " << step;
        }
    }
    _mm_setcsr(csr);
    std::fesetround(mode);
}

TEST(EnvelopeStraightRamp, StraightSegmentAndSustainThroughTheEnvelope) {
    // Shape 1 gives straight parabolic segments; the sustain and finished stages are flat ones.
    BR::EnvParameters p;
    for (int s = 0; s < BR::kNumEnvSegments; ++s) {
        p.type[s] = BR::kEnvParabolic;
        p.shape[s] = 1.0f;
    }
    p.time[BR::kSegA1] = 0.01f;
    p.levelA1 = 1.0f;
    p.time[BR::kSegA2] = 0.05f;
    p.levelA2 = 0.5f;
    p.time[BR::kSegA3] = 0.02f;
    p.sustain = 0.5f;
    p.time[BR::kSegR1] = 0.1f;
    const float rate = 48000.0f;
    BR::Envelope env;
    BR::envNoteOn(env, 1.0f, p, rate);
    const BR::EnvStage a1 = env.stages[BR::kEnvA1];
    EXPECT_EQ(a1.coefficient, 0.0f);
    std::vector<float> out(8000), expected(8000);
    BR::renderEnvelope(env, out.data(), 5000);
    EXPECT_EQ(env.stageIndex, BR::kEnvSustain);
    BR::envNoteOff(env, p, rate);
    BR::renderEnvelope(env, out.data() + 5000, 3000);
    // The same segments, one sum at a time: A1 from 0 to 1, A2 to 0.5, A3 flat, sustain, R1 to 0.
    float level = 0.0f;
    uint32_t at = 0;
    auto serial = [&](float step, uint32_t n) {
        BR::RampSamplesSerial(level, step, expected.data() + at, n);
        at += n;
    };
    const float spans[3][3] = {{0.01f, 0.0f, 1.0f}, {0.05f, 1.0f, 0.5f}, {0.02f, 0.5f, 0.5f}};
    for (const auto& span : spans) {
        BR::EnvStage stage;
        BR::setupEnvStage(stage, BR::kEnvParabolic, span[0], 1.0f, span[1], span[2], rate);
        EXPECT_EQ(stage.coefficient, 0.0f);
        serial(stage.increment, stage.samplesLeft);
    }
    serial(0.0f, 5000 - at);  // sustain
    BR::EnvStage r1;
    BR::setupEnvStage(r1, BR::kEnvParabolic, 0.1f, 1.0f, level, 0.0f, rate);
    serial(r1.increment, 3000);
    ASSERT_EQ(at, 8000u);
    for (uint32_t i = 0; i < 8000; ++i)
        ASSERT_EQ(Bits(out[i]), Bits(expected[i])) << "sample " << i;
    EXPECT_GT(out[600], 0.9f);    // the attack rose
    EXPECT_LT(out[7999], 0.45f);  // the release falls
}
