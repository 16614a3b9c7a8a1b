// Renders a short block through a driver and stops the fuzzer when any output sample is NaN or
// infinite: a module must give finite outputs for every value its parameters and inputs can hold.
#pragma once

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "host/HostDriver.h"

namespace BR::Fuzz {

inline void RenderAndCheck(HostDriver& driver, uint32_t frames, const TimedMidi* midi = nullptr,
                           uint32_t numMidi = 0) {
    static std::vector<float> storage;
    static std::vector<float*> outputs;
    const size_t numOut = size_t(driver.NumHostOutputs());
    storage.assign(numOut * frames, 0.0f);
    outputs.resize(numOut);
    for (size_t c = 0; c < numOut; ++c)
        outputs[c] = storage.data() + c * frames;
    std::vector<const float*> inputs(size_t(driver.NumHostInputs()), nullptr);
    driver.Process(inputs.data(), outputs.data(), frames, midi, numMidi);
    for (size_t i = 0; i < storage.size(); ++i) {
        if (!std::isfinite(storage[i])) {
            std::fprintf(stderr, "corvane fuzz: %s output %zu frame %zu is %g\n", driver.Entry().stem,
                         i / frames, i % frames, double(storage[i]));
            std::abort();
        }
    }
}

}  // namespace BR::Fuzz
