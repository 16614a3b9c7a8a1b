// Basalt Controller: six bytes in every stereo frame for a 48-gate expander, with gate groups,
// input-to-gate, thru audio, test signals and serial MIDI on a gate bit.
#pragma once

#include "GateController.h"

namespace BrelCorvaneBasaltController {

enum TableIndex : int32_t {
    kOutput1 = 0,
    kOSCPortOffset = 6,
    kTestSignal = 7,
    kGates1MIDIChannel = 8,
    kByte1 = 20,
    kBytes = 23,
    kSend = 24,
    kMIDIOutMIDIChannel = 25,
    kMIDIOutOutput = 26,
    kMIDIOutClock = 27,
    kMIDIClockSwing = 28,
    kMIDIClockSwingType = 29,
    kInputThru = 30,
    kMIDIClockOffset = 31,
    kTrigger1Length = 32,
    kMIDIOutChannelise = 80,
    kAccent1 = 81,
    kInput1ToGate = 105,
    kInterfaceCategory = 113,
    kMIDIOutPolyphony = 114,
    kUseMIDISPP = 115,
    kMatchNoteOffs = 116,
    kDelayStartSlice = 117,
    kDelayStopSlice = 118,
    kNumParameters = 119,
};

constexpr int32_t kNumBytes = 6;

class BrelCorvane : public BrelGateControllerBase {
public:
    BrelCorvane();

    int32_t GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) override;
    uint32_t GetParameterFlags(int32_t tableIndex) override;
    int32_t GetParameterDisplayString(BR::DisplayStringRequest& request) override;
    const char* GetModuleName() const override { return "Corvane Basalt Controller"; }
    const char* GetGuiScriptName() const override { return "gui_basaltcontroller.lua"; }
    void EncodeSlice(float** inputs, float** outputs, uint32_t frames) override;

private:
    void RenderTestSignal(int32_t signal, float* left, float* right, uint32_t frames, float fullScale);
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneBasaltController
