// The system's random numbers: a 32-bit linear congruential generator and the reading of its state
// as a float. The LFO's noise, the random register and the voices' random tuning all draw from it, so
// that a run from the same state gives the same sequence everywhere.
#pragma once

#include <cstdint>

namespace BR {

// One step: state * 49979693 + 15485867, modulo 2^32.
inline uint32_t NextRandomState(uint32_t state) {
    return state * 49979693u + 15485867u;
}

// The low 20 bits of a state, centred: ((state AND 0xFFFFF) - 0x80000) * 1.9073486e-6, from -1 up to
// just below +1 in steps of 2^-19.
inline float RandomStateToFloat(uint32_t state) {
    return float(int32_t(state & 0xFFFFFu) - 0x80000) * 1.9073486e-6f;
}

// A generator with its state; zero-initialised, as every user starts it.
struct RandomGenerator {
    uint32_t state = 0;

    // Advances the state and returns its value.
    float Next() {
        state = NextRandomState(state);
        return RandomStateToFloat(state);
    }
};

}  // namespace BR
