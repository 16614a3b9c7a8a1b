// Reads expander frames back from rendered samples, written from the wire format alone (it calls
// nothing of the encoder): samples to 24-bit words, words to bytes and gate bits, and a serial MIDI
// receiver that samples each bit in its middle at 31250 bits per second.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <ostream>
#include <vector>

namespace BR::Test {

constexpr double kCatA = 8388608.0;
constexpr double kCatB = 8388480.0;

// The 24-bit word a sample carries: non-negative samples are word / F, negative ones the 24-bit two's
// complement of the magnitude.
inline uint32_t WordOf(float sample, double fullScale) {
    if (sample >= 0.0f) return uint32_t(std::llround(double(sample) * fullScale));
    const uint32_t magnitude = uint32_t(std::llround(-double(sample) * fullScale));
    return (0x1000000u - magnitude) & 0xFFFFFFu;
}

// What the sample of a word must be, from the same rule read the other way.
inline double SampleOf(uint32_t word, double fullScale) {
    if (word < 0x800000u) return double(word) / fullScale;
    return -double(0x1000000u - word) / fullScale;
}

// Five-byte frame: left = b1 b2 (b5 high nibble) 0, right = b3 b4 (b5 low nibble) 0.
inline std::array<uint8_t, 6> FiveBytes(uint32_t left, uint32_t right) {
    return {uint8_t(left >> 16),
            uint8_t(left >> 8),
            uint8_t(right >> 16),
            uint8_t(right >> 8),
            uint8_t(((left >> 4) & 0xF) << 4 | ((right >> 4) & 0xF)),
            0};
}

// Six-byte frame: three bytes to a word, most significant first.
inline std::array<uint8_t, 6> SixBytes(uint32_t left, uint32_t right) {
    return {uint8_t(left >> 16),  uint8_t(left >> 8),  uint8_t(left),
            uint8_t(right >> 16), uint8_t(right >> 8), uint8_t(right)};
}

inline bool GateOf(const std::array<uint8_t, 6>& bytes, int gate) {
    return (bytes[size_t(gate / 8)] >> (gate % 8)) & 1;
}

// The frames of a stereo render.
inline std::vector<std::array<uint8_t, 6>> Frames(const std::vector<float>& left,
                                                  const std::vector<float>& right, bool sixBytes,
                                                  double fullScale = kCatA) {
    std::vector<std::array<uint8_t, 6>> frames(left.size());
    for (size_t i = 0; i < left.size(); ++i) {
        const uint32_t l = WordOf(left[i], fullScale), r = WordOf(right[i], fullScale);
        frames[i] = sixBytes ? SixBytes(l, r) : FiveBytes(l, r);
    }
    return frames;
}

// One gate bit over a render: true where it is set.
inline std::vector<bool> GateLine(const std::vector<std::array<uint8_t, 6>>& frames, int gate) {
    std::vector<bool> line(frames.size());
    for (size_t i = 0; i < frames.size(); ++i)
        line[i] = GateOf(frames[i], gate);
    return line;
}

struct ReceivedByte {
    uint32_t startSample;
    uint8_t value;
    bool operator==(const ReceivedByte& o) const { return startSample == o.startSample && value == o.value; }
};

inline void PrintTo(const ReceivedByte& b, std::ostream* os) {
    *os << "{" << b.startSample << ", 0x" << std::hex << int(b.value) << std::dec << "}";
}

// A MIDI receiver on a gate line. A set gate is current in the loop, a "0"; the line idles clear. A
// start bit is the first set sample; each later bit is read at its middle, bit k at the start plus
// (k + 0.5) bit lengths, where a bit lasts sampleRate / 31250 samples. A stop bit that reads "0" is a
// framing error and the byte is not taken.
inline std::vector<ReceivedByte> ReceiveSerial(const std::vector<bool>& line, double sampleRate,
                                               int* framingErrors = nullptr) {
    const double bit = sampleRate / 31250.0;
    std::vector<ReceivedByte> bytes;
    size_t i = 0;
    while (i < line.size()) {
        if (!line[i]) {
            ++i;
            continue;
        }
        const size_t start = i;
        auto at = [&](int k) {
            const size_t s = start + size_t(std::floor((k + 0.5) * bit));
            return s < line.size() ? !line[s] : true;  // true: a "1", the idle level
        };
        uint8_t value = 0;
        for (int k = 0; k < 8; ++k)
            if (at(k + 1)) value = uint8_t(value | (1 << k));
        const bool stop = at(9);
        if (stop) {
            bytes.push_back(ReceivedByte{uint32_t(start), value});
        } else if (framingErrors) {
            ++*framingErrors;
        }
        i = start + size_t(std::floor(9.5 * bit)) + 1;
    }
    return bytes;
}

}  // namespace BR::Test
