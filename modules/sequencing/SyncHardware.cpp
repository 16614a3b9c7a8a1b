// Sync with "BR Hardware Mode": the clock and run lines as gate bits or level bytes of an expander
// frame, the FSK tone on a bit or a byte, the inputs merged in, and the words as samples.
#include <algorithm>

#include "Sync.h"
#include "framework/PolySine.h"
#include "modules/hardware/HardwareFrame.h"

namespace BrelCorvaneSync {

namespace {

constexpr int32_t kFirstGateChoice = 7;  // "Gates 1/1"; 1..6 are "Output 1".."Output 6"

// A level byte: (int)(level * 255 + 0.5) within 0..255.
uint8_t LevelByte(float level) {
    const float v = std::clamp(level * 255.0f + 0.5f, 0.0f, 255.0f);
    return uint8_t(int32_t(v));
}

// One line (clock or run) at one sample: a gate bit, or a level in byte min(k - 1, 4).
void PlaceLine(uint8_t* frame, int32_t choice, bool active, float high, float low) {
    if (choice >= kFirstGateChoice) {
        const int32_t g = choice - kFirstGateChoice;  // byte g >> 3, bit g & 7
        // The bit follows the line, or its inverse when "High" lies below "Low".
        if (active == (high >= low)) BR::SetGateBit(frame, g);
    } else if (choice >= 1) {
        frame[std::min(choice - 1, 4)] = LevelByte(active ? high : low);
    }
}

}  // namespace

void BrelCorvane::RenderHardwareChunk(float* const* inputs, float* const* outputs, uint32_t at,
                                      uint32_t frames) {
    const SyncSettings& s = settings;
    const bool ardent = s.hardwareMode == 1;
    const float fullScale = BR::FullScale(s.interfaceCategory);
    const bool lines = s.dinsyncType != kTypeOff;
    const bool clockActive = clockPhase > 3 && !s.muteClocks;
    const bool tone = lines && s.enableFSK && s.clockOutput > 0;

    // Bytes that do not change within the chunk: the run line, and the clock unless it is a tone.
    uint8_t base[6] = {};
    if (lines) {
        if (!tone) PlaceLine(base, s.clockOutput, clockActive, s.clockHigh, s.clockLow);
        PlaceLine(base, s.runOutput, runHigh, s.runHigh, s.runLow);
    }
    const float* x0 = inputs[0] + at;
    const float* x1 = inputs[1] + at;
    float* y0 = outputs[0] + at;
    float* y1 = outputs[1] + at;
    const float step = (clockActive ? 2400.0f : 1200.0f) / sampleRate;
    const float half = (s.clockHigh - s.clockLow) * 0.5f, middle = (s.clockHigh + s.clockLow) * 0.5f;
    const int32_t clockChoice = s.clockOutput;
    float phase = fskPhase;
    uint8_t frame[6];
    for (uint32_t i = 0; i < frames; ++i) {
        std::copy(base, base + 6, frame);
        if (tone) {
            if (clockChoice >= kFirstGateChoice) {
                if (phase < 0.5f) BR::SetGateBit(frame, clockChoice - kFirstGateChoice);
            } else if (ardent) {
                // A level byte of the tone; "Basalt" has no level bytes for the form Output k.
                const float v =
                    std::clamp((BR::PolySine(phase) * half + middle) * 127.0f + 127.5f, 0.0f, 255.0f);
                frame[std::min(clockChoice - 1, 4)] = uint8_t(int32_t(v));
            }
            phase += step;
            if (phase >= 1.0f) phase -= 1.0f;
        }
        int32_t left, right;
        if (ardent)
            BR::FiveByteWords(frame, left, right);
        else
            BR::SixByteWords(frame, left, right);
        left |= BR::ThruBits(x0[i], fullScale);
        right |= BR::ThruBits(x1[i], fullScale);
        y0[i] = BR::WordToSample(left, fullScale);
        y1[i] = BR::WordToSample(right, fullScale);
    }
    if (tone) fskPhase = phase;
    if (frames != 0) std::copy(frame, frame + 6, status.As<SyncStatus>().frameBytes);
}

}  // namespace BrelCorvaneSync
