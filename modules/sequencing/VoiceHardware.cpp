// Voice Controller hardware modes: the mixed outputs become an expander frame on the first two
// outputs, as level bytes ("Ardent") or as a Cinder or Dunmore byte lane of the target's frame.
#include <algorithm>

#include "VoiceController.h"
#include "modules/hardware/HardwareFrame.h"

namespace BrelCorvaneVoiceController {

namespace {

// clamp((int)(x * scale + offset), 0, 255); a non-number reads as 0.0.
inline uint8_t LevelByte(float x, float scale, float offset) {
    if (!(x == x)) x = 0.0f;
    const float v = std::clamp(x * scale + offset, -1.0f, 256.0f);
    return uint8_t(std::clamp(int32_t(v), 0, 255));
}

// Where the one byte of a lane lands in the two words: (byte & mask) << shift in each. The frame's
// other bytes stay 0 throughout, so this is the words of the whole frame.
struct LanePlace {
    int32_t maskL, shiftL, maskR, shiftR;
};

LanePlace PlaceOfLane(int32_t hardware, int32_t lane, bool valid) {
    if (!valid) return {0, 0, 0, 0};
    if (hardware != 0)
        return lane < 3 ? LanePlace{255, 16 - 8 * lane, 0, 0} : LanePlace{0, 0, 255, 40 - 8 * lane};
    switch (lane) {
        case 0:
            return {255, 16, 0, 0};
        case 1:
            return {255, 8, 0, 0};
        case 2:
            return {0, 0, 255, 16};
        case 3:
            return {0, 0, 255, 8};
        default:
            return {0xF0, 0, 0x0F, 4};  // byte 5 split by nibbles over both words
    }
}

// The lane's bytes over a run, the stream held in a local so that its state stays in registers.
template <bool kDunmore, typename Stream>
void EncodeLane(Stream& held, float* const* out, uint32_t frames, const LanePlace& at, float fullScale) {
    Stream stream = held;
    const int32_t channels = kDunmore ? 6 : 4;
    float* left = out[0];
    float* right = out[1];
    uint32_t i = 0;
    // Channels 7 and 8 of the Dunmore lane hold the value of input 0.0.
    auto value = [&](int32_t c) { return c < channels ? BR::CombinerValue(out[c][i], 0) : 2048; };
    for (; i < frames; ++i) {
        int32_t byte;
        if constexpr (kDunmore)
            byte = stream.Next(value, 2, true);
        else
            byte = stream.Next(value, 2);
        left[i] = BR::WordToSample((byte & at.maskL) << at.shiftL, fullScale);
        right[i] = BR::WordToSample((byte & at.maskR) << at.shiftR, fullScale);
    }
    held = stream;
}

}  // namespace

void BrelCorvane::EncodeHardware(float** outputs, uint32_t offset, uint32_t frames) {
    float* out[kNumOutputs];
    for (int32_t o = 0; o < kNumOutputs; ++o)
        out[o] = outputs[o] + offset;
    const float fullScale = BR::FullScale(interfaceCategory);
    float* left = out[0];
    float* right = out[1];
    uint8_t frame[6] = {};
    int32_t wordL = 0, wordR = 0;

    if (hardwareMode == 1) {
        // Five level bytes; outputs 3 to 5 keep their analogue values.
        float scale[3], add[3];
        for (int32_t b = 0; b < 3; ++b) {
            scale[b] = bipolar[b] ? 127.0f : 255.0f;
            add[b] = bipolar[b] ? 128.5f : 0.5f;
        }
        for (uint32_t i = 0; i < frames; ++i) {
            frame[0] = LevelByte(left[i], 255.0f, 0.5f);
            frame[1] = LevelByte(right[i], 255.0f, 0.5f);
            for (int32_t b = 0; b < 3; ++b)
                frame[2 + b] = LevelByte(out[2 + b][i], scale[b], add[b]);
            BR::FiveByteWords(frame, wordL, wordR);
            left[i] = BR::WordToSample(wordL, fullScale);
            right[i] = BR::WordToSample(wordR, fullScale);
        }
    } else {
        // One byte lane; the step is always 2, values carry no offset and pass no filter.
        const LanePlace at =
            PlaceOfLane(targetHardware, targetChannel, targetChannel < BR::TargetLanes(targetHardware));
        if (hardwareMode == 3)
            EncodeLane<true>(hardwareDunmore, out, frames, at, fullScale);
        else
            EncodeLane<false>(hardwareCinder, out, frames, at, fullScale);
    }
}

}  // namespace BrelCorvaneVoiceController
