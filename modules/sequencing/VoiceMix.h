// The Voice Controller's output stage for one run of samples: each of the six outputs is its base level
// plus the moving signals of its matrix row, then its smoother (slew limit or one-pole).
#pragma once

#include <cstdint>

#include "framework/Smoothing.h"

namespace BrelCorvaneVoiceController {

constexpr int32_t kMixOutputs = 6;
constexpr int32_t kMaxMoving = 5;  // pitch (while it glides), Env1, Env2, Env3, trigger

// The signals that move in at least one output, in the order every output adds them; per output
// whether it is written, its base (the constant sources already summed) and, for each signal, whether
// the output takes it and with which coefficient.
struct MixRun {
    const float* signal[kMaxMoving];
    int32_t numSignals = 0;
    bool written[kMixOutputs];
    float base[kMixOutputs];
    float coefficient[kMixOutputs][kMaxMoving];
    bool takes[kMixOutputs][kMaxMoving];
};

// The run's layout in vector lanes (outputs 0-3, then 4-5 and two spare lanes that stay zero), with the
// smoothers' kinds and constants: what stays the same from slice to slice while the matrix, the
// smoothing rows, the portamento and the mode stay.
struct MixPlan {
    alignas(16) float coefficient[kMaxMoving][8];
    alignas(16) uint32_t takes[kMaxMoving][8];  // all ones where the output adds the signal
    alignas(16) float step[8];                  // slew step, 0 in other lanes
    alignas(16) float pole[8];                  // one-pole coefficient, 0 in other lanes
    alignas(16) uint32_t slew[8], onePole[8];   // all ones where the output's smoother is of that kind
    bool written[kMixOutputs];
    int32_t numSignals = 0;
    bool masked = false;    // some written output leaves out a signal another one takes
    bool smoothed = false;  // some written output has a slew or a one-pole
};

// The plan of `run` (its base and signals aside), with the smoothers' settings when there are any.
void PlanMix(const MixRun& run, const BR::OutputSmoother* smoother, MixPlan& plan);

// Writes y[o][i] = smoothed(base[o] + sum of coefficient[o][k] * signal[k][i] over the k the output
// takes, added in k order) for every written output. With `smoother` (six of them, as planned) each
// written output passes its smoother, whose state carries on; without, the samples are the plain mix.
// The six outputs run side by side in vector lanes, so that the smoothers' chains from sample to
// sample overlap; each lane rounds exactly as MixAndSmoothOneByOne does.
void MixAndSmooth(const MixPlan& plan, const float* const* signal, const float* base, float* const* y,
                  uint32_t frames, BR::OutputSmoother* smoother);

// The same, one output after the other with scalar arithmetic: the reference the vector form keeps
// to, and the form on targets without SSE2.
void MixAndSmoothOneByOne(const MixRun& run, float* const* y, uint32_t frames, BR::OutputSmoother* smoother);

}  // namespace BrelCorvaneVoiceController
