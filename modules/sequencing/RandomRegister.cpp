// Rotation, flip and converter of the random register.
#include "RandomRegister.h"

#include <algorithm>

namespace BR {

float DACScaleFactor(int32_t scaleMode, int32_t dacBits, float manualScale, const float* weights) {
    float scale = manualScale;
    if (scaleMode == kDACScaleAutomatic) {
        scale = float(dacBits);
    } else if (scaleMode == kDACScaleDynamic) {
        scale = 0.0f;
        for (int32_t i = 0; i < std::min(dacBits, kNumDACBits); ++i)
            scale += weights[i];
    }
    return scale > 0.0f ? 1.0f / scale : scale;
}

float RandomRegister::Step(const RandomSettings& settings, const float* dacWeights) {
    const bool flip = Draw(randomState) > settings.randomness;
    const int32_t length = std::clamp(settings.registerLength, 1, kMaxRegisterLength);
    uint64_t bits = registerBits;
    if (settings.randomMode == kRotateLeft) {
        uint64_t b = (bits >> (length - 1)) & 1u;
        if (flip) b = 1u - b;
        bits = (((uint64_t(1) << length) - 1u) & (bits * 2u)) | b;  // masked to the length
    } else {
        uint64_t b = bits & 1u;
        if (flip) b = 1u - b;
        // Bits above the length, left from a longer setting, are not masked and move down.
        bits = (b << (length - 1)) | (bits >> 1);
    }
    registerBits = bits;
    ApplyStandingEdit();
    return ReadConverter(settings, dacWeights);
}

float RandomRegister::ReadConverter(const RandomSettings& settings, const float* dacWeights) const {
    const uint64_t bits = registerBits;
    if (!settings.dacEnabled) {
        // A plain binary read of the low `dacBits` bits, from -1 to 1.
        const uint32_t m = (uint32_t(1) << (settings.dacBits & 31)) - 1u;
        const float h = float(m) * 0.5f;
        return (float(uint32_t(bits) & m) - h) / h;
    }
    float sum = 0.0f;
    const int32_t count = std::min(settings.dacBits, kNumDACBits);
    for (int32_t i = 0; i < count; ++i) {
        if (!((bits >> i) & 1u)) continue;
        float w = dacWeights[i];
        if (settings.dacRangeMode == 0 && w <= 0.0f) w = 0.0f;
        sum += w;
    }
    return std::clamp(sum * settings.dacScaleFactor, -1.0f, 1.0f);
}

}  // namespace BR
