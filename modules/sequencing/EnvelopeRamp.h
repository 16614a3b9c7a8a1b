// Straight runs of the envelope's parabolic recurrence, level = level + step with a step that no longer
// changes (a second difference of 0: shape 1, sustain, finished), written several samples at a time with
// the same bits as the serial chain of rounded sums.
#pragma once

#include <cstdint>

namespace BR {

// What RampSamples works out for one step and one binade of levels, kept between calls by a caller that
// renders a ramp piece by piece (a segment block by block meets the same step, mostly in the same
// binade). It is keyed by the step and the levels' sign and binade, and R is checked against the
// present rounding mode at each use, so it never needs resetting.
struct RampPlan {
    uint32_t stepBits = 0;
    uint32_t levelTop = 0xFFFFFFFFu;  // sign and exponent of the levels (their bits >> 23); none yet
    bool exact = false;               // the closed form holds (no tie, sizes it takes)
    float middle = 0.0f;              // 1.5 * 2^e with the levels' sign, where R is taken
    float rounded = 0.0f;             // R: the step rounded to the binade's grid, in the rounding mode
    int32_t grow = 0;                 // R in grid steps towards larger magnitudes
};

// `count` times: level = level + step (rounded to float), each sum written to `y`. Where the rounding of
// a sum provably does not depend on the level (see EnvelopeRamp.cpp) the k-th sum is level + k * R,
// exactly, and runs four samples per vector instruction; elsewhere the sums run one by one. `plan`, if
// given, keeps R between calls.
void RampSamples(float& level, float step, float* y, uint32_t count, RampPlan* plan = nullptr);
// The same, each sum written as sum * scale + offset (a multiply, then an add, each rounded).
void RampSamplesMapped(float& level, float step, float* y, uint32_t count, float scale, float offset,
                       RampPlan* plan = nullptr);

// The same, one sum after the other: the reference RampSamples matches bit for bit.
inline void RampSamplesSerial(float& level, float step, float* y, uint32_t count) {
    float l = level;
    for (uint32_t i = 0; i < count; ++i) {
        l += step;
        y[i] = l;
    }
    level = l;
}

inline void RampSamplesMappedSerial(float& level, float step, float* y, uint32_t count, float scale,
                                    float offset) {
    float l = level;
    for (uint32_t i = 0; i < count; ++i) {
        l += step;
        y[i] = l * scale + offset;
    }
    level = l;
}

}  // namespace BR
