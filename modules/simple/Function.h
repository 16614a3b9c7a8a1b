// Function: a fixed transfer curve per channel (linear, logarithm, exponential or absolute value)
// between an input scale and offset and an output scale and offset.
#pragma once

#include <algorithm>
#include <cmath>

#include "framework/BrelCorvaneBase.h"

namespace BrelCorvaneFunction {

// Rows of the per-channel block, relative to its first row (1 for L, 7 for R).
enum ChannelRow : int32_t {
    kEnable = 0,
    kFunction,
    kInputScale,
    kInputOffset,
    kOutputScale,
    kOutputOffset,
    kRowsPerChannel,
};

enum TableIndex : int32_t {
    kOSCPortOffset = 0,
    kFirstRowL = 1,
    kFunctionL = 2,
    kFirstRowR = 7,
    kFunctionR = 8,
    kNumParameters = 13,
};

enum Curve : int32_t { kLinear = 0, kLogarithm = 1, kExponential = 2, kAbsolute = 3 };

// log2(u) as ln(u) * 1.442695, and 2^v as exp(v * 0.6931472): the curves' own constants.
constexpr float kLog2OfE = 1.442695f;
constexpr float kLnOf2 = 0.6931472f;
constexpr float kMaxExponent = 115.0f * kLnOf2;  // e^this is 2^115, about 4e34

// The curves of one sample, as the sample loops compute them. `u` is the scaled input; the exponential
// takes the input already shifted by the offset less one, `shifted` = x * s + (o - 1). A large input
// (another module's pitch in Hz, say) would overflow the power to infinity: it is held at 2^115,
// finite at any output scale; inputs below that are untouched.
inline float LogarithmCurve(float u) {
    return u > 1e-10f ? std::log(u) * kLog2OfE + 1.0f : 0.0f;
}
inline float ExponentialCurve(float shifted) {
    return std::exp(std::min(shifted * kLnOf2, kMaxExponent));
}

// One input through a channel's whole curve: input scale `s` and offset `o`, output scale `g` and
// offset `h`; the same arithmetic as the sample loops, so a display drawn with it shows what plays.
inline float TransferSample(int32_t function, float x, float s, float o, float g, float h) {
    switch (function) {
        case kLogarithm:
            return LogarithmCurve(x * s + o) * g + h;
        case kExponential:
            return ExponentialCurve(x * s + (o - 1.0f)) * g + h;
        case kAbsolute:
            return std::fabs(x * s + o) * g + h;
        default:
            return x * (g * s) + (g * o + h);
    }
}

// The Function's part of the status block, read by the transfer-curve display.
struct FunctionStatus {
    float displayInput[2];
    float displayOutput[2];
};

struct FunctionChannel {
    bool enabled;
    int32_t function;
    float inputScale, inputOffset, outputScale, outputOffset;
    float displayInput, displayOutput;
};

class BrelCorvane : public BrelCorvaneBase {
public:
    BrelCorvane();

    void InitModule() override;
    bool BeginBlock(uint32_t frames) override;
    void ProcessSlice(float** inputs, float** outputs, uint32_t frames) override;
    int32_t GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) override;
    uint32_t GetParameterFlags(int32_t tableIndex) override;
    int32_t GetParameterDisplayString(BR::DisplayStringRequest& request) override;
    const char* GetModuleName() const override { return "Corvane Function"; }
    const char* GetGuiScriptName() const override { return "gui_function.lua"; }

    const FunctionChannel& Channel(int c) const { return channel[c]; }

private:
    FunctionChannel channel[2];
    FunctionStatus* display = nullptr;  // inside the status block
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneFunction
