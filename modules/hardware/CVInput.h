// CV Input: brings control voltages in through an audio input. "Decoder" rectifies a carrier that
// outside hardware has modulated, "Generator" puts out that carrier, and "Elkhorn Decoder" follows a
// carrier near "Elkhorn Centre" with a phase-locked loop and detects its amplitude synchronously.
#pragma once

#include "LowpassDesign.h"
#include "framework/BrelCorvaneBase.h"
#include "framework/PropertyData.h"
#include "framework/Smoothing.h"

namespace BrelCorvaneCVInput {

enum TableIndex : int32_t {
    kOSCPortOffset = 0,
    kModeL = 1,
    kLevelL = 2,
    kBipolarL = 3,
    kScaleL = 4,
    kSmoothingL = 5,
    kRowsPerChannel = 5,
    kElkhornOffsetL = 11,
    kElkhornOffsetR = 12,
    kElkhornFilterFreq = 13,
    kElkhornCentre = 14,
    kElkhornTau1 = 15,
    kElkhornTau2 = 16,
    kElkhornForceSmooth = 17,
    kNumParameters = 18,
};

enum Mode : int32_t { kDecoder = 0, kGenerator = 1, kElkhornDecoder = 2 };

// Loop filter of the phase-locked loop, shared by both channels. Doubles where the loop integrates.
struct PllCoefficients {
    float sampleRate = 0.0f;
    float centre = 0.0f;
    float tau1 = 0.0f;
    float tau2 = 0.0f;
    double omega0 = 0.0;  // radians per second at the centre
    double inverseRate = 0.0;
    double loopGain = 0.0;
    double feedback = 0.0;
};

void DesignPll(PllCoefficients& pll, float sampleRate, float centre, float t1, float t2);

struct PllState {
    double lastError = 0.0;
    double phase = 0.0;  // radians, within -pi..pi
    double omega = 0.0;  // radians per second
    const PllCoefficients* coefficients = nullptr;
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
    const char* GetModuleName() const override { return "Corvane CV Input"; }
    const char* GetGuiScriptName() const override { return "gui_cvinput.lua"; }

    const PllState& Pll(int channel) const { return pll[channel]; }
    const PllCoefficients& SharedPll() const { return pllCoefficients; }
    const BR::LowpassCoefficients<10>& SharedFilter() const { return coefficients; }
    const BR::TenthOrderFilter& Filter(int channel) const { return filter[channel]; }
    float Slew(int channel) const { return slew[channel]; }
    float OnePole(int channel) const { return onePole[channel]; }
    float Scale(int channel) const { return scale[channel]; }
    float Level(int channel) const { return level[channel]; }

private:
    void ProcessElkhorn(int32_t c, const float* x, float* y, uint32_t frames);
    void Smooth(int32_t c, float* y, uint32_t frames);

    int32_t mode[2] = {};
    float level[2] = {};
    float scale[2] = {};
    uint8_t bipolar[2] = {};
    float offset[2] = {};
    float slew[2] = {};
    float onePole[2] = {};

    float carrierPhase[2] = {};
    int32_t parity[2] = {};
    float smoothed[2] = {};
    BR::TenthOrderFilter filter[2];
    PllState pll[2];

    float filterFreq = 0.0f;
    BR::LowpassCoefficients<10> coefficients;
    PllCoefficients pllCoefficients;
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneCVInput
