// Test signals and a stepping render for the Follower tests.
#pragma once

#include <cmath>
#include <cstdint>
#include <functional>
#include <random>
#include <vector>

#include "modules/events/Follower.h"
#include "tests/support/Render.h"

namespace BR::Test {

inline std::vector<float> Sine(float hz, float rate, uint32_t frames, float amplitude = 0.5f) {
    std::vector<float> x(frames);
    for (uint32_t i = 0; i < frames; ++i)
        x[i] = amplitude * float(std::sin(2.0 * M_PI * double(hz) * double(i) / double(rate)));
    return x;
}

// Band-limited: the harmonics below half the rate, each at 1/k, as a recorded sawtooth would be.
inline std::vector<float> Sawtooth(float hz, float rate, uint32_t frames, float amplitude = 0.5f) {
    std::vector<float> x(frames, 0.0f);
    for (int k = 1; double(k) * hz < 0.5 * rate; ++k)
        for (uint32_t i = 0; i < frames; ++i)
            x[i] += amplitude * 0.6f *
                    float(std::sin(2.0 * M_PI * k * double(hz) * double(i) / double(rate)) / k);
    return x;
}

inline void AddNoise(std::vector<float>& x, float amplitude, uint32_t seed) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> noise(-amplitude, amplitude);
    for (float& v : x)
        v += noise(generator);
}

inline BrelCorvaneFollower::BrelCorvane& Follower(HostDriver& driver) {
    return static_cast<BrelCorvaneFollower::BrelCorvane&>(driver.Module());
}

// Renders `input` on both inputs in blocks of `block`, calling `after` with the follower after each.
inline Channels RenderStepping(HostDriver& driver, const std::vector<float>& input, uint32_t block,
                               const std::function<void(BrelCorvaneFollower::BrelCorvane&)>& after = {}) {
    Channels out(2);
    for (uint32_t done = 0; done < input.size(); done += block) {
        const uint32_t n = std::min<uint32_t>(block, uint32_t(input.size()) - done);
        const std::vector<float> part(input.begin() + done, input.begin() + done + n);
        const Channels y = RenderFrames(driver, n, n, {part, part});
        for (int c = 0; c < 2; ++c)
            out[size_t(c)].insert(out[size_t(c)].end(), y[size_t(c)].begin(), y[size_t(c)].end());
        if (after) after(Follower(driver));
    }
    return out;
}

// Cents between the note that output L stands for (defaults: V/Octave, 1 V per octave, zero at note 48,
// manual scale 10) and the note of `hz`.
inline double CentsOff(float outputL, double hz) {
    const double note = double(outputL) * 10.0 * 12.0 + 48.0;
    const double expected = 69.0 + 12.0 * std::log2(hz / 440.0);
    return (note - expected) * 100.0;
}

}  // namespace BR::Test
