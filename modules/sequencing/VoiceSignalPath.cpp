// Voice Controller signal path: portamento on the calibrated pitch, trigger pulse, envelopes, the
// 6 by 8 mix with an inner loop per number of moving signals, output smoothing, and the outputs
// while a calibration is measured.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "VoiceController.h"

namespace BrelCorvaneVoiceController {

namespace {

// Coefficients at or below this magnitude leave a moving signal out of the mix altogether.
constexpr float kMixThreshold = 0.001f;
static_assert(kMixOutputs == kNumOutputs, "the output stage has a lane per output");

}  // namespace

void BrelCorvane::Render(float** outputs, uint32_t offset, uint32_t frames) {
    // A host block longer than announced is still served, in pieces that fit the scratch slots.
    while (frames != 0) {
        const uint32_t n = std::min(frames, scratchFrames);
        RenderChunk(outputs, offset, n);
        offset += n;
        frames -= n;
    }
}

void BrelCorvane::RenderChunk(float** outputs, uint32_t offset, uint32_t frames) {
    float* base = scratch.data();
    if (portamentoActive) {
        RenderPitch(base + kSourcePitch * scratchFrames, frames);
    } else {
        glidePitch = pitchTarget;
    }

    float* trigger = base + kSourceTrigger * scratchFrames;
    const uint32_t on = std::min(frames, triggerSamplesLeft);
    std::fill(trigger, trigger + on, triggerOn);
    std::fill(trigger + on, trigger + frames, triggerOff);
    triggerSamplesLeft -= on;

    for (int32_t e = 0; e < kNumEnvelopes; ++e)
        BR::renderEnvelope(envelopes[e], base + (kSourceEnv1 + e) * scratchFrames, frames);

    // The smoothing runs inside the mix unless a hardware encoding has to come between the two. A
    // master's first two outputs are neither mixed nor smoothed.
    const bool encode = hardwareMode != 0 && mode != kModeMaster;
    MixOutputs(outputs, offset, frames, mode == kModeMaster ? 2 : 0, !encode);
    // A master's first two outputs carry its voices' marker, which no encoding may overwrite.
    if (encode) {
        EncodeHardware(outputs, offset, frames);
        Smooth(outputs, offset, frames);
    }
}

void BrelCorvane::RenderPitch(float* slot, uint32_t frames) {
    const float target = pitchTarget;
    if (portamentoMode == kPortaAuto || portamentoMode == kPortaFingered) {
        float g = glidePitch;
        const float c = portamentoCoefficient;
        for (uint32_t i = 0; i < frames; ++i) {
            g = (g - target) * c + target;
            slot[i] = g;
        }
        glidePitch = g;
        return;
    }
    // Constant time: t runs from 1 down to 0 over the glide; shape 0 is a line, shape 1 a parabola
    // that lands softly.
    const uint32_t m = std::min(frames, glideLeft);
    const float d = glideStart - target;
    const float c = d * glideShape;
    const float e = d - c;
    const float step = portamentoCoefficient;
    float t = float(glideLeft) * step;
    float last = glidePitch;
    for (uint32_t i = 0; i < m; ++i) {
        last = (t * c + e) * t + target;
        slot[i] = last;
        t -= step;
    }
    glideLeft -= m;
    std::fill(slot + m, slot + frames, target);
    glidePitch = m < frames ? target : last;
}

void BrelCorvane::StartGlide() {
    glideLeft = glideSamples;
    glideStart = glidePitch;
}

void BrelCorvane::MixOutputs(float** outputs, uint32_t offset, uint32_t frames, int32_t firstOutput,
                             bool smooth) {
    // The plan follows the matrix and smoothing rows, the portamento and the mode; a voice renders a
    // slice at every marker of its master, so it is made again only when one of those moved.
    if (!mixPlanned || mixPlanRows != rowsRead || mixPlanPortamento != portamentoActive ||
        mixPlanFirstOutput != firstOutput || mixPlanSmooth != smooth)
        PlanOutputs(firstOutput, smooth);
    const float* slots = scratch.data();
    const float* signals[kMaxMoving];
    for (int32_t k = 0; k < mixPlan.numSignals; ++k)
        signals[k] = slots + mixSources[k] * scratchFrames;
    float base[kNumOutputs];
    float* y[kNumOutputs];
    for (int32_t o = 0; o < kNumOutputs; ++o) {
        const float* m = mix[o];
        float b = gateVoltage * m[kSourceGate] + m[kSourceOffset] + velocityVoltage * m[kSourceVelocity];
        if (!portamentoActive) b += m[kSourcePitch] * pitchTarget;
        base[o] = b;
        y[o] = outputs[o] + offset;
    }
    MixAndSmooth(mixPlan, signals, base, y, frames, smooth ? smoother : nullptr);
}

void BrelCorvane::PlanOutputs(int32_t firstOutput, bool smooth) {
    // The signals that move, in the order each output adds them: pitch while it glides, the three
    // envelopes, the trigger. A signal no written output takes stays out of the run.
    const int32_t candidates[kMaxMoving] = {kSourcePitch, kSourceEnv1, kSourceEnv1 + 1, kSourceEnv1 + 2,
                                            kSourceTrigger};
    auto takes = [&](int32_t o, int32_t source) {
        if (source == kSourcePitch && !portamentoActive) return false;
        return !(std::fabs(mix[o][source]) <= kMixThreshold);
    };
    MixRun run;
    for (int32_t source : candidates) {
        for (int32_t o = firstOutput; o < kNumOutputs; ++o) {
            if (!takes(o, source)) continue;
            mixSources[run.numSignals++] = source;
            break;
        }
    }
    for (int32_t o = 0; o < kNumOutputs; ++o) {
        run.written[o] = o >= firstOutput;
        for (int32_t k = 0; k < run.numSignals; ++k) {
            run.takes[o][k] = takes(o, mixSources[k]);
            run.coefficient[o][k] = mix[o][mixSources[k]];
        }
    }
    PlanMix(run, smooth ? smoother : nullptr, mixPlan);
    mixPlanned = true;
    mixPlanRows = rowsRead;
    mixPlanPortamento = portamentoActive;
    mixPlanFirstOutput = firstOutput;
    mixPlanSmooth = smooth;
}

void BrelCorvane::Smooth(float** outputs, uint32_t offset, uint32_t frames) {
    // In a master, or with a hardware mode, the first two outputs carry data that must stay exact.
    const int32_t first = mode == kModeMaster || hardwareMode != 0 ? 2 : 0;
    for (int32_t o = first; o < kNumOutputs; ++o)
        smoother[o].Process(outputs[o] + offset, int(frames));
}

void BrelCorvane::Measure(float** inputs, float** outputs, uint32_t frames) {
    uint32_t done = 0;
    while (done < frames) {
        if (measurement.Finishing()) {
            measurement.Finish(calibration.table);
            mode = kModeNormal;
            display->mode = mode;
            SetPropertyAndNotify(BR::kPropertyCalibrationName, "<>", 3);
            Render(outputs, done, frames - done);
            return;
        }
        const float level = measurement.Level();
        const uint32_t n = measurement.Pass(inputs[0] + done, frames - done, calibration.table, sampleRate);
        if (n == 0) break;
        RenderMeasureLevel(outputs, done, n, level);
        done += n;
    }
    display->measureStep = measurement.Step();
}

void BrelCorvane::RenderMeasureLevel(float** outputs, uint32_t offset, uint32_t frames, float level) {
    // The normal mix with fixed signals: pitch at the level, gate open, envelopes high, trigger off,
    // velocity 0, no portamento; a patched gate and envelopes keep the oscillator sounding.
    const float savedPitch = pitchTarget, savedGate = gateVoltage, savedVelocity = velocityVoltage;
    const bool savedPortamento = portamentoActive;
    pitchTarget = level;
    gateVoltage = gateOpenVoltage;
    velocityVoltage = 0.0f;
    portamentoActive = false;
    float* base = scratch.data();
    while (frames != 0) {
        const uint32_t n = std::min(frames, scratchFrames);
        for (int32_t e = 0; e < kNumEnvelopes; ++e) {
            float* slot = base + (kSourceEnv1 + e) * scratchFrames;
            std::fill(slot, slot + n, 1.0f);
        }
        float* trigger = base + kSourceTrigger * scratchFrames;
        std::fill(trigger, trigger + n, triggerOff);
        MixOutputs(outputs, offset, n, 0, false);
        Smooth(outputs, offset, n);
        offset += n;
        frames -= n;
    }
    pitchTarget = savedPitch;
    gateVoltage = savedGate;
    velocityVoltage = savedVelocity;
    portamentoActive = savedPortamento;
}

}  // namespace BrelCorvaneVoiceController
