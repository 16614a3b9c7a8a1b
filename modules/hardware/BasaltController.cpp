// Basalt Controller: table and value names, and the per-sample encoder of its six-byte frame.
#include "BasaltController.h"

#include <algorithm>

namespace BrelCorvaneBasaltController {

namespace {

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"Output 1", BR::kUnitIndexed, 0, 255, 0},  // 0
    {"Output 2", BR::kUnitIndexed, 0, 255, 0},
    {"Output 3", BR::kUnitIndexed, 0, 255, 0},
    {"Output 4", BR::kUnitIndexed, 0, 255, 0},
    {"Output 5", BR::kUnitIndexed, 0, 255, 0},
    {"Output 6", BR::kUnitIndexed, 0, 255, 0},
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
    {"Test Signal", BR::kUnitIndexed, 0, 4, 0},
    {"Gates 1 MIDI Channel", BR::kUnitIndexed, 0, 16, 0},
    {"Gates 1 Base Note", BR::kUnitMIDINote, 0, 127, 48},
    {"Gates 2 MIDI Channel", BR::kUnitIndexed, 0, 16, 0},  // 10
    {"Gates 2 Base Note", BR::kUnitMIDINote, 0, 127, 48},
    {"Gates 3 MIDI Channel", BR::kUnitIndexed, 0, 16, 0},
    {"Gates 3 Base Note", BR::kUnitMIDINote, 0, 127, 48},
    {"Gates 4 MIDI Channel", BR::kUnitIndexed, 0, 16, 0},
    {"Gates 4 Base Note", BR::kUnitMIDINote, 0, 127, 48},
    {"Gates 5 MIDI Channel", BR::kUnitIndexed, 0, 16, 0},
    {"Gates 5 Base Note", BR::kUnitMIDINote, 0, 127, 48},
    {"Gates 6 MIDI Channel", BR::kUnitIndexed, 0, 16, 0},
    {"Gates 6 Base Note", BR::kUnitMIDINote, 0, 127, 48},
    {"Byte 1", BR::kUnitIndexed, 0, 255, 248},  // 20
    {"Byte 2", BR::kUnitIndexed, 0, 127, 0},
    {"Byte 3", BR::kUnitIndexed, 0, 127, 0},
    {"Bytes", BR::kUnitIndexed, 1, 3, 1},
    {"Send", BR::kUnitBoolean, 0, 1, 0},
    {"MIDI Out MIDI Channel", BR::kUnitIndexed, 0, 17, 0},
    {"MIDI Out Output", BR::kUnitIndexed, 0, 47, 0},
    {"MIDI Out Clock", BR::kUnitBoolean, 0, 1, 0},
    {"MIDI Clock Swing", BR::kUnitPercent, 0, 100, 50},
    {"MIDI Clock Swing Type", BR::kUnitIndexed, 0, 1, 0},
    {"Input Thru", BR::kUnitIndexed, 0, 4, 1},  // 30
    {"MIDI Clock Offset", BR::kUnitMilliseconds, -100, 100, 0},
    {"Trigger 1/1 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 1/2 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 1/3 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 1/4 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 1/5 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 1/6 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 1/7 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 1/8 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 2/1 Length", BR::kUnitMilliseconds, 0, 100, 0},  // 40
    {"Trigger 2/2 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 2/3 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 2/4 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 2/5 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 2/6 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 2/7 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 2/8 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 3/1 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 3/2 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 3/3 Length", BR::kUnitMilliseconds, 0, 100, 0},  // 50
    {"Trigger 3/4 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 3/5 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 3/6 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 3/7 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 3/8 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 4/1 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 4/2 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 4/3 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 4/4 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 4/5 Length", BR::kUnitMilliseconds, 0, 100, 0},  // 60
    {"Trigger 4/6 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 4/7 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 4/8 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 5/1 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 5/2 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 5/3 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 5/4 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 5/5 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 5/6 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 5/7 Length", BR::kUnitMilliseconds, 0, 100, 0},  // 70
    {"Trigger 5/8 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 6/1 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 6/2 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 6/3 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 6/4 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 6/5 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 6/6 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 6/7 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"Trigger 6/8 Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"MIDI Out Channelise", BR::kUnitIndexed, 0, 16, 0},  // 80
    {"Accent 1/2", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 1/4", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 1/6", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 1/8", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 2/2", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 2/4", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 2/6", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 2/8", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 3/2", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 3/4", BR::kUnitBoolean, 0, 1, 0},  // 90
    {"Accent 3/6", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 3/8", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 4/2", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 4/4", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 4/6", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 4/8", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 5/2", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 5/4", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 5/6", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 5/8", BR::kUnitBoolean, 0, 1, 0},  // 100
    {"Accent 6/2", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 6/4", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 6/6", BR::kUnitBoolean, 0, 1, 0},
    {"Accent 6/8", BR::kUnitBoolean, 0, 1, 0},
    {"Input 1 To Gate", BR::kUnitIndexed, 0, 40, 0},
    {"Input 2 To Gate", BR::kUnitIndexed, 0, 40, 0},
    {"Input 3 To Gate", BR::kUnitIndexed, 0, 40, 0},
    {"Input 4 To Gate", BR::kUnitIndexed, 0, 40, 0},
    {"Input 5 To Gate", BR::kUnitIndexed, 0, 40, 0},
    {"Input 6 To Gate", BR::kUnitIndexed, 0, 40, 0},  // 110
    {"Input 7 To Gate", BR::kUnitIndexed, 0, 40, 0},
    {"Input 8 To Gate", BR::kUnitIndexed, 0, 40, 0},
    {"Interface Category", BR::kUnitIndexed, 0, 1, 0},
    {"MIDI Out Polyphony", BR::kUnitIndexed, 0, 7, 0},
    {"Use MIDI SPP", BR::kUnitBoolean, 0, 1, 0},
    {"Match Note Offs", BR::kUnitBoolean, 0, 1, 0},
    {"Delay Start Slice", BR::kUnitBoolean, 0, 1, 0},
    {"Delay Stop Slice", BR::kUnitBoolean, 0, 1, 0},
};

float defaultsValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}};

constexpr BR::ModuleConfig kConfig{
    8, 2, 6, 0, kOSCPortOffset, 1, presetTable, kNumParameters, parameterTable, kInterfaceCategory};

constexpr BrelGateControllerRows kRows{kNumBytes,
                                       6,
                                       0,
                                       {-1, -1},
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
                                       BR::SerialTiming::kSixByte};

}  // namespace

BrelCorvane::BrelCorvane() : BrelGateControllerBase(kConfig, kRows) {
    BrelCorvane::InitModule();
}

void BrelCorvane::EncodeSlice(float** inputs, float** outputs, uint32_t frames) {
    const float fullScale = BR::FullScale(interfaceCategory);
    const int32_t signal = int32_t(BlockValue(kTestSignal));
    float* left = outputs[0];
    float* right = outputs[1];
    if (signal != 0) {
        RenderTestSignal(signal, left, right, frames, fullScale);
    } else {
        uint8_t base[kNumBytes];
        for (int32_t b = 0; b < kNumBytes; ++b) {
            int32_t value = int32_t(BlockValue(kOutput1 + b));
            if (groups[b].midiChannel > 0)
                for (int32_t i = 0; i < 8; ++i)
                    if (groups[b].gate[i]) value |= 1 << i;
            base[b] = uint8_t(uint32_t(value) > 255u ? 255 : value);
        }
        // Inputs reach the first 40 gates only; group 6 is in the frame but not on that list.
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

        int32_t wordL = 0, wordR = 0;
        for (uint32_t i = 0; i < frames; ++i) {
            uint8_t frame[kNumBytes];
            std::copy(base, base + kNumBytes, frame);
            for (int32_t k = 0; k < numGates; ++k)
                if (gateSource[k][i] > 0.0f) BR::SetGateBit(frame, gateBit[k]);
            SerialStep(frame);
            BR::SixByteWords(frame, wordL, wordR);
            // All 24 bits of a word carry gates, so thru audio lands on the gates themselves.
            if (thru) {
                wordL |= BR::ThruBits(thruL[i], fullScale);
                wordR |= BR::ThruBits(thruR[i], fullScale);
            }
            left[i] = BR::WordToSample(wordL, fullScale);
            right[i] = BR::WordToSample(wordR, fullScale);
        }
        const uint8_t shown[kNumBytes] = {uint8_t(wordL >> 16), uint8_t(wordL >> 8), uint8_t(wordL),
                                          uint8_t(wordR >> 16), uint8_t(wordR >> 8), uint8_t(wordR)};
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
        uint8_t all = 0;
        switch (signal) {
            case 1:
                c = (c + 1) & 7;
                all = c == 0 ? 255 : 0;
                break;
            case 2:
                c = (c + 1) % 6;
                all = uint8_t(c * 48);
                break;
            case 3:
                c = (c + 1) & 255;
                all = uint8_t(c);
                break;
            case 4:
                c = (c + 1) & 0x1FFFF;
                all = uint8_t(1 << (c >> 14));
                break;
            default:
                break;
        }
        const uint8_t frame[kNumBytes] = {all, all, all, all, all, all};
        int32_t wordL, wordR;
        BR::SixByteWords(frame, wordL, wordR);
        left[i] = BR::WordToSample(wordL, fullScale);
        right[i] = BR::WordToSample(wordR, fullScale);
    }
    testCounter = c;
}

int32_t BrelCorvane::GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) {
    static BR::CountedTextList* outChannel = new BR::CountedTextList(Numbered({"Off"}, 1, 16));
    static BR::CountedTextList* outChannelOmni = [] {
        std::vector<std::string> names = Numbered({"Off"}, 1, 16);
        names.push_back("Omni");
        return new BR::CountedTextList(std::move(names));
    }();
    static BR::CountedTextList* gates = new BR::CountedTextList(GateNames(6));
    static BR::CountedTextList* gatesOff = [] {
        std::vector<std::string> names = {"Off"};
        for (std::string& name : GateNames(5))
            names.push_back(name);
        return new BR::CountedTextList(std::move(names));
    }();
    static BR::CountedTextList* swingType = new BR::CountedTextList({"16", "8"});
    static BR::CountedTextList* thru = new BR::CountedTextList({"Off", "1/2", "3/4", "5/6", "7/8"});
    static BR::CountedTextList* category = new BR::CountedTextList({"Cat A", "Cat B"});
    static BR::CountedTextList* polyphonyNames = new BR::CountedTextList(Numbered({"Off"}, 2, 8));

    const int32_t k = tableIndex;
    if (k == kMIDIOutMIDIChannel) return BR::HandOutValueStrings(outChannelOmni, out);
    if (k == kMIDIOutOutput) return BR::HandOutValueStrings(gates, out);
    if (k == kMIDIClockSwingType) return BR::HandOutValueStrings(swingType, out);
    if (k == kInputThru) return BR::HandOutValueStrings(thru, out);
    if (k == kMIDIOutChannelise) return BR::HandOutValueStrings(outChannel, out);
    if (k >= kInput1ToGate && k < kInput1ToGate + 8) return BR::HandOutValueStrings(gatesOff, out);
    if (k == kInterfaceCategory) return BR::HandOutValueStrings(category, out);
    if (k == kMIDIOutPolyphony) return BR::HandOutValueStrings(polyphonyNames, out);
    return BR::kErrInvalidParameter;
}

uint32_t BrelCorvane::GetParameterFlags(int32_t tableIndex) {
    const int32_t k = tableIndex;
    const bool flagged =
        k == kOSCPortOffset || k == kTestSignal ||
        (k >= kGates1MIDIChannel && k <= kGates1MIDIChannel + 10 && (k - kGates1MIDIChannel) % 2 == 0) ||
        (k >= kTrigger1Length && k < kTrigger1Length + 48);
    return flagged ? BR::kDisplayStringFlag : 0;
}

int32_t BrelCorvane::GetParameterDisplayString(BR::DisplayStringRequest& request) {
    return OffAtZero(request, GetParameterFlags(request.index) != 0);
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneBasaltController
