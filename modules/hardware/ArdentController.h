// Ardent Controller: five bytes in every stereo frame for a 40-gate expander, with note levels, gate
// groups, level inputs, input-to-gate, thru audio, test signals and serial MIDI on a gate bit.
#pragma once

#include "GateController.h"

namespace BrelCorvaneArdentController {

enum TableIndex : int32_t {
    kOutput1 = 0,
    kOSCPortOffset = 5,
    kTestSignal = 6,
    kCh1MIDIChannel = 7,
    kCh2MIDIChannel = 14,
    kGates1MIDIChannel = 21,
    kByte1 = 31,
    kBytes = 34,
    kSend = 35,
    kMIDIOutMIDIChannel = 36,
    kMIDIOutOutput = 37,
    kMIDIOutClock = 38,
    kMIDIClockSwing = 39,
    kMIDIClockSwingType = 40,
    kInputThru = 45,
    kInput1 = 46,
    kInputMode1 = 51,
    kMIDIClockOffset = 56,
    kTrigger1Length = 58,
    kMIDIOutChannelise = 98,
    kAccent1 = 99,
    kInput1ToGate = 119,
    kInterfaceCategory = 127,
    kMIDIOutPolyphony = 128,
    kUseMIDISPP = 129,
    kMatchNoteOffs = 130,
    kDelayStartSlice = 131,
    kDelayStopSlice = 132,
    kNumParameters = 133,
};

constexpr int32_t kNumBytes = 5;

class BrelCorvane : public BrelGateControllerBase {
public:
    BrelCorvane();

    int32_t GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) override;
    void InitModule() override;
    uint32_t GetParameterFlags(int32_t tableIndex) override;
    int32_t GetParameterDisplayString(BR::DisplayStringRequest& request) override;
    const char* GetModuleName() const override { return "Corvane Ardent Controller"; }
    const char* GetGuiScriptName() const override { return "gui_ardentcontroller.lua"; }
    void EncodeSlice(float** inputs, float** outputs, uint32_t frames) override;

    int32_t TestCounter() const { return testCounter; }

private:
    void ReadModuleSliceSettings() override;
    // The five bytes of the slice before the inputs, gates and serial lines are added.
    void SliceBase(int32_t* base) const;
    void RenderTestSignal(int32_t signal, float* left, float* right, uint32_t frames, float fullScale);

    int32_t inputSelect[kNumBytes] = {};
    int32_t inputBipolar[kNumBytes] = {};
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneArdentController
