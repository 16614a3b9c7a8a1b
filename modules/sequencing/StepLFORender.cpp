// Step LFO on the audio thread: register edits, the trigger and reset edge scan, resets and triggers,
// swing splitting, and the per-sample step loop with its random register.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "StepLFO.h"
#include "framework/SampleKernels.h"
#include "modules/sequencing/EdgeScan.h"

namespace BrelCorvaneStepLFO {

namespace {

constexpr BR::GateThresholds kInputThresholds{0.21f, 0.19f};  // hysteresis of the trigger and reset inputs

// Where in the loop the render loop is at a phase, after the asymmetry: the fraction u in 0..1.
struct Asymmetry {
    float a, f1, f2;
    explicit Asymmetry(float asymmetry)
        : a(asymmetry),
          f1(asymmetry <= 0.0f ? 0.0f : 0.5f / asymmetry),
          f2(asymmetry >= 1.0f ? 0.0f : 0.5f / (1.0f - asymmetry)) {}
    float Position(float p) const {
        if (p >= a) {
            const float u = p * f2 + 1.0f - f2;
            return u >= 1.0f ? u - 1.0f : u;
        }
        return p * f1;
    }
};

int32_t StepOf(float pos, int32_t count) {
    return std::clamp(int32_t(pos), 0, count - 1);
}

// out[i] = v * stepGain + x[i] * inputGain + v * x[i] * productGain, four samples at a time where the
// target has SSE2: each vector operation rounds as its scalar twin, in the same order.
void MixInput(float* out, const float* x, uint32_t count, float v, float stepGain, float inputGain,
              float productGain) {
    uint32_t i = 0;
#ifdef BR_SAMPLE_SSE2
    const __m128 a = _mm_set1_ps(v * stepGain), vv = _mm_set1_ps(v), ig = _mm_set1_ps(inputGain),
                 pg = _mm_set1_ps(productGain);
    for (; i + 4 <= count; i += 4) {
        const __m128 in = _mm_loadu_ps(x + i);
        const __m128 sum = _mm_add_ps(a, _mm_mul_ps(in, ig));
        _mm_storeu_ps(out + i, _mm_add_ps(sum, _mm_mul_ps(_mm_mul_ps(vv, in), pg)));
    }
#endif
    for (; i < count; ++i)
        out[i] = v * stepGain + x[i] * inputGain + v * x[i] * productGain;
}

// The standing pass applies: the lane stood at the end of its last pass and nothing moved it since.
// The phase is compared bit for bit: whatever moved it (a trigger, a reset, the transport, the other
// lane in "Quadrature") sends the pass through the step loop.
bool Stands(const LaneState& st) {
    return st.standing && st.increment == 0.0 &&
           std::memcmp(&st.phase, &st.standingPhase, sizeof(double)) == 0;
}

}  // namespace

int32_t BrelCorvane::StepAt(int lane, double phase) const {
    const LaneSettings& c = settings[lane];
    const float pos = Asymmetry(c.asymmetry).Position(float(phase)) * float(c.stepCount);
    return c.startIndex + StepOf(pos, c.stepCount);
}

double BrelCorvane::PhaseOfStepStart(int lane, int32_t relativeStep) const {
    const LaneSettings& c = settings[lane];
    const int32_t n = c.stepCount;
    const int32_t step = ((relativeStep % n) + n) % n;
    const double u = double(step) / n;
    const Asymmetry map(c.asymmetry);
    double phase = 0.0;
    if (u < 0.5 && map.f1 > 0.0f) {
        phase = u / map.f1;
    } else if (u >= 0.5 && map.f2 > 0.0f) {
        phase = (u - 1.0 + map.f2) / map.f2;
    }
    phase = phase - std::floor(phase);
    // The float arithmetic of the render loop may place the exact start a hair into the step before;
    // move up by the least amount that lands in the step.
    const int32_t wanted = c.startIndex + step;
    for (int i = 0; i < 40; ++i) {
        const double nudged = phase + (i == 0 ? 0.0 : std::ldexp(1.0, i - 48));
        if (nudged < 1.0 && StepAt(lane, nudged) == wanted) return nudged;
    }
    return phase;
}

inline void BrelCorvane::ApplyEdits() {
    // Most blocks bring no edit: a look at the two indices spares the queue's call.
    if ((editQueue.ReadIndex() + 1) % BR::MessageQueue::kNumItems == editQueue.WriteIndex()) return;
    while (BR::MessageQueueItem* item = editQueue.Read()) {
        if (item->channel < kNumLanes)
            lanes[item->channel].random.ApplyEdit(item->dataByte1, item->dataByte2);
    }
}

void BrelCorvane::HandleTriggerReset(int lane, bool trigger, bool reset) {
    const LaneSettings& c = settings[lane];
    LaneState& st = lanes[lane];
    if (trigger || reset) st.standing = false;
    const int32_t n = c.stepCount;
    const double x = st.phase * n;
    const double s = std::floor(x);
    const bool triggered = c.syncMode == kTrigFree || c.syncMode == kTrigTempo;

    if (reset) {
        // "Reset By Note" also chooses the kind of reset for the reset input; "Off" does not stop it.
        int32_t kind = c.resetKind;
        if (c.syncMode == kTransport) {
            if (kind == kResetClosest) kind = x - s <= 0.5 ? kResetInstant : kResetDelayed;
            if (kind == kResetDelayed) {
                st.pendingPhase = c.startPhase;
                st.pendingReset = true;
                st.pendingOffset = st.phaseOffset - (s + 1.0) / n;
            } else if (kind == kResetInstant) {
                st.phaseOffset -= s / n;
            } else {
                st.phaseOffset -= st.phase;
            }
        } else if (triggered) {
            if (kind == kResetDelayed) {
                st.pendingPhase = c.startPhase;
                st.pendingReset = true;
            } else {
                st.phase = c.startPhase;
                st.currentStep = StepAt(lane, st.phase);
                st.increment = c.rate;
            }
        } else {
            st.phase = c.startPhase;  // the other modes know no delay
        }
    }

    if (trigger) {
        if (st.pendingReset) {
            st.pendingReset = false;
            st.phase = st.pendingPhase;
        } else {
            // On to the start of the step after the one that last played. The step is not taken from
            // floor(phase * N): that ignores the loop's start step and the asymmetry, and (s + 1) / N
            // may round into step s in the float step position; in each case the lane would fall back
            // into the step it stands in and never move on.
            const int32_t played = st.currentStep - c.startIndex;
            const int32_t from = played >= 0 && played < n ? played : int32_t(s);
            st.phase = PhaseOfStepStart(lane, from + 1);
        }
        st.currentStep = StepAt(lane, st.phase);
        st.increment = c.rate;
    }
}

inline void BrelCorvane::PublishStatus() {
    StepLFOStatus& shown = status.As<StepLFOStatus>();
    for (int lane = 0; lane < kNumLanes; ++lane) {
        shown.displayPosition[lane] = lanes[lane].displayPosition;
        shown.currentStep[lane] = lanes[lane].currentStep;
        shown.registerBits[lane] = lanes[lane].random.registerBits;
    }
}

inline void BrelCorvane::RenderStanding(int lane, const float* x, float* out, uint32_t frames) {
    const LaneSettings& c = settings[lane];
    const LaneState& st = lanes[lane];
    const float* steps = stepValues[lane];
    // The step values are read again at each pass, as the step loop does: a step set meanwhile shows.
    const float within = st.standingWithin;
    const float first = steps[st.standingStep];
    float v = first;
    if (c.linear) v += (steps[st.standingNext] - first) * within;
    v = std::max(v, c.bipolar ? -1e6f : 0.0f);
    if (within > c.gateLength) v = 0.0f;
    v = v * c.multiplier + c.offset;
    const float stepGain = c.stepGain, inputGain = c.inputGain, productGain = c.productGain;
    if (x) {
        MixInput(out, x, frames, v, stepGain, inputGain, productGain);
    } else {
        const float in = 0.0f;
        BR::FillSamples(out, frames, v * stepGain + in * inputGain + v * in * productGain);
    }
    inStepSamples += frames;
}

void BrelCorvane::RenderSwung(int lane, const float* x, float* out, uint32_t frames) {
    // Cut at the swing boundaries: the long part of each swing period runs slower, the short one faster.
    LaneSettings& c = settings[lane];
    LaneState& st = lanes[lane];
    const double amount = c.swingAmount, period = c.swingPeriod;
    double swingPhase = c.swingPhase;
    double increment = st.increment;
    uint32_t done = 0;
    while (done < frames) {
        int64_t k;
        double w;
        if (swingPhase >= amount) {
            k = int64_t((1.0 - swingPhase) * period + 1.0);
            w = 1.0 - amount;
        } else {
            k = int64_t((amount - swingPhase) * period + 1.0);
            w = amount;
        }
        const uint32_t m = uint32_t(std::clamp<int64_t>(k, 1, frames - done));
        st.increment = increment * 0.5 / w;
        RenderSteps(lane, x ? x + done : nullptr, out + done, m);
        if (st.increment == 0.0) increment = 0.0;  // a triggered lane stopped at a step boundary
        swingPhase += m / period;
        if (swingPhase >= 1.0) swingPhase -= 1.0;
        done += m;
    }
    st.increment = increment;
    // A later sub-block of this host block goes on from here. Starting each sub-block from the
    // position read at the block's start would replay the swing period already rendered, and the
    // steps would move with the MIDI events and input edges that cut the block.
    c.swingPhase = swingPhase;
}

inline void BrelCorvane::RenderLane(int lane, float** inputs, float** outputs, uint32_t from,
                                    uint32_t frames) {
    if (frames == 0) return;
    const LaneSettings& c = settings[lane];
    LaneState& st = lanes[lane];
    const float* x = c.signalInput ? inputs[c.signalInput - 1] + from : nullptr;
    float* out = outputs[lane] + from;
    if (c.swingAmount >= 0.0f) {
        RenderSwung(lane, x, out, frames);
    } else if (Stands(st)) {
        RenderStanding(lane, x, out, frames);
    } else {
        RenderSteps(lane, x, out, frames);
    }
    st.smoother.Process(out, int32_t(frames));
    // Back into [0, 1). Inside (0, 1) that subtracts 0 and changes nothing; the library's floor is a
    // call on this target, so it runs only for the rest (a zero included: 0 - floor(0) is +0).
    if (!(st.phase > 0.0 && st.phase < 1.0)) st.phase -= std::floor(st.phase);
}

void BrelCorvane::ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
    ApplyEdits();
    const int32_t n = lineCount;
    if (n == 0) {
        for (int lane = 0; lane < kNumLanes; ++lane)
            RenderLane(lane, inputs, outputs, 0, frames);
        PublishStatus();
        return;
    }

    // Each connected line's next rising edge; the earliest acts first, on all lines that rise on that
    // sample. Lines that read the same input in the same gate state from the same sample (a trigger
    // and a reset, or both lanes, on one input) find the same edge: it is scanned for once.
    const float* line[4];
    uint32_t next[4];
    for (int32_t k = 0; k < n; ++k)
        line[k] = inputs[lineInput[k]];
    const auto scan = [&](uint32_t which, uint32_t from) {  // bit k: connected line k
        bool before[4];
        for (int32_t k = 0; k < n; ++k) {
            if (!(which >> k & 1u)) continue;
            bool& open = inputGate[lineSlot[k]];
            before[k] = open;
            int32_t same = -1;
            for (int32_t j = 0; j < k && same < 0; ++j)
                if ((which >> j & 1u) && line[j] == line[k] && before[j] == open) same = j;
            if (same >= 0) {
                next[k] = next[same];
                open = inputGate[lineSlot[same]];
            } else {
                next[k] = BR::NextRisingEdge(line[k], from, frames, open, kInputThresholds);
            }
        }
    };
    scan((1u << n) - 1u, 0);
    uint32_t rendered = 0;
    for (;;) {
        uint32_t edge = frames;
        for (int32_t k = 0; k < n; ++k)
            edge = std::min(edge, next[k]);
        if (edge >= frames) break;
        bool fired[4] = {};  // trigger L, reset L, trigger R, reset R
        uint32_t firedLines = 0;
        for (int32_t k = 0; k < n; ++k)
            if (next[k] == edge) {
                fired[lineSlot[k]] = true;
                firedLines |= 1u << k;
            }
        HandleTriggerReset(0, fired[0], fired[1]);
        HandleTriggerReset(1, fired[2], fired[3]);
        // The samples since the last rendering, the edge's own included, come out in the new state.
        for (int lane = 0; lane < kNumLanes; ++lane)
            RenderLane(lane, inputs, outputs, rendered, edge + 1 - rendered);
        rendered = edge + 1;
        scan(firedLines, edge + 1);
    }
    if (rendered < frames)
        for (int lane = 0; lane < kNumLanes; ++lane)
            RenderLane(lane, inputs, outputs, rendered, frames - rendered);
    PublishStatus();
}

void BrelCorvane::RenderSteps(int lane, const float* x, float* out, uint32_t frames) {
    if (Stands(lanes[lane])) {
        RenderStanding(lane, x, out, frames);
        return;
    }
    const bool linear = settings[lane].linear;
    if (x) {
        if (linear) {
            StepLoop<true, true>(lane, x, out, frames);
        } else {
            StepLoop<true, false>(lane, x, out, frames);
        }
    } else if (linear) {
        StepLoop<false, true>(lane, x, out, frames);
    } else {
        StepLoop<false, false>(lane, x, out, frames);
    }
}

template <bool kInput, bool kLinear>
void BrelCorvane::StepLoop(int lane, const float* x, float* out, uint32_t frames) {
    const LaneSettings& c = settings[lane];
    LaneState& st = lanes[lane];
    const Asymmetry map(c.asymmetry);
    const float floorValue = c.bipolar ? -1e6f : 0.0f;  // in Unipolar range negative steps count as 0
    const int32_t count = c.stepCount, start = c.startIndex;
    const float countValue = float(count);
    const bool triggered = c.syncMode == kTrigFree || c.syncMode == kTrigTempo;
    const float* steps = stepValues[lane];
    const float multiplier = c.multiplier, offset = c.offset, gateLength = c.gateLength;
    const float stepGain = c.stepGain, inputGain = c.inputGain, productGain = c.productGain;
    double phase = st.phase, increment = st.increment;
    int32_t current = st.currentStep;
    float u = 0.0f;
    st.standing = false;

    // The step's value `v` at a place `within` the step, through the floor, the gate and the mapping;
    // then mixed with the input of sample i.
    const auto level = [&](float v, float within) {
        v = std::max(v, floorValue);
        if (within > gateLength) v = 0.0f;
        return v * multiplier + offset;
    };
    const auto mix = [&](float v, uint32_t i) {
        const float in = kInput ? x[i] : 0.0f;
        return v * stepGain + in * inputGain + v * in * productGain;
    };

    uint32_t i = 0;
    while (i < frames) {
        // One sample in full: the step search and, at a step boundary, the boundary's work.
        float pos;
        int32_t s, next, index;
        for (;;) {
            u = map.Position(float(phase));
            pos = u * countValue;
            s = StepOf(pos, count);
            next = s + 1 >= count ? 0 : s + 1;
            index = s + start;
            if (index == current) break;
            // A step boundary.
            current = index;
            if (c.random.randomEnabled) {
                const float value = st.random.Step(c.random, dacBitValues[lane]);
                stepValues[lane][c.random.setNext ? start + next : index] = value;
            }
            if (triggered) {
                // Stop one sample short of the boundary until the next trigger. Going back re-enters the
                // step before, so the boundary logic, random step included, runs a second time.
                phase -= increment;
                // At the loop's wrap the step back from just past 0 lands just below 1, in the last
                // step, as at any other boundary. Left below 0 the phase would read as the first step
                // until the end of the sub-block and as the last one after it.
                if (phase < 0.0) phase += 1.0;
                increment = 0.0;
                continue;
            }
            if (st.pendingReset) {
                phase = st.pendingPhase;
                st.phaseOffset = st.pendingOffset;
                st.pendingReset = false;
                continue;
            }
            break;
        }
        const float first = steps[index];
        const float rise = kLinear ? steps[start + next] - first : 0.0f;  // wraps to the loop's first step
        const float stepStart = float(s);
        float v = first;
        if constexpr (kLinear) v += rise * (pos - stepStart);
        v = level(v, pos - stepStart);
        out[i] = mix(v, i);
        phase += increment;
        if (phase >= 1.0) phase -= 1.0;
        ++i;
        if (increment == 0.0 && phase >= 0.0 && phase < 1.0) {
            // Standing (a triggered lane waiting, or no rate): every further sample of this pass meets
            // the same phase, step and value, so only the input's share moves. So do later passes
            // until something moves the lane.
            if (inStepRuns) {
                st.standing = true;
                st.standingPhase = phase;
                st.standingStep = index;
                st.standingNext = start + next;
                st.standingWithin = pos - stepStart;
            }
            if constexpr (kInput) {
                if (inStepRuns) {
                    MixInput(out + i, x + i, frames - i, v, stepGain, inputGain, productGain);
                } else {
                    for (uint32_t j = i; j < frames; ++j)
                        out[j] = mix(v, j);
                }
            } else {
                BR::FillSamples(out + i, frames - i, out[i - 1]);
            }
            break;
        }
        if (!(increment > 0.0) || !inStepRuns) continue;

        // The samples that follow in the same step, on the same side of the asymmetry, take the same
        // arithmetic without the step search: the step's values and bounds are known. Each sample
        // still checks that it lies in [s, s + 1) exactly as the search would find it (the float
        // rounding of the map, not a computed count, decides where a step ends), and leaves the run
        // for the full form above at the first one that does not, which then handles the boundary.
        // A phase that wraps needs nothing more: the same tests see where it lands.
        const float stepEnd = float(s + 1);
        const auto run = [&](auto position, auto stays) {
            for (; i < frames; ++i) {
                const float p = float(phase);
                if (!stays(p)) break;
                const float at = position(p);
                const float place = at * countValue;
                const float within = place - stepStart;
                if (!(within >= 0.0f && place < stepEnd)) break;
                u = at;
                float w = first;
                if constexpr (kLinear) w += rise * within;
                out[i] = mix(level(w, within), i);
                phase += increment;
                if (phase >= 1.0) phase -= 1.0;
            }
        };
        const float a = map.a, f1 = map.f1, f2 = map.f2;
        const uint32_t runStart = i;
        if (float(phase) >= a) {
            // Past the asymmetry point; a position of 1 or more (wrapped to the first step by the
            // full form) gives at least countValue >= stepEnd, so it leaves the run.
            run([f2](float p) { return p * f2 + 1.0f - f2; }, [a](float p) { return p >= a; });
        } else {
            run([f1](float p) { return p * f1; }, [a](float p) { return !(p >= a); });
        }
        inStepSamples += i - runStart;
    }
    st.phase = phase;
    st.increment = increment;
    st.currentStep = current;
    st.displayPosition = float(start) + u * float(count);
}

}  // namespace BrelCorvaneStepLFO
