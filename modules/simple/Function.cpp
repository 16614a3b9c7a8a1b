// Function: table, block-rate reading of the enabled channels, and the four transfer curves.
#include "Function.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace BrelCorvaneFunction {

namespace {

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0}, {"Enable L", BR::kUnitBoolean, 0, 1, 0},
    {"Function L", BR::kUnitIndexed, 0, 3, 0},        {"Input Scale L", BR::kUnitGeneric, -2, 2, 1},
    {"Input Offset L", BR::kUnitGeneric, -1, 1, 0},   {"Output Scale L", BR::kUnitGeneric, -2, 2, 1},
    {"Output Offset L", BR::kUnitGeneric, -1, 1, 0},  {"Enable R", BR::kUnitBoolean, 0, 1, 0},
    {"Function R", BR::kUnitIndexed, 0, 3, 0},        {"Input Scale R", BR::kUnitGeneric, -2, 2, 1},
    {"Input Offset R", BR::kUnitGeneric, -1, 1, 0},   {"Output Scale R", BR::kUnitGeneric, -2, 2, 1},
    {"Output Offset R", BR::kUnitGeneric, -1, 1, 0},
};

float defaultsValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}};

constexpr BR::ModuleConfig kConfig{2, 2, 0, 0, kOSCPortOffset, 1, presetTable, kNumParameters, parameterTable,
                                   -1};

}  // namespace

BrelCorvane::BrelCorvane() : BrelCorvaneBase(kConfig) {
    display = &status.Emplace<FunctionStatus>();
    BrelCorvane::InitModule();
}

void BrelCorvane::InitModule() {
    for (FunctionChannel& ch : channel)
        ch = FunctionChannel{};
    *display = FunctionStatus{};
    BrelCorvaneBase::InitModule();
}

bool BrelCorvane::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    if (!RowsChanged()) return true;  // the settings below depend on rows alone
    for (int c = 0; c < 2; ++c) {
        FunctionChannel& ch = channel[c];
        const int32_t row = c == 0 ? kFirstRowL : kFirstRowR;
        // A disabled channel keeps its last curve settings.
        ch.enabled = BlockValue(row + kEnable) != 0.0f;
        if (!ch.enabled) continue;
        ch.function = int32_t(BlockValue(row + kFunction));
        ch.inputScale = BlockValue(row + kInputScale);
        ch.inputOffset = BlockValue(row + kInputOffset);
        ch.outputScale = BlockValue(row + kOutputScale);
        ch.outputOffset = BlockValue(row + kOutputOffset);
    }
    return true;
}

void BrelCorvane::ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
    for (int32_t c = 0; c < numOutputs && c < 2; ++c) {
        FunctionChannel& ch = channel[c];
        const float* x = inputs[c];
        float* y = outputs[c];
        if (!ch.enabled) {
            if (y != x) std::memmove(y, x, frames * sizeof(float));
            ch.displayInput = ch.displayOutput = x[0];
        } else {
            const float s = ch.inputScale, o = ch.inputOffset, g = ch.outputScale, h = ch.outputOffset;
            ch.displayInput = s * x[0] + o;
            switch (ch.function) {
                case kLogarithm:
                    for (uint32_t i = 0; i < frames; ++i)
                        y[i] = LogarithmCurve(x[i] * s + o) * g + h;
                    break;
                case kExponential: {
                    const float shift = o - 1.0f;
                    for (uint32_t i = 0; i < frames; ++i)
                        y[i] = ExponentialCurve(x[i] * s + shift) * g + h;
                    break;
                }
                case kAbsolute:
                    for (uint32_t i = 0; i < frames; ++i)
                        y[i] = std::fabs(x[i] * s + o) * g + h;
                    break;
                default: {
                    const float gain = g * s, add = g * o + h;
                    for (uint32_t i = 0; i < frames; ++i)
                        y[i] = x[i] * gain + add;
                    break;
                }
            }
            ch.displayOutput = y[0];
        }
        display->displayInput[c] = ch.displayInput;
        display->displayOutput[c] = ch.displayOutput;
    }
}

int32_t BrelCorvane::GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) {
    static BR::CountedTextList* curves =
        new BR::CountedTextList({"Linear", "Logarithm", "Exponential", "Absolute"});
    if (tableIndex != kFunctionL && tableIndex != kFunctionR) return BR::kErrInvalidParameter;
    return BR::HandOutValueStrings(curves, out);
}

uint32_t BrelCorvane::GetParameterFlags(int32_t tableIndex) {
    return tableIndex == kOSCPortOffset ? BR::kDisplayStringFlag : 0;
}

int32_t BrelCorvane::GetParameterDisplayString(BR::DisplayStringRequest& request) {
    return OffDisplayString(request, request.index == kOSCPortOffset, false);
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneFunction
