// DC: table, block-rate parameter reading and the per-channel sample loop.
#include "DC.h"

namespace BrelCorvaneDC {

namespace {

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"Output Positive L", BR::kUnitGeneric, 0, 1, 0},
    {"Output Symmetric L", BR::kUnitGeneric, -1, 1, 0},
    {"Multiplier L", BR::kUnitGeneric, -2, 2, 1},
    {"Input Add L", BR::kUnitGeneric, 0, 1, 0},
    {"Input Multiply L", BR::kUnitGeneric, 0, 1, 0},
    {"Output Positive R", BR::kUnitGeneric, 0, 1, 0},
    {"Output Symmetric R", BR::kUnitGeneric, -1, 1, 0},
    {"Multiplier R", BR::kUnitGeneric, -2, 2, 1},
    {"Input Add R", BR::kUnitGeneric, 0, 1, 0},
    {"Input Multiply R", BR::kUnitGeneric, 0, 1, 0},
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
    {"Smoothing L", BR::kUnitMilliseconds, -500, 500, 0},
    {"Smoothing R", BR::kUnitMilliseconds, -500, 500, 0},
};

float defaultsValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}};

constexpr BR::ModuleConfig kConfig{2, 2, 0, 0, kOSCPortOffset, 1, presetTable, kNumParameters, parameterTable,
                                   -1};

}  // namespace

BrelCorvane::BrelCorvane() : BrelCorvaneBase(kConfig) {
    BrelCorvane::InitModule();
}

void BrelCorvane::InitModule() {
    for (int c = 0; c < 2; ++c) {
        level[c] = 0.0f;
        inputAdd[c] = 0.0f;
        inputMultiply[c] = 0.0f;
        smoother[c].Reset();
    }
    BrelCorvaneBase::InitModule();
}

bool BrelCorvane::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    if (!RowsChanged()) return true;  // levels and smoothing depend on rows and the rate alone
    for (int c = 0; c < 2; ++c) {
        const int32_t row = c * kRowsPerChannel;
        level[c] = (BlockValue(row + kOutputPositiveL) + BlockValue(row + kOutputSymmetricL)) *
                   BlockValue(row + kMultiplierL);
        inputAdd[c] = BlockValue(row + kInputAddL);
        inputMultiply[c] = BlockValue(row + kInputMultiplyL);
        smoother[c].Configure(BlockValue(kSmoothingL + c), sampleRate);
    }
    return true;
}

void BrelCorvane::ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
    for (int32_t c = 0; c < numOutputs && c < 2; ++c) {
        const float* x = inputs[c];
        float* y = outputs[c];
        const float gain = level[c], add = inputAdd[c], multiply = inputMultiply[c];
        const float rest = 1.0f - multiply;
        for (uint32_t i = 0; i < frames; ++i)
            y[i] = (x[i] * multiply + rest) * gain + x[i] * add;
        smoother[c].Process(y, int(frames));
    }
}

uint32_t BrelCorvane::GetParameterFlags(int32_t tableIndex) {
    return tableIndex >= kOSCPortOffset && tableIndex <= kSmoothingR ? BR::kDisplayStringFlag : 0;
}

int32_t BrelCorvane::GetParameterDisplayString(BR::DisplayStringRequest& request) {
    return OffDisplayString(request, request.index == kOSCPortOffset,
                            request.index == kSmoothingL || request.index == kSmoothingR);
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneDC
