// Function: a fixed transfer curve per channel (linear, logarithm, exponential or absolute value)
// between an input scale and offset and an output scale and offset.
#pragma once

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
