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

// How an output is rendered: not at all; its mix alone, four samples to a vector (no smoothing, so
// no chain from sample to sample); in a lane beside the other smoothed outputs, whose chains then
// overlap; or on its own with its chain, where too few outputs are smoothed to fill the lanes.
enum class MixPath : uint8_t { kNotWritten, kDirect, kLane, kAlone };

// What stays the same from slice to slice while the matrix, the smoothing rows, the portamento and the
// mode stay: each output's path and the signals it takes, and the lanes' layout (outputs 0-3, then 4-5
// and two spare lanes; lanes of outputs on other paths hold zeros and are never stored).
struct MixPlan {
    alignas(16) float coefficient[kMaxMoving][8];
    alignas(16) uint32_t takes[kMaxMoving][8];  // all ones where the output adds the signal
    alignas(16) float step[8];                  // slew step, 0 in other lanes
    alignas(16) float pole[8];                  // one-pole coefficient, 0 in other lanes
    alignas(16) uint32_t slew[8], onePole[8];   // all ones where the output's smoother is of that kind
    int32_t numSignals = 0;
    bool anyLane = false;
    bool masked = false;  // a laned output leaves out a signal another laned one takes
    MixPath path[kMixOutputs];
    int32_t count[kMixOutputs];                    // signals the output takes
    int32_t signalOf[kMixOutputs][kMaxMoving];     // their indices in the run, in adding order
    float coefficientOf[kMixOutputs][kMaxMoving];  // and their coefficients
};

// The plan of `run` (its base and signals aside), with the smoothers' settings when there are any.
void PlanMix(const MixRun& run, const BR::OutputSmoother* smoother, MixPlan& plan);

// Writes y[o][i] = smoothed(base[o] + sum of coefficient[o][k] * signal[k][i] over the k the output
// takes, added in k order) for every written output. With `smoother` (six of them, the ones planned
// with) each written output passes its smoother, whose state carries on; without, the samples are the
// plain mix. Every path rounds exactly as MixAndSmoothOneByOne does.
void MixAndSmooth(const MixPlan& plan, const float* const* signal, const float* base, float* const* y,
                  uint32_t frames, BR::OutputSmoother* smoother);

// The same, one output after the other with scalar arithmetic: the reference the vector form keeps
// to, and the form on targets without SSE2.
void MixAndSmoothOneByOne(const MixRun& run, float* const* y, uint32_t frames, BR::OutputSmoother* smoother);

}  // namespace BrelCorvaneVoiceController
