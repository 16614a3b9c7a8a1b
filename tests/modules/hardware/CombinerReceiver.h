// A receiver of the combiners' byte lanes, written from the wire format alone (it calls nothing of
// the encoders): it synchronises on the byte that starts a value, tolerates each byte arriving twice
// in a row, and reports each value with the channel it names and the sample its first byte came on.
#pragma once

#include <cstdint>
#include <vector>

#include "FrameDecoder.h"

namespace BR::Test {

struct ReceivedValue {
    int channel;
    int value;
    size_t at;  // index of the first byte's (first) sample
};

// The lane's byte on each sample.
inline std::vector<uint8_t> LaneBytes(const std::vector<float>& left, const std::vector<float>& right,
                                      bool sixBytes, int lane, double fullScale = kCatA) {
    const auto frames = Frames(left, right, sixBytes, fullScale);
    std::vector<uint8_t> bytes(frames.size());
    for (size_t i = 0; i < frames.size(); ++i)
        bytes[i] = frames[i][size_t(lane)];
    return bytes;
}

// Four channels: a byte with bit 7 clear carries value bits 6-0; the next byte with bit 7 set carries
// the channel in bits 6-5 and value bits 11-7, and completes the value.
inline std::vector<ReceivedValue> ReceiveCinder(const std::vector<uint8_t>& bytes) {
    std::vector<ReceivedValue> values;
    bool haveLow = false;
    int low = 0;
    size_t lowAt = 0;
    for (size_t i = 0; i < bytes.size(); ++i) {
        const int b = bytes[i];
        if ((b & 0x80) == 0) {
            if (!haveLow || i == 0 || bytes[i - 1] != b) lowAt = i;
            haveLow = true;
            low = b;
        } else if (haveLow) {
            values.push_back({(b >> 5) & 3, ((b & 31) << 7) | low, lowAt});
            haveLow = false;
        }
    }
    return values;
}

// Eight channels in triples: bit 7 set starts a value (bits 4-0); a byte with bits 7-5 clear holds
// bits 9-5; a byte with bit 6 (channels 4-7) or bit 5 (channels 0-3) holds the channel's low two bits
// in bits 3-2 and value bits 11-10, and completes it.
inline std::vector<ReceivedValue> ReceiveDunmore(const std::vector<uint8_t>& bytes) {
    std::vector<ReceivedValue> values;
    int state = 0, value = 0;
    size_t at = 0;
    for (size_t i = 0; i < bytes.size(); ++i) {
        const int b = bytes[i];
        if (b & 0x80) {
            if (state != 1 || i == 0 || bytes[i - 1] != b) at = i;
            state = 1;
            value = b & 31;
        } else if ((b & 0x60) == 0) {
            if (state == 1 || state == 2) {
                value = (value & 31) | ((b & 31) << 5);
                state = 2;
            }
        } else if (state == 2) {
            const int channel = ((b & 0x40) ? 4 : 0) + ((b >> 2) & 3);
            values.push_back({channel, value | ((b & 3) << 10), at});
            state = 0;
        }
    }
    return values;
}

// What the encoder must have sent for a sample, from the rule alone: trunc(x * 2047 + 2048.5) plus
// 384 codes per volt of offset, within 0..4095.
inline int ExpectedValue(float x, float offset = 0.0f) {
    const int v = int(x * 2047.0f + 2048.5f) + int(offset * 384.0f);
    return v < 0 ? 0 : (v > 4095 ? 4095 : v);
}

}  // namespace BR::Test
