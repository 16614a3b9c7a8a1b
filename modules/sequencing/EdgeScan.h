// Gate detection on an audio input for the modules that trigger from CV edges (Trigger, Step LFO):
// a closed gate opens on a sample above `riseAbove`, an open one closes on a sample that is not at or
// above `fallBelow`. One transition per sample at most.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "framework/SampleKernels.h"

namespace BR {

struct GateThresholds {
    float riseAbove;
    float fallBelow;

    // One threshold without hysteresis: open above it, closed at or below it.
    static GateThresholds Single(float threshold) {
        return {threshold, std::nextafter(threshold, std::numeric_limits<float>::infinity())};
    }
};

// Index of the first sample in [from, count) at which a gate in state `open` changes state, or `count`.
inline uint32_t FindGateChange(const float* x, uint32_t from, uint32_t count, bool open,
                               GateThresholds thresholds) {
    return open ? FirstNotAtOrAbove(x, from, count, thresholds.fallBelow)
                : FirstAbove(x, from, count, thresholds.riseAbove);
}

// Follows the gate through [from, count) up to its next rising edge and returns that sample's index,
// with `open` true; or returns `count` with `open` in its state at the end.
inline uint32_t NextRisingEdge(const float* x, uint32_t from, uint32_t count, bool& open,
                               GateThresholds thresholds) {
    uint32_t i = from;
    for (;;) {
        i = FindGateChange(x, i, count, open, thresholds);
        if (i >= count) return count;
        open = !open;
        if (open) return i;
        ++i;  // the sample that closed the gate cannot also open it
    }
}

}  // namespace BR
