// Ardent Controller: table and value names, and the per-sample encoder of its five-byte frame.
#include "ArdentController.h"

#include <algorithm>

namespace BrelCorvaneArdentController {

namespace {

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"Output 1", BR::kUnitIndexed, 0, 255, 0},  // 0
    {"Output 2", BR::kUnitIndexed, 0, 255, 0},
    {"Output 3", BR::kUnitIndexed, 0, 255, 0},
    {"Output 4", BR::kUnitIndexed, 0, 255, 0},
    {"Output 5", BR::kUnitIndexed, 0, 255, 0},
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
    {"Test Signal", BR::kUnitIndexed, 0, 5, 0},
    {"Ch 1 MIDI Channel", BR::kUnitIndexed, 0, 16, 1},
    {"Ch 1 Range Min", BR::kUnitMIDINote, 0, 127, 48},
    {"Ch 1 Range Max", BR::kUnitMIDINote, 0, 127, 108},
    {"Ch 1 Gate Output", BR::kUnitIndexed, 0, 45, 3},  // 10
    {"Ch 1 Vel Output", BR::kUnitIndexed, 0, 5, 0},
    {"Ch 1 Note Priority", BR::kUnitIndexed, 0, 2, 0},
    {"Ch 1 Retrigger Mode", BR::kUnitIndexed, 0, 1, 0},
    {"Ch 2 MIDI Channel", BR::kUnitIndexed, 0, 16, 0},
    {"Ch 2 Range Min", BR::kUnitMIDINote, 0, 127, 48},
    {"Ch 2 Range Max", BR::kUnitMIDINote, 0, 127, 108},
    {"Ch 2 Gate Output", BR::kUnitIndexed, 0, 45, 4},
    {"Ch 2 Vel Output", BR::kUnitIndexed, 0, 5, 0},
    {"Ch 2 Note Priority", BR::kUnitIndexed, 0, 2, 0},
    {"Ch 2 Retrigger Mode", BR::kUnitIndexed, 0, 1, 0},  // 20
    {"Gates 1 MIDI Channel", BR::kUnitIndexed, 0, 16, 0},
    {"Gates 1 Base Note", BR::kUnitMIDINote, 0, 127, 48},
    {"Gates 2 MIDI Channel", BR::kUnitIndexed, 0, 16, 0},
    {"Gates 2 Base Note", BR::kUnitMIDINote, 0, 127, 48},
    {"Gates 3 MIDI Channel", BR::kUnitIndexed, 0, 16, 0},
    {"Gates 3 Base Note", BR::kUnitMIDINote, 0, 127, 48},
    {"Gates 4 MIDI Channel", BR::kUnitIndexed, 0, 16, 0},
    {"Gates 4 Base Note", BR::kUnitMIDINote, 0, 127, 48},
    {"Gates 5 MIDI Channel", BR::kUnitIndexed, 0, 16, 0},
    {"Gates 5 Base Note", BR::kUnitMIDINote, 0, 127, 48},  // 30
    {"Byte 1", BR::kUnitIndexed, 0, 255, 248},
    {"Byte 2", BR::kUnitIndexed, 0, 127, 0},
    {"Byte 3", BR::kUnitIndexed, 0, 127, 0},
    {"Bytes", BR::kUnitIndexed, 1, 3, 1},
    {"Send", BR::kUnitBoolean, 0, 1, 0},
    {"MIDI Out MIDI Channel", BR::kUnitIndexed, 0, 17, 0},
    {"MIDI Out Output", BR::kUnitIndexed, 0, 39, 0},
    {"MIDI Out Clock", BR::kUnitBoolean, 0, 1, 0},
    {"MIDI Clock Swing", BR::kUnitPercent, 0, 100, 50},
    {"MIDI Clock Swing Type", BR::kUnitIndexed, 0, 1, 0},  // 40
    {"Unused0", BR::kUnitIndexed, 0, 3, 0},
    {"Unused1", BR::kUnitIndexed, 0, 39, 0},
    {"Unused2", BR::kUnitPercent, 0, 100, 50},
    {"Unused3", BR::kUnitIndexed, 0, 1, 0},
    {"Input Thru", BR::kUnitIndexed, 0, 4, 1},
    {"Input 1", BR::kUnitIndexed, 0, 8, 0},
    {"Input 2", BR::kUnitIndexed, 0, 8, 0},
    {"Input 3", BR::kUnitIndexed, 0, 8, 0},
    {"Input 4", BR::kUnitIndexed, 0, 8, 0},
    {"Input 5", BR::kUnitIndexed, 0, 8, 0},  // 50
    {"Input Mode 1", BR::kUnitIndexed, 0, 1, 0},
    {"Input Mode 2", BR::kUnitIndexed, 0, 1, 0},
    {"Input Mode 3", BR::kUnitIndexed, 0, 1, 0},
    {"Input Mode 4", BR::kUnitIndexed, 0, 1, 0},
    {"Input Mode 5", BR::kUnitIndexed, 0, 1, 0},
    {"MIDI Clock Offset", BR::kUnitMilliseconds, -100, 100, 0},
    {"Unused4", BR::kUnitMilliseconds, -100, 100, 0},
    {"Trigger 1/1 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 1/2 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 1/3 Length", BR::kUnitMilliseconds, 0, 100, 0},  // 60
    {"Trigger 1/4 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 1/5 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 1/6 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 1/7 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 1/8 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 2/1 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 2/2 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 2/3 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 2/4 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 2/5 Length", BR::kUnitMilliseconds, 0, 100, 0},  // 70
    {"Trigger 2/6 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 2/7 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 2/8 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 3/1 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 3/2 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 3/3 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 3/4 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 3/5 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 3/6 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 3/7 Length", BR::kUnitMilliseconds, 0, 100, 0},  // 80
    {"Trigger 3/8 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 4/1 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 4/2 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 4/3 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 4/4 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 4/5 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 4/6 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 4/7 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 4/8 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 5/1 Length", BR::kUnitMilliseconds, 0, 100, 0},  // 90
    {"Trigger 5/2 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 5/3 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 5/4 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 5/5 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 5/6 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 5/7 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 5/8 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"MIDI Out Channelise", BR::kUnitIndexed, 0, 16, 0},
    {"Accent 1/2", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 1/4", BR::kUnitBoolean, 0, 1, 0},  // 100
    {"Accent 1/6", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 1/8", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 2/2", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 2/4", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 2/6", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 2/8", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 3/2", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 3/4", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 3/6", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 3/8", BR::kUnitBoolean, 0, 1, 0},  // 110
    {"Accent 4/2", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 4/4", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 4/6", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 4/8", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 5/2", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 5/4", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 5/6", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 5/8", BR::kUnitBoolean, 0, 1, 0},
    {"Input 1 To Gate", BR::kUnitIndexed, 0, 40, 0},
    {"Input 2 To Gate", BR::kUnitIndexed, 0, 40, 0},  // 120
    {"Input 3 To Gate", BR::kUnitIndexed, 0, 40, 0},
    {"Input 4 To Gate", BR::kUnitIndexed, 0, 40, 0},
    {"Input 5 To Gate", BR::kUnitIndexed, 0, 40, 0},
    {"Input 6 To Gate", BR::kUnitIndexed, 0, 40, 0},
    {"Input 7 To Gate", BR::kUnitIndexed, 0, 40, 0},
    {"Input 8 To Gate", BR::kUnitIndexed, 0, 40, 0},
    {"Interface Category", BR::kUnitIndexed, 0, 1, 0},
    {"MIDI Out Polyphony", BR::kUnitIndexed, 0, 7, 0},
    {"Use MIDI SPP", BR::kUnitBoolean, 0, 1, 0},
    {"Match Note Offs", BR::kUnitBoolean, 0, 1, 0},  // 130
    {"Delay Start Slice", BR::kUnitBoolean, 0, 1, 0},
    {"Delay Stop Slice", BR::kUnitBoolean, 0, 1, 0},
};

float defaultsValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}};

constexpr BR::ModuleConfig kConfig{
    8, 2, 6, 0, kOSCPortOffset, 1, presetTable, kNumParameters, parameterTable, kInterfaceCategory};

constexpr BrelGateControllerRows kRows{kNumBytes,
                                       5,
                                       2,
                                       {kCh1MIDIChannel, kCh2MIDIChannel},
                                       kGates1MIDIChannel,
                                       kByte1,
                                       kBytes,
                                       kSend,
                                       kMIDIOutMIDIChannel,
                                       kMIDIOutOutput,
                                       kMIDIOutClock,
                                       kMIDIClockSwing,
                                       kMIDIClockSwingType,
                                       kMIDIClockOffset,
                                       kTrigger1Length,
                                       kMIDIOutChannelise,
                                       kAccent1,
                                       kMIDIOutPolyphony,
                                       kUseMIDISPP,
                                       kMatchNoteOffs,
                                       kDelayStartSlice,
                                       kDelayStopSlice,
                                       kInputThru,
                                       kInput1ToGate,
                                       kInterfaceCategory,
                                       BR::SerialTiming::kFiveByte};

// A float sum truncated toward zero; sums far outside a byte, or not a number, stay finite.
inline int32_t Truncate(float v) {
    if (v >= 65536.0f) return 65536;
    if (v > -65536.0f) return int32_t(v);
    return v != v ? 0 : -65536;
}

inline uint8_t ClampByte(int32_t v) {
    return uint8_t(std::clamp(v, 0, 255));
}

}  // namespace

BrelCorvane::BrelCorvane() : BrelGateControllerBase(kConfig, kRows) {
    BrelCorvane::InitModule();
}

void BrelCorvane::InitModule() {
    std::fill(std::begin(inputSelect), std::end(inputSelect), -1);
    std::fill(std::begin(inputBipolar), std::end(inputBipolar), 0);
    BrelGateControllerBase::InitModule();
}

void BrelCorvane::ReadModuleSliceSettings() {
    for (int32_t b = 0; b < kNumBytes; ++b) {
        inputSelect[b] = int32_t(BlockValue(kInput1 + b)) - 1;
        inputBipolar[b] = int32_t(BlockValue(kInputMode1 + b));
    }
}

void BrelCorvane::SliceBase(int32_t* base) const {
    for (int32_t b = 0; b < kNumBytes; ++b)
        base[b] = int32_t(BlockValue(kOutput1 + b));
    // Note channels: channel 1's pitch goes to byte 1, channel 2's to byte 2. The pitch is written
    // whether the gate is on or not, so that a released note holds its level.
    for (int32_t c = 0; c < 2; ++c) {
        const NoteChannel& ch = channels[c];
        if (ch.midiChannel == 0) continue;
        base[c] += (int32_t(ch.note - float(ch.rangeMin)) & 63) * 4;
        const int32_t g = ch.gateOutput;
        if (g > 0 && ch.gate) {
            if (g > 5) {
                const int32_t bit = std::min(g - 6, kNumBytes * 8 - 1);
                base[bit >> 3] |= 1 << (bit & 7);
            } else {
                base[g - 1] += 255;
            }
        }
        const int32_t v = ch.velOutput;
        if (v > 0 && v <= kNumBytes) base[v - 1] += int32_t(ch.velocity * 255.0f);
    }
    for (int32_t g = 0; g < 5; ++g) {
        if (groups[g].midiChannel <= 0) continue;
        for (int32_t i = 0; i < 8; ++i)
            if (groups[g].gate[i]) base[g] |= 1 << i;
    }
    // Clipped from above only, as an unsigned comparison.
    for (int32_t b = 0; b < kNumBytes; ++b)
        if (uint32_t(base[b]) > 255u) base[b] = 255;
}

void BrelCorvane::EncodeSlice(float** inputs, float** outputs, uint32_t frames) {
    const float fullScale = BR::FullScale(interfaceCategory);
    const int32_t signal = int32_t(BlockValue(kTestSignal));
    float* left = outputs[0];
    float* right = outputs[1];
    if (signal != 0) {
        RenderTestSignal(signal, left, right, frames, fullScale);
    } else {
        // Bytes whose input is off equal their base; only the others read a sample.
        const float* source[kNumBytes];
        float scale[kNumBytes], offset[kNumBytes];
        int32_t level[kNumBytes];
        int32_t numLevels = 0;
        for (int32_t b = 0; b < kNumBytes; ++b) {
            const int32_t sel = inputSelect[b];
            if (sel < 0 || sel >= 8) continue;
            source[numLevels] = inputs[sel];
            scale[numLevels] = inputBipolar[b] ? 127.0f : 255.0f;
            offset[numLevels] = inputBipolar[b] ? 128.5f : 0.5f;
            level[numLevels++] = b;
        }
        const float* gateSource[8];
        int32_t gateBit[8];
        int32_t numGates = 0;
        for (int32_t j = 0; j < 8; ++j) {
            if (inputToGate[j] <= 0) continue;
            gateSource[numGates] = inputs[j];
            gateBit[numGates++] = std::min(inputToGate[j] - 1, kNumBytes * 8 - 1);
        }
        const bool thru = thruPair >= 0 && thruPair < 4;
        const float* thruL = thru ? inputs[2 * thruPair] : silence;
        const float* thruR = thru ? inputs[2 * thruPair + 1] : silence;
        int32_t base[kNumBytes];
        SliceBase(base);
        uint8_t byteBase[kNumBytes];
        for (int32_t b = 0; b < kNumBytes; ++b)
            byteBase[b] = uint8_t(base[b]);

        int32_t wordL = 0, wordR = 0;
        for (uint32_t i = 0; i < frames; ++i) {
            uint8_t frame[kNumBytes];
            std::copy(byteBase, byteBase + kNumBytes, frame);
            for (int32_t k = 0; k < numLevels; ++k) {
                const int32_t b = level[k];
                frame[b] = ClampByte(Truncate(scale[k] * source[k][i] + offset[k]) + base[b]);
            }
            for (int32_t k = 0; k < numGates; ++k)
                if (gateSource[k][i] > 0.0f) BR::SetGateBit(frame, gateBit[k]);
            SerialStep(frame);
            BR::FiveByteWords(frame, wordL, wordR);
            if (thru) {
                wordL |= BR::ThruBits(thruL[i], fullScale);
                wordR |= BR::ThruBits(thruR[i], fullScale);
            }
            left[i] = BR::WordToSample(wordL, fullScale);
            right[i] = BR::WordToSample(wordR, fullScale);
        }
        // With thru audio these are the merged words, not the bytes.
        const uint8_t shown[kNumBytes] = {uint8_t(wordL >> 16), uint8_t(wordL >> 8), uint8_t(wordR >> 16),
                                          uint8_t(wordR >> 8),
                                          uint8_t((wordL & 0xF0) | ((wordR >> 4) & 0x0F))};
        StoreFrameBytes(shown);
    }
    for (int32_t k = 0; k < numInputPointers && k < BR::kMaxModuleChannels; ++k)
        inputs[k] += frames;
    outputs[0] += frames;
    outputs[1] += frames;
}

void BrelCorvane::RenderTestSignal(int32_t signal, float* left, float* right, uint32_t frames,
                                   float fullScale) {
    int32_t c = testCounter;
    for (uint32_t i = 0; i < frames; ++i) {
        uint8_t frame[kNumBytes] = {};
        switch (signal) {
            case 1:
                c = (c + 1) & 7;
                std::fill(frame, frame + kNumBytes, uint8_t(c == 0 ? 255 : 0));
                break;
            case 2:
                c = (c + 1) % 6;
                std::fill(frame, frame + kNumBytes, uint8_t(c * 48));
                break;
            case 3:
                c = (c + 1) & 255;
                std::fill(frame, frame + kNumBytes, uint8_t(c));
                break;
            case 4:
                c = (c + 1) & 0x1FFFF;
                std::fill(frame, frame + kNumBytes, uint8_t(1 << (c >> 14)));
                break;
            case 5:
                // The right word becomes a 20-bit rising ramp in its top 20 bits.
                c = (c + 1) & 0xFFFFF;
                frame[2] = uint8_t((c >> 12) & 255);
                frame[3] = uint8_t((c >> 4) & 255);
                frame[4] = uint8_t(c & 15);
                break;
            default:
                break;
        }
        int32_t wordL, wordR;
        BR::FiveByteWords(frame, wordL, wordR);
        left[i] = BR::WordToSample(wordL, fullScale);
        right[i] = BR::WordToSample(wordR, fullScale);
    }
    testCounter = c;
}

int32_t BrelCorvane::GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) {
    static BR::CountedTextList* gateOutputs = [] {
        std::vector<std::string> names = {"Off", "Output 1", "Output 2", "Output 3", "Output 4", "Output 5"};
        for (std::string& name : GateNames(5))
            names.push_back(name);
        return new BR::CountedTextList(std::move(names));
    }();
    static BR::CountedTextList* velOutputs =
        new BR::CountedTextList({"Off", "Output 1", "Output 2", "Output 3", "Output 4", "Output 5"});
    static BR::CountedTextList* priorities = new BR::CountedTextList({"Newest", "Lowest", "Highest"});
    static BR::CountedTextList* retrigger = new BR::CountedTextList({"Retrig On", "Retrig Off"});
    static BR::CountedTextList* outChannel = new BR::CountedTextList(Numbered({"Off"}, 1, 16));
    static BR::CountedTextList* outChannelOmni = [] {
        std::vector<std::string> names = Numbered({"Off"}, 1, 16);
        names.push_back("Omni");
        return new BR::CountedTextList(std::move(names));
    }();
    static BR::CountedTextList* gates = new BR::CountedTextList(GateNames(5));
    static BR::CountedTextList* gatesOff = [] {
        std::vector<std::string> names = {"Off"};
        for (std::string& name : GateNames(5))
            names.push_back(name);
        return new BR::CountedTextList(std::move(names));
    }();
    static BR::CountedTextList* swingType = new BR::CountedTextList({"16", "8"});
    static BR::CountedTextList* thru = new BR::CountedTextList({"Off", "1/2", "3/4", "5/6", "7/8"});
    static BR::CountedTextList* inputs = new BR::CountedTextList(Numbered({"Off"}, 1, 8));
    static BR::CountedTextList* modes = new BR::CountedTextList({"Unipolar", "Bipolar"});
    static BR::CountedTextList* category = new BR::CountedTextList({"Cat A", "Cat B"});
    static BR::CountedTextList* polyphonyNames = new BR::CountedTextList(Numbered({"Off"}, 2, 8));

    const int32_t k = tableIndex;
    if (k == kCh1MIDIChannel + 3 || k == kCh2MIDIChannel + 3)
        return BR::HandOutValueStrings(gateOutputs, out);
    if (k == kCh1MIDIChannel + 4 || k == kCh2MIDIChannel + 4) return BR::HandOutValueStrings(velOutputs, out);
    if (k == kCh1MIDIChannel + 5 || k == kCh2MIDIChannel + 5) return BR::HandOutValueStrings(priorities, out);
    if (k == kCh1MIDIChannel + 6 || k == kCh2MIDIChannel + 6) return BR::HandOutValueStrings(retrigger, out);
    if (k == kMIDIOutMIDIChannel) return BR::HandOutValueStrings(outChannelOmni, out);
    if (k == kMIDIOutOutput) return BR::HandOutValueStrings(gates, out);
    if (k == kMIDIClockSwingType) return BR::HandOutValueStrings(swingType, out);
    if (k == kInputThru) return BR::HandOutValueStrings(thru, out);
    if (k >= kInput1 && k < kInput1 + kNumBytes) return BR::HandOutValueStrings(inputs, out);
    if (k >= kInputMode1 && k < kInputMode1 + kNumBytes) return BR::HandOutValueStrings(modes, out);
    if (k == kMIDIOutChannelise) return BR::HandOutValueStrings(outChannel, out);
    if (k >= kInput1ToGate && k < kInput1ToGate + 8) return BR::HandOutValueStrings(gatesOff, out);
    if (k == kInterfaceCategory) return BR::HandOutValueStrings(category, out);
    if (k == kMIDIOutPolyphony) return BR::HandOutValueStrings(polyphonyNames, out);
    return BR::kErrInvalidParameter;
}

uint32_t BrelCorvane::GetParameterFlags(int32_t tableIndex) {
    const int32_t k = tableIndex;
    const bool flagged =
        k == kOSCPortOffset || k == kTestSignal || k == kCh1MIDIChannel || k == kCh2MIDIChannel ||
        (k >= kGates1MIDIChannel && k <= kGates1MIDIChannel + 8 && (k - kGates1MIDIChannel) % 2 == 0) ||
        (k >= kTrigger1Length && k < kTrigger1Length + 40);
    return flagged ? BR::kDisplayStringFlag : 0;
}

int32_t BrelCorvane::GetParameterDisplayString(BR::DisplayStringRequest& request) {
    return OffAtZero(request, GetParameterFlags(request.index) != 0);
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneArdentController
