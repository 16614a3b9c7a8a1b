// Function: table, block-rate reading of the enabled channels, and the four transfer curves.
#include "Function.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "framework/SampleKernels.h"

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

// The passes of the sample loops. `y` may be `x` (a host rendering in place): each sample is read
// before it is written. Vector operations round as their scalar twins.

// y[i] = x[i] * a + b: a multiply, then an add.
void ScaleOffsetInto(const float* x, float* y, uint32_t frames, float a, float b) {
    uint32_t i = 0;
#ifdef BR_SAMPLE_SSE2
    const __m128 va = _mm_set1_ps(a), vb = _mm_set1_ps(b);
    for (; i + 4 <= frames; i += 4)
        _mm_storeu_ps(y + i, _mm_add_ps(_mm_mul_ps(_mm_loadu_ps(x + i), va), vb));
#endif
    for (; i < frames; ++i)
        y[i] = x[i] * a + b;
}

// y[i] = |x[i] * s + o| * g + h.
void AbsoluteInto(const float* x, float* y, uint32_t frames, float s, float o, float g, float h) {
    uint32_t i = 0;
#ifdef BR_SAMPLE_SSE2
    const __m128 vs = _mm_set1_ps(s), vo = _mm_set1_ps(o), vg = _mm_set1_ps(g), vh = _mm_set1_ps(h);
    const __m128 sign = _mm_set1_ps(-0.0f);
    for (; i + 4 <= frames; i += 4) {
        const __m128 u = _mm_add_ps(_mm_mul_ps(_mm_loadu_ps(x + i), vs), vo);
        _mm_storeu_ps(y + i, _mm_add_ps(_mm_mul_ps(_mm_andnot_ps(sign, u), vg), vh));
    }
#endif
    for (; i < frames; ++i)
        y[i] = std::fabs(x[i] * s + o) * g + h;
}

// y[i] = the exponent ExponentialCurve passes to exp: (x[i] * s + shift) * ln 2, held at kMaxExponent.
// std::min(v, kMaxExponent) is kMaxExponent < v ? kMaxExponent : v, which is minps with the limit as
// its first operand (a not-a-number v stays one).
void ExponentInto(const float* x, float* y, uint32_t frames, float s, float shift) {
    uint32_t i = 0;
#ifdef BR_SAMPLE_SSE2
    const __m128 vs = _mm_set1_ps(s), vshift = _mm_set1_ps(shift), ln2 = _mm_set1_ps(kLnOf2);
    const __m128 limit = _mm_set1_ps(kMaxExponent);
    for (; i + 4 <= frames; i += 4) {
        const __m128 v = _mm_mul_ps(_mm_add_ps(_mm_mul_ps(_mm_loadu_ps(x + i), vs), vshift), ln2);
        _mm_storeu_ps(y + i, _mm_min_ps(limit, v));
    }
#endif
    for (; i < frames; ++i)
        y[i] = std::min((x[i] * s + shift) * kLnOf2, kMaxExponent);
}

// y[i] = LogarithmCurve(y[i]).
void LogarithmInPlace(float* y, uint32_t frames) {
    for (uint32_t i = 0; i < frames; ++i)
        y[i] = LogarithmCurve(y[i]);
}

// y[i] = e^y[i].
void ExpInPlace(float* y, uint32_t frames) {
    for (uint32_t i = 0; i < frames; ++i)
        y[i] = std::exp(y[i]);
}

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
            // The curves run in passes over the output: the arithmetic before and after the library's
            // log or exp four samples at a time, the call alone in a loop of its own. Across a call no
            // float stays live (x86-64 saves none), so the call's loop keeps nothing to spill; every
            // sample takes the same operations in the same order as TransferSample.
            switch (ch.function) {
                case kLogarithm:
                    ScaleOffsetInto(x, y, frames, s, o);
                    LogarithmInPlace(y, frames);
                    ScaleOffsetInto(y, y, frames, g, h);
                    break;
                case kExponential:
                    ExponentInto(x, y, frames, s, o - 1.0f);
                    ExpInPlace(y, frames);
                    ScaleOffsetInto(y, y, frames, g, h);
                    break;
                case kAbsolute:
                    AbsoluteInto(x, y, frames, s, o, g, h);
                    break;
                default:
                    ScaleOffsetInto(x, y, frames, g * s, g * o + h);
                    break;
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
