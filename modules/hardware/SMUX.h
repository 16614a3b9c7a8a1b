// SMUX: weaves two audio streams into one channel sample by sample, for a digital link that runs at
// half the host's rate on the far side. Inputs 1 and 2 go to output 1, inputs 3 and 4 to output 2.
#pragma once

#include "framework/BrelCorvaneBase.h"

namespace BrelCorvaneSMUX {

enum TableIndex : int32_t {
    kFlipL = 0,
    kFlipR = 1,
    kOSCPortOffset = 2,
    kNumParameters = 3,
};

class BrelCorvane : public BrelCorvaneBase {
public:
    BrelCorvane();

    void InitModule() override;
    bool BeginBlock(uint32_t frames) override;
    void ProcessSlice(float** inputs, float** outputs, uint32_t frames) override;
    uint32_t GetParameterFlags(int32_t tableIndex) override;
    int32_t GetParameterDisplayString(BR::DisplayStringRequest& request) override;
    const char* GetModuleName() const override { return "Corvane SMUX"; }
    const char* GetGuiScriptName() const override { return "gui_smux.lua"; }

    int32_t OddPhase() const { return oddPhase; }

private:
    uint8_t flipL = 0;
    uint8_t flipR = 0;
    int32_t oddPhase = 0;  // 1 when the next sample of the stream is the second of a pair
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneSMUX
