// Output smoothing shared by every module with a "Smoothing" row (milliseconds, signed).
#pragma once

#include <cmath>

namespace BR {

// Positive times limit the slew so that a swing from -1 to +1 takes the set time; negative times
// smooth with a one-pole; less than half a sample either way switches the stage off.
struct OutputSmoother {
    float slewStep = 0.0f;           // largest change per sample, 0 when unused
    float smoothCoefficient = 0.0f;  // one-pole coefficient, 0 when unused
    float smoothState = 0.0f;        // last output sample; survives reconfiguration

    void Configure(float smoothingMs, float sampleRate) {
        const float s = smoothingMs * 0.001f * sampleRate;
        if (s > 0.5f) {
            slewStep = 2.0f / s;
            smoothCoefficient = 0.0f;
        } else {
            slewStep = 0.0f;
            smoothCoefficient = s < -0.5f ? std::exp(5.2f / s) : 0.0f;
        }
    }

    void Reset() { *this = OutputSmoother(); }

    // Smooths `frames` samples in place.
    void Process(float* samples, int frames) {
        if (frames <= 0) return;
        float state = smoothState;
        if (slewStep > 0.0f) {
            const float step = slewStep;
            for (int i = 0; i < frames; ++i) {
                const float y = samples[i];
                const float d = y - state;
                if (d >= step) {
                    state += step;
                } else if (d <= -step) {
                    state -= step;
                } else {
                    state = y;
                }
                samples[i] = state;
            }
        } else if (smoothCoefficient > 0.0f) {
            const float c = smoothCoefficient;
            for (int i = 0; i < frames; ++i) {
                state = (state - samples[i]) * c + samples[i];
                samples[i] = state;
            }
        } else {
            state = samples[frames - 1];
        }
        smoothState = state;
    }
};

// Display convention of "Smoothing" rows: "Off" from -0.5 to 0.5 ms inclusive.
inline bool SmoothingReadsOff(float ms) {
    return ms >= -0.5f && ms <= 0.5f;
}

}  // namespace BR
