// The Step LFO's shift register of up to 48 bits, rotated once per step with a chance of flipping the
// bit that wraps, and the converter that turns it into a step value.
#pragma once

#include <cstdint>

namespace BR {

constexpr int32_t kNumDACBits = 24;
constexpr int32_t kMaxRegisterLength = 48;

enum RegisterEdit : int32_t { kEditNone = 0, kEditClear = 1, kEditSet = 2, kEditToggle = 3 };
enum RotateMode : int32_t { kRotateRight = 0, kRotateLeft = 1 };
enum DACScaleMode : int32_t { kDACScaleManual = 0, kDACScaleAutomatic = 1, kDACScaleDynamic = 2 };

// Per-lane values cached once a block while "Random Enable" is on.
struct RandomSettings {
    bool randomEnabled = false;
    int32_t randomMode = kRotateRight;
    bool setNext = false;
    int32_t registerLength = 8;  // 1..48
    int32_t dacBits = 8;         // 1..24
    float randomness = 0.0f;     // a draw above it flips the wrapped bit
    bool dacEnabled = false;
    int32_t dacRangeMode = 1;     // 0 unipolar: weights at or below 0 count as 0
    float dacScaleFactor = 0.0f;  // 1 / scale, or the raw scale when that is not above 0
};

// 1 / scale for the converter; a scale not above 0 is kept as it stands.
float DACScaleFactor(int32_t scaleMode, int32_t dacBits, float manualScale, const float* weights);

struct RandomRegister {
    uint64_t registerBits = 0;
    uint32_t randomState = 0;  // not seeded: the same flips on every run from a reset
    int32_t editBit = 0;
    int32_t editOperation = kEditNone;

    // The generator shared by the random modules: x = x * 49979693 + 15485867, read as a float in -1..1.
    static float Draw(uint32_t& state) {
        state = state * 49979693u + 15485867u;
        return float(int32_t(state & 0xFFFFFu) - 0x80000) * 1.9073486e-6f;
    }

    // An item of the edit queue: applied at once, and kept as the edit that acts again at each step
    // until the next item (operation 0 when the editor's mouse button is released).
    void ApplyEdit(int32_t bit, int32_t operation) {
        editBit = bit;
        editOperation = operation;
        ApplyStandingEdit();
    }

    // One step: draw, rotate, apply the standing edit, and read the converter. Returns the value for
    // the step table; `dacWeights` holds kNumDACBits weights.
    float Step(const RandomSettings& settings, const float* dacWeights);

    float ReadConverter(const RandomSettings& settings, const float* dacWeights) const;

private:
    void ApplyStandingEdit() {
        const uint64_t mask = uint64_t(1) << (editBit & 63);
        if (editOperation == kEditClear) registerBits &= ~mask;
        if (editOperation == kEditSet) registerBits |= mask;
        if (editOperation == kEditToggle) registerBits ^= mask;
    }
};

}  // namespace BR
