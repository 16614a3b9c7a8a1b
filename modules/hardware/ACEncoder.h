// AC Encoder: each channel's input sets the amplitude of a square carrier at half the sample rate,
// so that a control voltage survives an AC-coupled output and is rectified again outside.
#pragma once

#include "framework/BrelCorvaneBase.h"
#include "framework/PropertyData.h"

namespace BrelCorvaneACEncoder {

enum TableIndex : int32_t {
    kOSCPortOffset = 0,
    kEnableL = 1,
    kInputPolarityL = 2,
    kMinOutputLevelL = 3,
    kMaxOutputLevelL = 4,
    kRowsPerChannel = 4,
    kNumParameters = 9,
};

class BrelCorvane : public BrelCorvaneBase {
public:
    BrelCorvane();

    int32_t GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) override;
    void InitModule() override;
    bool BeginBlock(uint32_t frames) override;
    void ProcessSlice(float** inputs, float** outputs, uint32_t frames) override;
    uint32_t GetParameterFlags(int32_t tableIndex) override;
    int32_t GetParameterDisplayString(BR::DisplayStringRequest& request) override;
    const char* GetModuleName() const override { return "Corvane AC Encoder"; }
    const char* GetGuiScriptName() const override { return "gui_acencoder.lua"; }

    float CarrierPhase(int channel) const { return carrierPhase[channel]; }

private:
    int32_t enable[2] = {};
    float offset[2] = {};
    float scale[2] = {};
    float minLevel[2] = {};
    float maxLevel[2] = {};
    float carrierPhase[2] = {};  // 0 or 1; flips before each sample, so the first sample is positive
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneACEncoder
