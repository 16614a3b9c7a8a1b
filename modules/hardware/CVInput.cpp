// CV Input: table, per-block settings with the filter and loop designs, and the three modes' loops.
#include "CVInput.h"

#include <algorithm>
#include <cmath>

namespace BrelCorvaneCVInput {

namespace {

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
    {"Mode L", BR::kUnitIndexed, 0, 2, 0},
    {"Level L", BR::kUnitFader, 0, 1, 0},
    {"Bipolar L", BR::kUnitBoolean, 0, 1, 0},
    {"Scale L", BR::kUnitGeneric, -4, 4, 1},
    {"Smoothing L", BR::kUnitMilliseconds, -500, 500, 0},
    {"Mode R", BR::kUnitIndexed, 0, 2, 0},
    {"Level R", BR::kUnitFader, 0, 1, 0},
    {"Bipolar R", BR::kUnitBoolean, 0, 1, 0},
    {"Scale R", BR::kUnitGeneric, -4, 4, 1},
    {"Smoothing R", BR::kUnitMilliseconds, -500, 500, 0},
    {"Elkhorn Offset L", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Elkhorn Offset R", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Elkhorn Filter Freq", BR::kUnitGeneric, 0, 1, 0.117f},
    {"Elkhorn Centre", BR::kUnitFrequency, 16000, 18000, 17000},
    {"Elkhorn Tau 1", BR::kUnitGeneric, 1, 1000, 100},
    {"Elkhorn Tau 2", BR::kUnitGeneric, 1, 1000, 100},
    {"Elkhorn Force Smooth", BR::kUnitGeneric, -1, 0, -0.5f},
};

float defaultsValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}};

constexpr BR::ModuleConfig kConfig{2, 2, 0, 0, kOSCPortOffset, 1, presetTable, kNumParameters, parameterTable,
                                   -1};

constexpr double kPi = 3.14159265358979323846;

// The loop and the detector are designed for rates a host can run; anything else (0, negative, not
// a number, absurdly high) designs as the nearest sane rate so the loop stays finite.
float SaneRate(float rate) {
    if (!(rate >= 1000.0f)) return rate > 0.0f ? 1000.0f : 48000.0f;
    return std::min(rate, 1.0e6f);
}

}  // namespace

void DesignPll(PllCoefficients& p, float sampleRate, float centre, float t1, float t2) {
    p.sampleRate = sampleRate;
    p.centre = centre;
    p.tau1 = t1;
    p.tau2 = t2;
    p.omega0 = double(centre) * 2.0 * kPi;
    p.inverseRate = 1.0 / double(sampleRate);
    const double fc = 1.0 / (double(sampleRate) * 2.0 * kPi * double(t2));
    const double t = std::tan(kPi * fc);
    const double z = (1.0 - t) / (1.0 + t);
    p.feedback = double(float(-z));  // rounded through a float on its way, as the loop expects
    const double g = std::abs((z + 1.0) / 2.0);
    p.loopGain = (double(t2) / double(t1)) / g;
}

BrelCorvane::BrelCorvane() : BrelCorvaneBase(kConfig) {
    BrelCorvane::InitModule();
}

void BrelCorvane::InitModule() {
    for (int c = 0; c < 2; ++c) {
        mode[c] = 0;
        level[c] = scale[c] = offset[c] = slew[c] = onePole[c] = 0.0f;
        bipolar[c] = 0;
        carrierPhase[c] = 0.0f;
        parity[c] = 0;
        smoothed[c] = 0.0f;
        filter[c].SetCoefficients(&coefficients);
        filter[c].Clear();
        pll[c] = PllState();
        pll[c].coefficients = &pllCoefficients;
    }
    // Zero here, so the first BeginBlock designs both.
    filterFreq = 0.0f;
    coefficients = BR::LowpassCoefficients<10>();
    pllCoefficients = PllCoefficients();
    BrelCorvaneBase::InitModule();
}

bool BrelCorvane::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    if (!RowsChanged()) return true;  // settings and designs depend on rows and the rate alone
    for (int c = 0; c < 2; ++c) {
        const int32_t row = c * kRowsPerChannel;
        const int32_t newMode = std::clamp(int32_t(BlockValue(row + kModeL)), 0, 2);
        if (newMode != mode[c]) filter[c].Clear();
        mode[c] = newMode;
        if (newMode == kGenerator) {
            const float l = BlockValue(row + kLevelL);
            level[c] = l * l * l;
        } else {
            scale[c] = BlockValue(row + kScaleL);
            bipolar[c] = BlockValue(row + kBipolarL) != 0.0f ? 1 : 0;
            offset[c] = BlockValue(kElkhornOffsetL + c);
            if (newMode == kElkhornDecoder && offset[c] > 0.0f)
                scale[c] = BlockValue(row + kScaleL) / offset[c];
        }
        float m = BlockValue(row + kSmoothingL) * 0.001f * sampleRate;
        if (newMode == kElkhornDecoder) {
            // Forces at least the one-pole of "Elkhorn Force Smooth"; a slew limiter set by hand wins.
            const float f = BlockValue(kElkhornForceSmooth) * 0.001f * sampleRate;
            if (!(m > 0.0f) && m > f) m = f;
        }
        slew[c] = m > 0.5f ? 2.0f / m : 0.0f;
        onePole[c] = m < -0.5f ? std::exp(5.2f / m) : 0.0f;
    }
    const float cutoff = std::clamp(BlockValue(kElkhornFilterFreq), 0.068f, 1.0f);
    if (cutoff != filterFreq) {
        filterFreq = cutoff;
        coefficients.Design(0.0, cutoff);
    }
    const float rate = SaneRate(sampleRate);
    const float centre = BlockValue(kElkhornCentre);
    const float t1 = BlockValue(kElkhornTau1) * 1e-7f;
    const float t2 = BlockValue(kElkhornTau2) * 0.001f;
    const PllCoefficients& p = pllCoefficients;
    if (rate != p.sampleRate || centre != p.centre || t1 != p.tau1 || t2 != p.tau2) {
        DesignPll(pllCoefficients, rate, centre, t1, t2);
        for (PllState& s : pll)
            s.omega = pllCoefficients.omega0;
    }
    return true;
}

void BrelCorvane::ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
    for (int32_t c = 0; c < 2; ++c) {
        const float* x = inputs[c];
        float* y = outputs[c];
        const int32_t oldParity = parity[c];
        if (frames & 1) parity[c] = 1 - parity[c];
        if (mode[c] == kGenerator) {
            const float l = level[c];
            float phase = carrierPhase[c];
            for (uint32_t i = 0; i < frames; ++i) {
                phase = 1.0f - phase;
                y[i] = (phase * 2.0f - 1.0f) * l;
            }
            carrierPhase[c] = phase;
            continue;
        }
        if (mode[c] == kElkhornDecoder) {
            ProcessElkhorn(c, x, y, frames);
        } else if (bipolar[c]) {
            // Synchronous demodulation: with the old parity at 1 the slice's first sample is negated,
            // at 0 its second; the parity runs across all blocks.
            const float s = scale[c];
            const uint32_t negated = oldParity ? 0u : 1u;
            for (uint32_t i = 0; i < frames; ++i) {
                const float v = BR::SanitizeSample(x[i]) * s;
                y[i] = (i & 1) == negated ? -v : v;
            }
        } else {
            const float s = scale[c];
            for (uint32_t i = 0; i < frames; ++i)
                y[i] = std::fabs(BR::SanitizeSample(x[i])) * s;
        }
        Smooth(c, y, frames);
    }
}

void BrelCorvane::ProcessElkhorn(int32_t c, const float* x, float* y, uint32_t frames) {
    PllState s = pll[c];
    const PllCoefficients& p = *s.coefficients;
    const double step = p.inverseRate, gain = p.loopGain, feedback = p.feedback;
    const float o = offset[c], sc = scale[c];
    BR::TenthOrderFilter& detector = filter[c];
    for (uint32_t i = 0; i < frames; ++i) {
        const double in = BR::SanitizeSample(x[i]);
        s.phase += step * s.omega;
        if (s.phase > kPi) s.phase -= 2.0 * kPi;
        if (s.phase < -kPi) s.phase += 2.0 * kPi;
        // The cosine branch drives the loop until the carrier stands in phase with the sine.
        const double e = std::cos(s.phase) * in * gain;
        s.omega += s.lastError * feedback + e;
        s.lastError = e;
        // A lost signal lets omega drift; it is only kept a number, so the phase stays finite.
        if (!std::isfinite(s.omega)) s.omega = p.omega0, s.lastError = 0.0;
        if (!std::isfinite(s.phase)) s.phase = 0.0;
        const float d = float(std::sin(s.phase) * in);
        float v = detector.Process(d);
        // "Elkhorn Filter Freq" near 1.0 designs a filter with no meaning that may run away in floats;
        // far beyond any signal its history is cleared, so the output stays a bounded number.
        if (!(std::fabs(v) <= 1.0e6f)) {
            detector.Clear();
            v = 0.0f;
        }
        y[i] = (o - v) * sc;
    }
    pll[c].lastError = s.lastError;
    pll[c].phase = s.phase;
    pll[c].omega = s.omega;
}

void BrelCorvane::Smooth(int32_t c, float* y, uint32_t frames) {
    if (frames == 0) return;
    BR::OutputSmoother smoother;
    smoother.slewStep = slew[c];
    smoother.smoothCoefficient = slew[c] > 0.0f ? 0.0f : onePole[c];
    smoother.smoothState = smoothed[c];
    smoother.Process(y, int(frames));
    smoothed[c] = smoother.smoothState;
}

int32_t BrelCorvane::GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) {
    static BR::CountedTextList* modes = new BR::CountedTextList({"Decoder", "Generator", "Elkhorn Decoder"});
    if (tableIndex == kModeL || tableIndex == kModeL + kRowsPerChannel)
        return BR::HandOutValueStrings(modes, out);
    return BR::kErrInvalidParameter;
}

uint32_t BrelCorvane::GetParameterFlags(int32_t tableIndex) {
    const bool flagged = tableIndex == kOSCPortOffset || tableIndex == kSmoothingL ||
                         tableIndex == kSmoothingL + kRowsPerChannel;
    return flagged ? BR::kDisplayStringFlag : 0;
}

int32_t BrelCorvane::GetParameterDisplayString(BR::DisplayStringRequest& request) {
    return OffDisplayString(request, request.index == kOSCPortOffset,
                            request.index == kSmoothingL || request.index == kSmoothingL + kRowsPerChannel);
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneCVInput
