// Straight envelope runs in closed form. Each step rounds level + step to float, a serial chain of one
// add latency per sample. But while every sum lands inside one binade [2^e, 2^(e+1)) of the level's
// magnitude, the floats around it are the multiples of u = 2^(e-23), and the level itself is one: the
// rounded sum is then level + R, with R the step rounded to that grid, whatever the level, unless the
// step lies exactly halfway between two multiples (round-to-even then looks at the level's last bit).
// So the k-th level is level + k * R, and that expression is exact in float: k * R is a multiple of u
// below 2^24 u, and the sum is a float of the binade. Near the binade's edges, at ties, for tiny or huge
// levels and for steps that cross a binade in a few samples, the sums run one by one.
#include "EnvelopeRamp.h"

#include <algorithm>
#include <bit>

#include "framework/SampleKernels.h"

namespace BR {

namespace {

// Samples run one by one where the closed form stops (at an edge, a tie, a short tail).
constexpr uint32_t kSerialRun = 16;
// Grid positions of a magnitude in its binade: 2^23 .. 2^24 - 1.
constexpr int64_t kGridLow = int64_t(1) << 23;
constexpr int64_t kGridHigh = (int64_t(1) << 24) - 1;

uint32_t Bits(float x) {
    return std::bit_cast<uint32_t>(x);
}

float FromBits(uint32_t b) {
    return std::bit_cast<float>(b);
}

// Works out R for the step and the binade of the level whose bits are `bits`.
void Analyse(RampPlan& plan, uint32_t bits, float step) {
    plan.stepBits = Bits(step);
    plan.levelTop = bits >> 23;
    plan.exact = false;
    const int32_t biased = int32_t((bits >> 23) & 0xFFu);
    // Magnitudes of 2^-100 to 2^100 only: every multiple of the grid then stays a normal float (a host's
    // flush-to-zero mode cannot touch it), and nothing nears infinity. Zero and NaN fail here too.
    if (biased < 127 - 100 || biased > 127 + 100) return;
    const float binade = FromBits(uint32_t(biased) << 23);  // 2^e
    // A step of an eighth of the binade or more crosses it within a few samples (a NaN step fails too).
    if (!(step < binade * 0.125f && step > -binade * 0.125f)) return;
    // step / (u / 2) and R / u by exact powers of two: 2^(24 - e) and 2^(23 - e).
    const float perHalfGrid = FromBits(uint32_t(127 + 24 - (biased - 127)) << 23);
    const float perGrid = FromBits(uint32_t(127 + 23 - (biased - 127)) << 23);
    const float halves = step * perHalfGrid;  // |halves| < 2^22: exact, or underflowing only below 1
    const int32_t wholeHalves = int32_t(halves);
    if (float(wholeHalves) == halves && (wholeHalves & 1) != 0) return;  // a tie
    // R as the hardware rounds it on this grid (in its present rounding mode): a sum taken in the middle
    // of the binade, where it cannot leave it. The subtraction is exact (both lie in one binade).
    const bool negative = (bits >> 31) != 0;
    const float middle = negative ? -1.5f * binade : 1.5f * binade;
    const float r = (middle + step) - middle;
    const int32_t rq = int32_t(r * perGrid);  // exact: R is a multiple of u below 2^21 u
    plan.middle = middle;
    plan.rounded = r;
    plan.grow = negative ? -rq : rq;  // grid steps towards larger magnitudes
    plan.exact = true;
}

// How many steps from `level` keep every sum equal to level + k * R (k = 1 .. the result, at most
// `limit`), with R stored in `rounded`; 0 where the closed form does not hold.
uint32_t ExactRun(float level, float step, uint32_t limit, float& rounded, RampPlan& plan) {
    const uint32_t bits = Bits(level);
    if (plan.stepBits != Bits(step) || plan.levelTop != bits >> 23) {
        Analyse(plan, bits, step);
    } else if (plan.exact && Bits((plan.middle + step) - plan.middle) != Bits(plan.rounded)) {
        // R depends on the rounding mode alone (the flush modes cannot reach the sizes taken): the
        // mode changed since the plan was made.
        Analyse(plan, bits, step);
    }
    if (!plan.exact) return 0;
    // Every sum must land in [2^e + u, 2^(e+1) - u]: the exact sum, within u / 2 of it, then lies
    // strictly inside the binade, where the rounding grid is u.
    const int64_t q0 = int64_t((bits & 0x7FFFFFu) | 0x800000u);
    const int64_t grow = plan.grow;
    const int64_t room = grow > 0 ? kGridHigh - q0 : q0 - (kGridLow + 1);
    if (room < 0) return 0;
    rounded = plan.rounded;
    if (grow == 0) return limit;
    const int64_t perStep = grow > 0 ? grow : -grow;
    if (int64_t(limit) * perStep <= room) return limit;
    return uint32_t(room / perStep);
}

// Writes levels as they are, or mapped.
struct Unmapped {
    float operator()(float level) const { return level; }
#ifdef BR_SAMPLE_SSE2
    __m128 operator()(__m128 level) const {
        return level;
    }
#endif
    void Serial(float& level, float step, float* y, uint32_t n) const {
        RampSamplesSerial(level, step, y, n);
    }
};

struct Mapped {
    float scale, offset;
    float operator()(float level) const { return level * scale + offset; }
#ifdef BR_SAMPLE_SSE2
    __m128 operator()(__m128 level) const {
        return _mm_add_ps(_mm_mul_ps(level, _mm_set1_ps(scale)), _mm_set1_ps(offset));
    }
#endif
    void Serial(float& level, float step, float* y, uint32_t n) const {
        RampSamplesMappedSerial(level, step, y, n, scale, offset);
    }
};

template <typename Map>
void Ramp(float& level, float step, float* y, uint32_t count, Map map, RampPlan* kept) {
    RampPlan local;
    RampPlan& plan = kept ? *kept : local;
    float l = level;
    uint32_t i = 0;
    while (i < count) {
        const uint32_t left = count - i;
        // A level the step no longer moves stays where it is: the sum is a function of the level alone.
        if (Bits(l + step) == Bits(l)) {
            FillSamples(y + i, left, map(l));
            break;
        }
        float r = 0.0f;
        const uint32_t run = left >= kSerialRun ? ExactRun(l, step, left, r, plan) : 0;
        if (run < kSerialRun) {
            const uint32_t n = std::min(left, kSerialRun);
            map.Serial(l, step, y + i, n);
            i += n;
            continue;
        }
        float* out = y + i;
        uint32_t k = 0;
#ifdef BR_SAMPLE_SSE2
        const __m128 base = _mm_set1_ps(l), stride = _mm_set1_ps(r);
        // k counted in integers (a one-cycle add from one group to the next), converted exactly.
        const __m128i four = _mm_set1_epi32(4);
        __m128i index = _mm_setr_epi32(1, 2, 3, 4);
        for (; k + 4 <= run; k += 4) {
            _mm_storeu_ps(out + k, map(_mm_add_ps(base, _mm_mul_ps(_mm_cvtepi32_ps(index), stride))));
            index = _mm_add_epi32(index, four);
        }
#endif
        for (; k < run; ++k)
            out[k] = map(l + float(k + 1) * r);
        l = l + float(run) * r;
        i += run;
    }
    level = l;
}

}  // namespace

void RampSamples(float& level, float step, float* y, uint32_t count, RampPlan* plan) {
    Ramp(level, step, y, count, Unmapped{}, plan);
}

void RampSamplesMapped(float& level, float step, float* y, uint32_t count, float scale, float offset,
                       RampPlan* plan) {
    Ramp(level, step, y, count, Mapped{scale, offset}, plan);
}

}  // namespace BR
