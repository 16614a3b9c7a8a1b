// DC: a constant control voltage per channel, scaled, mixed with or modulated by its input, and smoothed.
#pragma once

#include "framework/BrelCorvaneBase.h"
#include "framework/Smoothing.h"

namespace BrelCorvaneDC {

enum TableIndex : int32_t {
    kOutputPositiveL = 0,
    kOutputSymmetricL = 1,
    kMultiplierL = 2,
    kInputAddL = 3,
    kInputMultiplyL = 4,
    kOutputPositiveR = 5,
    kRowsPerChannel = 5,
    kOSCPortOffset = 10,
    kSmoothingL = 11,
    kSmoothingR = 12,
    kNumParameters = 13,
};

class BrelCorvane : public BrelCorvaneBase {
public:
    BrelCorvane();

    void InitModule() override;
    bool BeginBlock(uint32_t frames) override;
    void ProcessSlice(float** inputs, float** outputs, uint32_t frames) override;
    uint32_t GetParameterFlags(int32_t tableIndex) override;
    int32_t GetParameterDisplayString(BR::DisplayStringRequest& request) override;
    const char* GetModuleName() const override { return "Corvane DC"; }
    const char* GetGuiScriptName() const override { return "gui_dc.lua"; }

    const BR::OutputSmoother& Smoother(int channel) const { return smoother[channel]; }
    float Level(int channel) const { return level[channel]; }

private:
    float level[2];
    float inputAdd[2];
    float inputMultiply[2];
    BR::OutputSmoother smoother[2];  // slewStep, smoothCoefficient, smoothState per channel
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneDC
