// The system's sine: an odd polynomial on a folded phase, with no library call. Every module that
// needs a sine of a phase in cycles (LFO waves, vibrato, the FSK tone) uses this one.
#pragma once

#include <algorithm>

namespace BR {

// Folds a phase in cycles (0 to 1) into -0.25..0.25, the range where the polynomial holds:
// max(-p, min(1 - p, p - 0.5)). The fold also flips the sign, so the result runs as sin(2 pi p).
inline float FoldSinePhase(float phase) {
    return std::max(-phase, std::min(1.0f - phase, phase - 0.5f));
}

// The odd polynomial of a folded phase s:
// s * -6.2831855 + s^3 * 41.34168 - s^5 * 81.602234 + s^7 * 76.574974 - s^9 * 39.710674.
inline float PolySineOfFolded(float s) {
    const float s2 = s * s;
    return s * (-6.2831855f + s2 * (41.34168f + s2 * (-81.602234f + s2 * (76.574974f + s2 * -39.710674f))));
}

// Sine of a phase in cycles, 0 to below 1: 0 at 0 and 0.5, +1 at 0.25, -1 at 0.75.
inline float PolySine(float phase) {
    return PolySineOfFolded(FoldSinePhase(phase));
}

}  // namespace BR
