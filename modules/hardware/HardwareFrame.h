// The stereo frame words that gate and CV expanders read from a digital output: the two byte
// layouts, the thru merge and the word-to-sample rule. Words are 24 bits; samples carry them exactly.
#pragma once

#include <cstdint>

namespace BR {

// Interface categories: what the host's output stage takes as full scale.
enum InterfaceCategory : int32_t { kCategoryA = 0, kCategoryB = 1 };

constexpr float kFullScaleA = 8388608.0f;  // 2^23
constexpr float kFullScaleB = 8388480.0f;  // 2^23 - 128

inline float FullScale(int32_t category) {
    return category == kCategoryB ? kFullScaleB : kFullScaleA;
}

// Five bytes: b1 and b2 in the top of the left word, b3 and b4 in the top of the right word, and b5
// split by nibbles into bits 7-4 of each word. Bits 3-0 stay 0.
inline void FiveByteWords(const uint8_t* b, int32_t& left, int32_t& right) {
    left = (int32_t(b[0]) << 16) | (int32_t(b[1]) << 8) | (b[4] & 0xF0);
    right = (int32_t(b[2]) << 16) | (int32_t(b[3]) << 8) | ((b[4] & 0x0F) << 4);
}

// Six bytes, three to a word, all 24 bits in use.
inline void SixByteWords(const uint8_t* b, int32_t& left, int32_t& right) {
    left = (int32_t(b[0]) << 16) | (int32_t(b[1]) << 8) | int32_t(b[2]);
    right = (int32_t(b[3]) << 16) | (int32_t(b[4]) << 8) | int32_t(b[5]);
}

// Sets gate bit g: bit g & 7 of byte g >> 3.
inline void SetGateBit(uint8_t* bytes, int32_t g) {
    bytes[g >> 3] = uint8_t(bytes[g >> 3] | (1u << (g & 7)));
}

// The bits an audio sample contributes to a word when thru is on. They are OR-ed into the frame,
// never added: this is how the expander's makers combine the two, and a full positive sample of 1.0
// therefore gives bit 23 alone. A value so large it would not fit an int saturates rather than wrap,
// and a non-number contributes nothing.
inline int32_t ThruBits(float x, float fullScale) {
    if (x != x) return 0;  // a non-number adds no bits
    if (x >= 0.0f) {
        const float scaled = x * fullScale;
        return scaled < 2147483520.0f ? int32_t(scaled) : 0x7FFFFF80;
    }
    const float scaled = x * -fullScale;
    const int32_t magnitude = scaled < 2147483520.0f ? int32_t(scaled) : 0x7FFFFF80;
    return ((-magnitude) & 0x7FFFFF) | 0x800000;
}

// A word with bit 23 clear is word / F; with bit 23 set it is the negative of its 24-bit two's
// complement over F. No dither, gain or rounding beyond the one division touches it. Written without
// a branch (the magnitude picked, the quotient's sign bit set): frame streams alternate the two cases
// from sample to sample, where a branch mispredicts; the bits are those of the two-case form.
inline float WordToSample(int32_t word, float fullScale) {
    const bool negative = (word & 0x800000) != 0;
    const int32_t magnitude = negative ? ((-word) & 0xFFFFFF) : word;
    const float quotient = float(magnitude) / fullScale;
    return negative ? -quotient : quotient;
}

}  // namespace BR
