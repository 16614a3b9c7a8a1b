// A ramp on CV To MIDI's left input and gate pulses on its right, and the messages the stated
// formulas give for them with the left channel in "Gate Only" with controllers on: the note
// trunc(48 * cv + 48.5) with velocity 64 when the gate rises above 0.01, its note off (velocity 0)
// when it falls below, and the controller trunc((cv + 1) * 64 + 0.5) held within 0 and 127 whenever
// it changes, at most once every trunc(rate / 1000) samples. The samples on which a gate opens or
// closes do no controller step.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace BR::Test {

struct RampAndGate {
    std::vector<float> cv, gate;

    // cv runs from -1 towards 1 over `frames`; the gate is 0.5 for `width` frames of each `period`.
    RampAndGate(uint32_t frames, uint32_t period, uint32_t width) : cv(frames), gate(frames) {
        for (uint32_t i = 0; i < frames; ++i) {
            cv[i] = -1.0f + 2.0f * float(i) / float(frames);
            gate[i] = i % period < width ? 0.5f : 0.0f;
        }
    }

    struct Message {
        uint64_t frame;
        uint8_t status, data1, data2;
        bool operator==(const Message&) const = default;
    };

    // The settings: "Enable CC L" 1, "Send CC L" `cc`, "Enable Note L" 1, "Note On Mode L" "Gate Only",
    // "Channel L" `channel` (1 to 16), "Enable R" 0; the rest at their defaults.
    static std::vector<std::pair<std::string, float>> Settings(int channel, int cc) {
        return {{"Enable CC L", 1},    {"Send CC L", float(cc)},      {"Enable Note L", 1},
                {"Note On Mode L", 1}, {"Channel L", float(channel)}, {"Enable R", 0}};
    }

    std::vector<Message> Expected(double sampleRate, int channel, int cc) const {
        const int32_t minInterval = int32_t(sampleRate / 1000.0);
        const uint8_t ch = uint8_t(channel - 1);
        std::vector<Message> out;
        bool open = false;
        int32_t lastCC = 255, ccCountdown = 0, lastNote = 255;
        for (uint32_t i = 0; i < cv.size(); ++i) {
            if (!open && gate[i] > 0.01f) {
                open = true;
                const int32_t note = std::clamp(int32_t(48.0f * cv[i] + 48.0f + 0.5f), 0, 127);
                if (lastNote != 255) out.push_back({i, uint8_t(0x80 | ch), uint8_t(lastNote), 0});
                out.push_back({i, uint8_t(0x90 | ch), uint8_t(note), 64});
                lastNote = note;
                continue;
            }
            if (open && gate[i] < 0.01f) {
                open = false;
                if (lastNote != 255) out.push_back({i, uint8_t(0x80 | ch), uint8_t(lastNote), 0});
                lastNote = 255;
                continue;
            }
            if (ccCountdown > 0) {
                --ccCountdown;
                continue;
            }
            const float x = (cv[i] + 1.0f) * 64.0f + 0.5f;
            const int32_t v = std::clamp(int32_t(x), 0, 127);
            if (v == lastCC) continue;
            out.push_back({i, uint8_t(0xB0 | ch), uint8_t(cc), uint8_t(v)});
            lastCC = v;
            ccCountdown = minInterval;
        }
        return out;
    }
};

}  // namespace BR::Test
