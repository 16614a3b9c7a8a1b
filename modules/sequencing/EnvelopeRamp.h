// Straight runs of the envelope's parabolic recurrence, level = level + step with a step that no longer
// changes (a second difference of 0: shape 1, sustain, finished), written several samples at a time with
// the same bits as the serial chain of rounded sums.
#pragma once

#include <cstdint>

namespace BR {

// `count` times: level = level + step (rounded to float), each sum written to `y`. Where the rounding of
// a sum provably does not depend on the level (see EnvelopeRamp.cpp) the k-th sum is level + k * R,
// exactly, and runs four samples per vector instruction; elsewhere the sums run one by one.
void RampSamples(float& level, float step, float* y, uint32_t count);
// The same, each sum written as sum * scale + offset (a multiply, then an add, each rounded).
void RampSamplesMapped(float& level, float step, float* y, uint32_t count, float scale, float offset);

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
