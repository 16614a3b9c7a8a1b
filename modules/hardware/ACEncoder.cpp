// AC Encoder: table, levels read per block and the carrier loop.
#include "ACEncoder.h"

namespace BrelCorvaneACEncoder {

namespace {

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},  {"Enable L", BR::kUnitBoolean, 0, 1, 0},
    {"Input Polarity L", BR::kUnitIndexed, 0, 1, 0},   {"Min Output Level L", BR::kUnitGeneric, 0, 1, 0},
    {"Max Output Level L", BR::kUnitGeneric, 0, 1, 1}, {"Enable R", BR::kUnitBoolean, 0, 1, 0},
    {"Input Polarity R", BR::kUnitIndexed, 0, 1, 0},   {"Min Output Level R", BR::kUnitGeneric, 0, 1, 0},
    {"Max Output Level R", BR::kUnitGeneric, 0, 1, 1},
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
        enable[c] = 0;
        offset[c] = scale[c] = minLevel[c] = maxLevel[c] = 0.0f;
        carrierPhase[c] = 0.0f;
    }
    BrelCorvaneBase::InitModule();
}

bool BrelCorvane::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    if (!RowsChanged()) return true;  // levels depend on rows alone
    for (int c = 0; c < 2; ++c) {
        const int32_t row = c * kRowsPerChannel;
        enable[c] = BlockValue(row + kEnableL) != 0.0f ? 1 : 0;
        const float lo = BlockValue(row + kMinOutputLevelL);
        const float hi = BlockValue(row + kMaxOutputLevelL);
        minLevel[c] = lo;
        maxLevel[c] = hi;
        if (BlockValue(row + kInputPolarityL) == 0.0f) {  // "Bipolar": -1..1 spans min..max
            offset[c] = (hi + lo) * 0.5f;
            scale[c] = (hi - lo) * 0.5f;
        } else {  // "Unipolar": 0..1 spans min..max
            offset[c] = lo;
            scale[c] = hi - lo;
        }
    }
    return true;
}

void BrelCorvane::ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
    for (int32_t c = 0; c < 2; ++c) {
        const float* x = inputs[c];
        float* y = outputs[c];
        if (!enable[c]) {
            if (x != y)
                for (uint32_t i = 0; i < frames; ++i)
                    y[i] = x[i];
            continue;
        }
        const float s = scale[c], o = offset[c], hi = maxLevel[c], lo = minLevel[c];
        float phase = carrierPhase[c];
        for (uint32_t i = 0; i < frames; ++i) {
            float a = s * x[i] + o;
            if (a > hi) a = hi;
            // Written as "not at least" so that a NaN amplitude falls to the minimum, and with max
            // below min the minimum wins.
            if (!(a >= lo)) a = lo;
            phase = 1.0f - phase;
            y[i] = (phase * 2.0f - 1.0f) * a;
        }
        carrierPhase[c] = phase;
    }
}

int32_t BrelCorvane::GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) {
    static BR::CountedTextList* polarity = new BR::CountedTextList({"Bipolar", "Unipolar"});
    if (tableIndex == kInputPolarityL || tableIndex == kInputPolarityL + kRowsPerChannel)
        return BR::HandOutValueStrings(polarity, out);
    return BR::kErrInvalidParameter;
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

}  // namespace BrelCorvaneACEncoder
