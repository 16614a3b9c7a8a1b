// The Voice Controller's output stage: outputs without smoothing four samples to a vector, smoothed
// ones side by side in vector lanes, and the same one output at a time with scalar arithmetic.
#include "VoiceMix.h"

#include <algorithm>

#include "framework/SampleKernels.h"

namespace BrelCorvaneVoiceController {

namespace {

// The fewest smoothed outputs that run in lanes (see PlanMix).
constexpr int32_t kFewestLaned = 4;

// One output: the unrolled sum keeps the signal pointers and coefficients in registers and adds the
// terms in order; the smoother's arithmetic runs on each mixed sample while it is in a register.
template <int N>
void MixOne(float* y, float base, const float* const* signals, const float* coefficients, uint32_t frames,
            BR::OutputSmoother* smoother) {
    const float* s[N > 0 ? N : 1];
    float c[N > 0 ? N : 1];
    for (int k = 0; k < N; ++k) {
        s[k] = signals[k];
        c[k] = coefficients[k];
    }
    auto mix = [&](uint32_t i) {
        float v = base;
#pragma GCC unroll 8
        for (int k = 0; k < N; ++k)
            v += c[k] * s[k][i];
        return v;
    };
    if (!smoother || (!(smoother->slewStep > 0.0f) && !(smoother->smoothCoefficient > 0.0f))) {
        for (uint32_t i = 0; i < frames; ++i)
            y[i] = mix(i);
        if (smoother && frames != 0) smoother->smoothState = y[frames - 1];
        return;
    }
    float state = smoother->smoothState;
    if (smoother->slewStep > 0.0f) {
        const float step = smoother->slewStep;
        for (uint32_t i = 0; i < frames; ++i) {
            const float v = mix(i);
            const float d = v - state;
            if (d >= step) {
                state += step;
            } else if (d <= -step) {
                state -= step;
            } else {
                state = v;
            }
            y[i] = state;
        }
    } else {
        const float k = smoother->smoothCoefficient;
        for (uint32_t i = 0; i < frames; ++i) {
            const float v = mix(i);
            state = (state - v) * k + v;
            y[i] = state;
        }
    }
    if (frames != 0) smoother->smoothState = state;
}

}  // namespace

void MixAndSmoothOneByOne(const MixRun& run, float* const* y, uint32_t frames, BR::OutputSmoother* smoother) {
    for (int32_t o = 0; o < kMixOutputs; ++o) {
        if (!run.written[o]) continue;
        const float* signals[kMaxMoving];
        float coefficients[kMaxMoving];
        int32_t n = 0;
        for (int32_t k = 0; k < run.numSignals; ++k) {
            if (!run.takes[o][k]) continue;
            signals[n] = run.signal[k];
            coefficients[n++] = run.coefficient[o][k];
        }
        BR::OutputSmoother* s = smoother ? &smoother[o] : nullptr;
        switch (n) {
            case 0:
                MixOne<0>(y[o], run.base[o], signals, coefficients, frames, s);
                break;
            case 1:
                MixOne<1>(y[o], run.base[o], signals, coefficients, frames, s);
                break;
            case 2:
                MixOne<2>(y[o], run.base[o], signals, coefficients, frames, s);
                break;
            case 3:
                MixOne<3>(y[o], run.base[o], signals, coefficients, frames, s);
                break;
            case 4:
                MixOne<4>(y[o], run.base[o], signals, coefficients, frames, s);
                break;
            default:
                MixOne<5>(y[o], run.base[o], signals, coefficients, frames, s);
                break;
        }
    }
}

void PlanMix(const MixRun& run, const BR::OutputSmoother* smoother, MixPlan& plan) {
    plan = MixPlan{};
    plan.numSignals = run.numSignals;
    // The scalar smoother's order of tests: a slew step first, then a one-pole coefficient.
    auto slews = [&](int32_t o) { return smoother && smoother[o].slewStep > 0.0f; };
    auto poles = [&](int32_t o) { return smoother && !slews(o) && smoother[o].smoothCoefficient > 0.0f; };
    int32_t smoothed = 0;
    for (int32_t o = 0; o < kMixOutputs; ++o)
        if (run.written[o] && (slews(o) || poles(o))) ++smoothed;
    // Lanes cost two vectors' work at every sample whatever their number. Measured with every signal
    // in every output's mix: three chains one after the other take less time (10.7 against 12.3 ns a
    // frame), four about the same, five and six more (12.6 and 14.0 against 11.5 and 11.0).
    const bool laned = smoothed >= kFewestLaned;
    for (int32_t o = 0; o < kMixOutputs; ++o) {
        plan.count[o] = 0;
        for (int32_t k = 0; k < run.numSignals; ++k) {
            if (!run.written[o] || !run.takes[o][k]) continue;
            plan.signalOf[o][plan.count[o]] = k;
            plan.coefficientOf[o][plan.count[o]++] = run.coefficient[o][k];
        }
        if (!run.written[o]) {
            plan.path[o] = MixPath::kNotWritten;
        } else if (!slews(o) && !poles(o)) {
            plan.path[o] = MixPath::kDirect;
        } else if (!laned) {
            plan.path[o] = MixPath::kAlone;
        } else {
            plan.path[o] = MixPath::kLane;
            plan.anyLane = true;
            for (int32_t k = 0; k < run.numSignals; ++k) {
                plan.takes[k][o] = run.takes[o][k] ? ~0u : 0u;
                plan.coefficient[k][o] = run.takes[o][k] ? run.coefficient[o][k] : 0.0f;
            }
            plan.slew[o] = slews(o) ? ~0u : 0u;
            plan.onePole[o] = poles(o) ? ~0u : 0u;
            plan.step[o] = slews(o) ? smoother[o].slewStep : 0.0f;
            plan.pole[o] = poles(o) ? smoother[o].smoothCoefficient : 0.0f;
        }
    }
    for (int32_t k = 0; k < run.numSignals; ++k)
        for (int32_t o = 0; o < kMixOutputs; ++o)
            for (int32_t p = 0; p < kMixOutputs; ++p)
                if (plan.path[o] == MixPath::kLane && plan.path[p] == MixPath::kLane &&
                    run.takes[o][k] != run.takes[p][k])
                    plan.masked = true;
}

namespace {

// An output without smoothing: base + its terms in order, four samples to a vector where there is
// SSE2 (each vector operation rounds as the scalar one).
void MixDirect(float* y, float base, const float* const* s, const float* c, int32_t n, uint32_t frames) {
    uint32_t i = 0;
#ifdef BR_SAMPLE_SSE2
    const __m128 b = _mm_set1_ps(base);
    for (; i + 4 <= frames; i += 4) {
        __m128 v = b;
        for (int32_t k = 0; k < n; ++k)
            v = _mm_add_ps(v, _mm_mul_ps(_mm_set1_ps(c[k]), _mm_loadu_ps(s[k] + i)));
        _mm_storeu_ps(y + i, v);
    }
#endif
    for (; i < frames; ++i) {
        float v = base;
        for (int32_t k = 0; k < n; ++k)
            v += c[k] * s[k][i];
        y[i] = v;
    }
}

// An output with its smoother, on its own.
void MixAlone(float* y, float base, const float* const* s, const float* c, int32_t n, uint32_t frames,
              BR::OutputSmoother* smoother) {
    switch (n) {
        case 0:
            return MixOne<0>(y, base, s, c, frames, smoother);
        case 1:
            return MixOne<1>(y, base, s, c, frames, smoother);
        case 2:
            return MixOne<2>(y, base, s, c, frames, smoother);
        case 3:
            return MixOne<3>(y, base, s, c, frames, smoother);
        case 4:
            return MixOne<4>(y, base, s, c, frames, smoother);
        default:
            return MixOne<5>(y, base, s, c, frames, smoother);
    }
}

#ifdef BR_SAMPLE_SSE2

// The plan in registers' form, and the signals of this run.
struct Lanes {
    __m128 base[2];
    __m128 coefficient[kMaxMoving][2];
    __m128 takes[kMaxMoving][2];
    __m128 step[2], negativeStep[2], pole[2];
    __m128 slew[2], onePole[2];
    const float* signal[kMaxMoving];
};

inline __m128 Select(__m128 mask, __m128 yes, __m128 no) {
    return _mm_or_ps(_mm_and_ps(mask, yes), _mm_andnot_ps(mask, no));
}

inline __m128 LoadMask(const uint32_t* bits) {
    return _mm_load_ps(reinterpret_cast<const float*>(bits));
}

// One sample of all lanes: the mix in signal order (a lane that does not take a signal keeps its sum
// untouched), then per lane the slew limit (state + step, state - step or the sample, compared as the
// scalar smoother compares), the one-pole, or the sample itself.
template <int N, bool Masked>
inline void StepLanes(const Lanes& lanes, uint32_t i, __m128& state0, __m128& state1) {
    __m128 v0 = lanes.base[0], v1 = lanes.base[1];
#pragma GCC unroll 8
    for (int k = 0; k < N; ++k) {
        const __m128 s = _mm_set1_ps(lanes.signal[k][i]);
        const __m128 a0 = _mm_add_ps(v0, _mm_mul_ps(lanes.coefficient[k][0], s));
        const __m128 a1 = _mm_add_ps(v1, _mm_mul_ps(lanes.coefficient[k][1], s));
        v0 = Masked ? Select(lanes.takes[k][0], a0, v0) : a0;
        v1 = Masked ? Select(lanes.takes[k][1], a1, v1) : a1;
    }
    auto smooth = [&](int h, __m128 v, __m128 state) {
        const __m128 d = _mm_sub_ps(v, state);
        const __m128 up = _mm_cmpge_ps(d, lanes.step[h]);
        const __m128 down = _mm_cmple_ps(d, lanes.negativeStep[h]);
        const __m128 slewed =
            Select(up, _mm_add_ps(state, lanes.step[h]), Select(down, _mm_sub_ps(state, lanes.step[h]), v));
        const __m128 poled = _mm_add_ps(_mm_mul_ps(_mm_sub_ps(state, v), lanes.pole[h]), v);
        return Select(lanes.slew[h], slewed, Select(lanes.onePole[h], poled, v));
    };
    state0 = smooth(0, v0, state0);
    state1 = smooth(1, v1, state1);
}

template <int N, bool Masked>
void RunLanes(const Lanes& lanes, float* const* y, uint32_t frames, __m128& state0, __m128& state1) {
    __m128 s0 = state0, s1 = state1;
    uint32_t i = 0;
    for (; i + 4 <= frames; i += 4) {
        // Four samples of each lane, then turned so that each output's four go out in one store.
        __m128 a0, a1, a2, a3, b0, b1, b2, b3;
        StepLanes<N, Masked>(lanes, i, s0, s1);
        a0 = s0, b0 = s1;
        StepLanes<N, Masked>(lanes, i + 1, s0, s1);
        a1 = s0, b1 = s1;
        StepLanes<N, Masked>(lanes, i + 2, s0, s1);
        a2 = s0, b2 = s1;
        StepLanes<N, Masked>(lanes, i + 3, s0, s1);
        a3 = s0, b3 = s1;
        _MM_TRANSPOSE4_PS(a0, a1, a2, a3);
        if (y[0]) _mm_storeu_ps(y[0] + i, a0);
        if (y[1]) _mm_storeu_ps(y[1] + i, a1);
        if (y[2]) _mm_storeu_ps(y[2] + i, a2);
        if (y[3]) _mm_storeu_ps(y[3] + i, a3);
        const __m128 low = _mm_unpacklo_ps(b0, b1), high = _mm_unpacklo_ps(b2, b3);
        if (y[4]) _mm_storeu_ps(y[4] + i, _mm_movelh_ps(low, high));
        if (y[5]) _mm_storeu_ps(y[5] + i, _mm_movehl_ps(high, low));
    }
    for (; i < frames; ++i) {
        StepLanes<N, Masked>(lanes, i, s0, s1);
        alignas(16) float sample[8];
        _mm_store_ps(sample, s0);
        _mm_store_ps(sample + 4, s1);
        for (int32_t o = 0; o < kMixOutputs; ++o)
            if (y[o]) y[o][i] = sample[o];
    }
    state0 = s0;
    state1 = s1;
}

template <int N>
void RunLanesOf(const Lanes& lanes, bool masked, float* const* y, uint32_t frames, __m128& state0,
                __m128& state1) {
    if (masked) return RunLanes<N, true>(lanes, y, frames, state0, state1);
    RunLanes<N, false>(lanes, y, frames, state0, state1);
}

// The laned outputs of the plan, their smoothers' states carried on.
void MixLanes(const MixPlan& plan, const float* const* signal, const float* base, float* const* y,
              uint32_t frames, BR::OutputSmoother* smoother) {
    Lanes lanes;
    alignas(16) float level[8] = {}, state[8] = {};
    float* out[kMixOutputs];
    for (int32_t o = 0; o < kMixOutputs; ++o) {
        const bool laned = plan.path[o] == MixPath::kLane;
        out[o] = laned ? y[o] : nullptr;
        level[o] = laned ? base[o] : 0.0f;
        state[o] = laned ? smoother[o].smoothState : 0.0f;
    }
    const __m128 zero = _mm_setzero_ps();
    for (int h = 0; h < 2; ++h) {
        const int l = 4 * h;
        lanes.base[h] = _mm_load_ps(level + l);
        for (int32_t k = 0; k < plan.numSignals; ++k) {
            lanes.coefficient[k][h] = _mm_load_ps(plan.coefficient[k] + l);
            lanes.takes[k][h] = LoadMask(plan.takes[k] + l);
        }
        lanes.step[h] = _mm_load_ps(plan.step + l);
        lanes.negativeStep[h] = _mm_sub_ps(zero, lanes.step[h]);
        lanes.pole[h] = _mm_load_ps(plan.pole + l);
        lanes.slew[h] = LoadMask(plan.slew + l);
        lanes.onePole[h] = LoadMask(plan.onePole + l);
    }
    for (int32_t k = 0; k < plan.numSignals; ++k)
        lanes.signal[k] = signal[k];

    __m128 state0 = _mm_load_ps(state), state1 = _mm_load_ps(state + 4);
    switch (plan.numSignals) {
        case 0:
            RunLanesOf<0>(lanes, plan.masked, out, frames, state0, state1);
            break;
        case 1:
            RunLanesOf<1>(lanes, plan.masked, out, frames, state0, state1);
            break;
        case 2:
            RunLanesOf<2>(lanes, plan.masked, out, frames, state0, state1);
            break;
        case 3:
            RunLanesOf<3>(lanes, plan.masked, out, frames, state0, state1);
            break;
        case 4:
            RunLanesOf<4>(lanes, plan.masked, out, frames, state0, state1);
            break;
        default:
            RunLanesOf<5>(lanes, plan.masked, out, frames, state0, state1);
            break;
    }
    _mm_store_ps(state, state0);
    _mm_store_ps(state + 4, state1);
    for (int32_t o = 0; o < kMixOutputs; ++o)
        if (out[o]) smoother[o].smoothState = state[o];
}

#endif

}  // namespace

void MixAndSmooth(const MixPlan& plan, const float* const* signal, const float* base, float* const* y,
                  uint32_t frames, BR::OutputSmoother* smoother) {
    if (frames == 0) return;
#ifdef BR_SAMPLE_SSE2
    if (plan.anyLane && smoother) MixLanes(plan, signal, base, y, frames, smoother);
#endif
    for (int32_t o = 0; o < kMixOutputs; ++o) {
        const MixPath path = plan.path[o];
        if (path == MixPath::kNotWritten) continue;
#ifdef BR_SAMPLE_SSE2
        if (path == MixPath::kLane && smoother) continue;
#endif
        const float* s[kMaxMoving];
        for (int32_t k = 0; k < plan.count[o]; ++k)
            s[k] = signal[plan.signalOf[o][k]];
        if (path == MixPath::kDirect || !smoother) {
            MixDirect(y[o], base[o], s, plan.coefficientOf[o], plan.count[o], frames);
            // An output without a stage of smoothing still leaves its last sample in the smoother.
            if (smoother) smoother[o].smoothState = y[o][frames - 1];
        } else {
            MixAlone(y[o], base[o], s, plan.coefficientOf[o], plan.count[o], frames, &smoother[o]);
        }
    }
}

}  // namespace BrelCorvaneVoiceController
