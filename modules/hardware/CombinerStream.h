// The byte streams that carry 12-bit control values through one byte lane of a frame: four channels
// in pairs of bytes, or eight in triples that skip channels whose value has not changed. Shared by
// the combiner modules and the Voice Controller's hardware modes.
#pragma once

#include <cstdint>

#include "HardwareFrame.h"

namespace BR {

// 12 bits, mid-scale for 0.0: trunc(x * 2047 + 2048.5) plus an offset in codes, held within 0..4095.
// A non-number reads as 0.0, and magnitudes beyond any reachable code are held first, so the
// conversion to an integer is always defined.
inline int32_t CombinerValue(float x, int32_t offsetCode) {
    if (!(x == x)) x = 0.0f;
    x = x > 4.0f ? 4.0f : (x < -4.0f ? -4.0f : x);
    const int32_t v = int32_t(x * 2047.0f + 2048.5f) + offsetCode;
    return v < 0 ? 0 : (v > 4095 ? 4095 : v);
}

// Pairs of bytes: the first holds value bits 6-0 with bit 7 clear, the second bit 7 set, the channel
// in bits 6-5 and value bits 11-7. `phase` runs 0..15, channel = (phase >> 2) & 3.
struct CinderStream {
    int32_t phase = 0;
    int32_t latched = 0;

    static uint8_t FirstByte(int32_t value) { return uint8_t(value & 127); }
    static uint8_t SecondByte(int32_t channel, int32_t value) {
        return uint8_t(((channel | 4) << 5) | ((value >> 7) & 31));
    }

    // `value(c)` gives channel c's value; it is asked only when a new value is latched.
    template <typename ValueOf>
    uint8_t Next(const ValueOf& value, int32_t step) {
        const int32_t c = (phase >> 2) & 3;
        if ((phase & 3) == 0) latched = value(c);
        const uint8_t byte = (phase & 2) == 0 ? FirstByte(latched) : SecondByte(c, latched);
        phase = (phase + step) & 15;
        return byte;
    }
};

// Triples of bytes: the first has bit 7 set and value bits 4-0, the second value bits 9-5, the third
// bit 6 for channels 4-7 or bit 5 for channels 0-3, (c & 3) in bits 3-2 and value bits 11-10.
// `phase` runs 0..63: channel = (phase >> 3) & 7, step t = (phase >> 1) & 3, and t = 3 never occurs.
struct DunmoreStream {
    int32_t phase = 0;
    int32_t latched = 0;
    int32_t lastValue[8] = {};

    static uint8_t Byte(int32_t t, int32_t channel, int32_t value) {
        if (t == 0) return uint8_t(0x80 | (value & 31));
        if (t == 1) return uint8_t((value >> 5) & 31);
        return uint8_t((channel >= 4 ? 0x40 : 0x20) | ((channel & 3) << 2) | ((value >> 10) & 3));
    }

    template <typename ValueOf>
    uint8_t Next(const ValueOf& value, int32_t step, bool adaptive) {
        int32_t c = (phase >> 3) & 7;
        const int32_t t = (phase >> 1) & 3;
        // A value is picked on entering t = 0 only. With "SMUX Proof" the first byte's second copy
        // (odd phase) repeats it, so both copies agree and a receiver at half the rate reads the same
        // byte whichever copy it sees; picking again there would let the adaptive search jump away.
        if ((phase & 7) == 0) {
            if (!adaptive) {
                latched = value(c);
                lastValue[c] = latched;
            } else {
                // The first channel from c on whose value changed is sent; when none did, the value
                // of the channel before c goes out again and the stream names that channel.
                int32_t passed = 0;
                for (; passed < 8; ++passed) {
                    const int32_t channel = (c + passed) & 7;
                    latched = value(channel);
                    if (latched != lastValue[channel]) {
                        lastValue[channel] = latched;
                        break;
                    }
                }
                if (passed == 8) passed = 7;
                c = (c + passed) & 7;
                phase = (phase + 8 * passed) & 63;
            }
        }
        const uint8_t byte = Byte(t, c, latched);
        phase += step;
        if ((phase & 7) == 6) phase += 2;
        phase &= 63;
        return byte;
    }
};

// The two words of a frame by the target's layout: "Ardent" five bytes, "Basalt" six.
inline void TargetWords(int32_t targetHardware, const uint8_t* bytes, int32_t& left, int32_t& right) {
    if (targetHardware == 0)
        FiveByteWords(bytes, left, right);
    else
        SixByteWords(bytes, left, right);
}

inline int32_t TargetLanes(int32_t targetHardware) {
    return targetHardware == 0 ? 5 : 6;
}

}  // namespace BR
