// The Voice Controller's output stage (outputs without smoothing four samples to a vector, smoothed
// ones side by side in vector lanes when there are enough of them, else alone) gives bit for bit what
// the same mix and smoothing give one output at a time: for every number of moving signals, outputs
// that take or leave out each signal, outputs not written (left untouched), slew, one-pole and no
// smoothing mixed across the outputs (0 to 6 smoothed), with and without smoothers, at run lengths
// around the four-sample groups, and on signals and levels with signed zeros, subnormals, infinities
// and not-a-numbers.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "modules/sequencing/VoiceMix.h"

namespace {

using BrelCorvaneVoiceController::kMaxMoving;
using BrelCorvaneVoiceController::kMixOutputs;
using BrelCorvaneVoiceController::MixPlan;
using BrelCorvaneVoiceController::MixRun;

struct Random {
    uint32_t x = 12345;
    uint32_t Next() { return x = x * 1664525u + 1013904223u; }
    float Uniform(float low, float high) {
        return low + (high - low) * float(Next() >> 8) * (1.0f / 16777216.0f);
    }
    bool OneIn(uint32_t n) { return Next() % n == 0; }
};

// Mostly ordinary values, now and then one that rounds or compares unusually.
float Value(Random& r, float scale) {
    const float inf = std::numeric_limits<float>::infinity();
    switch (r.Next() % 40) {
        case 0:
            return -0.0f;
        case 1:
            return 0.0f;
        case 2:
            return 1e-39f;  // subnormal
        case 3:
            return r.OneIn(2) ? inf : -inf;
        case 4:
            return std::numeric_limits<float>::quiet_NaN();
        default:
            return r.Uniform(-scale, scale);
    }
}

bool SameBits(float a, float b) {
    if (std::isnan(a) && std::isnan(b)) return true;
    return std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace

TEST(VoiceControllerOutputStage, LanesMatchOneByOne) {
    Random r;
    const uint32_t lengths[] = {0, 1, 2, 3, 4, 5, 7, 8, 9, 13, 64, 67};
    int checked = 0;
    int paths[4] = {};  // outputs taken by each path over all runs
    for (int trial = 0; trial < 600; ++trial) {
        const uint32_t frames = lengths[trial % 12];
        const bool specials = trial % 3 == 0;
        MixRun run;
        run.numSignals = int32_t(r.Next() % (kMaxMoving + 1));
        std::vector<std::vector<float>> signals(kMaxMoving, std::vector<float>(frames + 1));
        for (int32_t k = 0; k < kMaxMoving; ++k) {
            for (float& v : signals[size_t(k)])
                v = specials ? Value(r, 2.0f) : r.Uniform(-2.0f, 2.0f);
            run.signal[k] = signals[size_t(k)].data();
        }
        const int pattern = trial % 4;  // all written, a master's last four, a random set, none but one
        for (int32_t o = 0; o < kMixOutputs; ++o) {
            run.written[o] = pattern == 0 || (pattern == 1 && o >= 2) || (pattern == 2 && !r.OneIn(3)) ||
                             (pattern == 3 && o == trial % kMixOutputs);
            run.base[o] = specials ? Value(r, 1.0f) : r.Uniform(-1.0f, 1.0f);
            for (int32_t k = 0; k < kMaxMoving; ++k) {
                run.takes[o][k] = trial % 5 == 0 || !r.OneIn(3);  // every fifth run: every output takes all
                run.coefficient[o][k] = specials ? Value(r, 1.0f) : r.Uniform(-1.0f, 1.0f);
            }
        }
        const bool withSmoothers = trial % 7 != 0;
        BR::OutputSmoother smoothers[kMixOutputs];
        for (int32_t o = 0; o < kMixOutputs; ++o) {
            // Off, a slew limit, a one-pole, and a time under half a sample (off too).
            const float ms[4] = {0.0f, r.Uniform(0.02f, 20.0f), -r.Uniform(0.02f, 20.0f), -0.005f};
            smoothers[o].Configure(ms[r.Next() % 4], 48000.0f);
            smoothers[o].smoothState = specials ? Value(r, 1.0f) : r.Uniform(-1.0f, 1.0f);
        }
        BR::OutputSmoother reference[kMixOutputs];
        std::memcpy(reference, smoothers, sizeof reference);

        // Unwritten outputs hold a pattern that must survive.
        const float untouched = 7.25f;
        std::vector<std::vector<float>> lanes(kMixOutputs, std::vector<float>(frames + 1, untouched));
        std::vector<std::vector<float>> oneByOne = lanes;
        float* y[kMixOutputs];
        float* z[kMixOutputs];
        for (int32_t o = 0; o < kMixOutputs; ++o) {
            y[o] = lanes[size_t(o)].data();
            z[o] = oneByOne[size_t(o)].data();
        }
        MixPlan plan;
        PlanMix(run, withSmoothers ? smoothers : nullptr, plan);
        for (int32_t o = 0; o < kMixOutputs; ++o)
            ++paths[int(plan.path[o])];
        MixAndSmooth(plan, run.signal, run.base, y, frames, withSmoothers ? smoothers : nullptr);
        MixAndSmoothOneByOne(run, z, frames, withSmoothers ? reference : nullptr);

        for (int32_t o = 0; o < kMixOutputs; ++o) {
            for (uint32_t i = 0; i <= frames; ++i) {
                ASSERT_TRUE(SameBits(lanes[size_t(o)][i], oneByOne[size_t(o)][i]))
                    << "trial " << trial << ", output " << o << ", sample " << i << ": "
                    << lanes[size_t(o)][i] << " against " << oneByOne[size_t(o)][i];
                if (!run.written[o] || i == frames) {
                    ASSERT_EQ(lanes[size_t(o)][i], untouched);
                }
                ++checked;
            }
            ASSERT_TRUE(SameBits(smoothers[o].smoothState, reference[o].smoothState))
                << "trial " << trial << ", output " << o << " smoother state";
        }
    }
    EXPECT_GT(checked, 20000);
    for (int path = 0; path < 4; ++path)
        EXPECT_GT(paths[path], 100) << "path " << path;
}

// A difference exactly one slew step up or down takes the step (the comparisons include equality),
// which here lands elsewhere than the sample itself would.
TEST(VoiceControllerOutputStage, DifferenceOfExactlyOneStepTakesTheStep) {
    MixRun run;
    BR::OutputSmoother smoothers[kMixOutputs], reference[kMixOutputs];
    for (int32_t o = 0; o < kMixOutputs; ++o) {
        const bool up = o % 2 == 0;
        // 1 - 1e-8 rounds to 1: the step is 1, and a step from -1 or 1 lands on 0, not on 1e-8.
        const float from = up ? -1.0f : 1.0f, to = 1e-8f;
        run.written[o] = true;
        run.base[o] = to;
        smoothers[o].slewStep = std::fabs(to - from);
        smoothers[o].smoothState = from;
        ASSERT_NE(up ? from + smoothers[o].slewStep : from - smoothers[o].slewStep, to);
    }
    std::memcpy(reference, smoothers, sizeof reference);
    std::vector<std::vector<float>> lanes(kMixOutputs, std::vector<float>(5)), oneByOne = lanes;
    float* y[kMixOutputs];
    float* z[kMixOutputs];
    for (int32_t o = 0; o < kMixOutputs; ++o) {
        y[o] = lanes[size_t(o)].data();
        z[o] = oneByOne[size_t(o)].data();
    }
    MixPlan plan;
    PlanMix(run, smoothers, plan);
    MixAndSmooth(plan, run.signal, run.base, y, 5, smoothers);
    MixAndSmoothOneByOne(run, z, 5, reference);
    for (int32_t o = 0; o < kMixOutputs; ++o) {
        EXPECT_EQ(oneByOne[size_t(o)][0], 0.0f);
        for (uint32_t i = 0; i < 5; ++i)
            EXPECT_TRUE(SameBits(lanes[size_t(o)][i], oneByOne[size_t(o)][i])) << o << " " << i;
    }
}
