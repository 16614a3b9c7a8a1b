// SMUX: table, flips read per block, and the interleaving on one free-running parity.
#include "SMUX.h"

namespace BrelCorvaneSMUX {

namespace {

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"Flip L", BR::kUnitBoolean, 0, 1, 0},
    {"Flip R", BR::kUnitBoolean, 0, 1, 0},
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
};

float defaultsValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}};

constexpr BR::ModuleConfig kConfig{4, 2, 2, 0, kOSCPortOffset, 1, presetTable, kNumParameters, parameterTable,
                                   -1};

}  // namespace

BrelCorvane::BrelCorvane() : BrelCorvaneBase(kConfig) {
    BrelCorvane::InitModule();
}

void BrelCorvane::InitModule() {
    flipL = flipR = 0;
    oddPhase = 0;
    BrelCorvaneBase::InitModule();
}

bool BrelCorvane::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    if (!RowsChanged()) return true;  // the flips depend on their rows alone
    flipL = BlockValue(kFlipL) != 0.0f ? 1 : 0;
    flipR = BlockValue(kFlipR) != 0.0f ? 1 : 0;
    return true;
}

void BrelCorvane::ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
    // The parity runs on across slices and blocks of any length. Each source is read at the output's
    // own index: nothing is decimated or filtered, so each source loses every other sample.
    const int32_t startOdd = oddPhase;
    if (frames & 1) oddPhase = 1 - oddPhase;
    for (int32_t side = 0; side < 2; ++side) {
        const bool flip = side == 0 ? flipL : flipR;
        const float* first = inputs[2 * side + (flip ? 1 : 0)];
        const float* second = inputs[2 * side + (flip ? 0 : 1)];
        float* out = outputs[side];
        for (uint32_t n = 0; n < frames; ++n)
            out[n] = ((n + uint32_t(startOdd)) & 1) ? second[n] : first[n];
    }
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

}  // namespace BrelCorvaneSMUX
