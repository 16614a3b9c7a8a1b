// LFO: table and presets, block-rate rate and phase from the transport, the swing segments, and the
// per-sample wave mix.
#include "LFO.h"

#include <algorithm>
#include <cmath>

#include "framework/PolySine.h"
#include "framework/RandomGenerator.h"

namespace BrelCorvaneLFO {

namespace {

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
    {"Speed L", BR::kUnitFrequency, 0.05f, 20, 5},
    {"Speed Multiplier L", BR::kUnitIndexed, 0, 3, 1},
    {"Sync L", BR::kUnitIndexed, 0, 5, 0},
    {"Beat Divisor L", BR::kUnitIndexed, 0, 7, 2},
    {"Beats L", BR::kUnitBeats, 0, 128, 4},
    {"Triplet L", BR::kUnitBoolean, 0, 1, 0},
    {"Phase L", BR::kUnitGeneric, 0, 360, 0},
    {"Offset L", BR::kUnitGeneric, -1, 1, 0},
    {"Sine L", BR::kUnitGeneric, -1, 1, 0},
    {"Triangle L", BR::kUnitGeneric, -1, 1, 0},
    {"Square L", BR::kUnitGeneric, -1, 1, 0},
    {"Saw L", BR::kUnitGeneric, -1, 1, 0},
    {"Random L", BR::kUnitGeneric, 0, 1, 0},
    {"Noise L", BR::kUnitGeneric, 0, 1, 0},
    {"Pulse Width L", BR::kUnitPercent, 0, 100, 50},
    {"Asymmetry L", BR::kUnitPercent, -100, 100, 0},
    {"Input Mode L", BR::kUnitIndexed, 0, 2, 0},
    {"Speed R", BR::kUnitFrequency, 0.05f, 20, 5},
    {"Speed Multiplier R", BR::kUnitIndexed, 0, 3, 1},
    {"Sync R", BR::kUnitIndexed, 0, 5, 0},
    {"Beat Divisor R", BR::kUnitIndexed, 0, 7, 2},
    {"Beats R", BR::kUnitBeats, 0, 128, 4},
    {"Triplet R", BR::kUnitBoolean, 0, 1, 0},
    {"Phase R", BR::kUnitGeneric, 0, 360, 0},
    {"Offset R", BR::kUnitGeneric, -1, 1, 0},
    {"Sine R", BR::kUnitGeneric, -1, 1, 0},
    {"Triangle R", BR::kUnitGeneric, -1, 1, 0},
    {"Square R", BR::kUnitGeneric, -1, 1, 0},
    {"Saw R", BR::kUnitGeneric, -1, 1, 0},
    {"Random R", BR::kUnitGeneric, 0, 1, 0},
    {"Noise R", BR::kUnitGeneric, 0, 1, 0},
    {"Pulse Width R", BR::kUnitPercent, 0, 100, 50},
    {"Asymmetry R", BR::kUnitPercent, -100, 100, 0},
    {"Input Mode R", BR::kUnitIndexed, 0, 2, 0},
    {"Smoothing L", BR::kUnitMilliseconds, -500, 500, 0},
    {"Smoothing R", BR::kUnitMilliseconds, -500, 500, 0},
    {"Swing L", BR::kUnitPercent, 0, 100, 50},
    {"Swing Type L", BR::kUnitIndexed, 0, 1, 0},
    {"Swing R", BR::kUnitPercent, 0, 100, 50},
    {"Swing Type R", BR::kUnitIndexed, 0, 1, 0},
    {"Reset By Note L", BR::kUnitBoolean, 0, 1, 0},
    {"Reset By Note R", BR::kUnitBoolean, 0, 1, 0},
};

float defaultsValues[kNumParameters];
// A 24-pulses-per-quarter square on L (1/24 beat, 0 to 1) and a run signal on R (1 while playing).
float dinSyncValues[kNumParameters] = {
    0,                                                           // OSC Port Offset
    5,  1, 2,  6, 1, 1, 0, 0.5f, 0, 0, 0.5f, 0, 0, 0, 50, 0, 0,  // L
    5,  1, 4,  2, 1, 0, 0, 0.5f, 0, 0, 0.5f, 0, 0, 0, 50, 0, 0,  // R
    0,  0,                                                       // Smoothing
    50, 0, 50, 0,                                                // Swing, Swing Type
};
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}, {"DIN sync (24)", 41, dinSyncValues}};

constexpr BR::ModuleConfig kConfig{2, 2, 0, 0, kOSCPortOffset, 2, presetTable, kNumParameters, parameterTable,
                                   -1};

constexpr float kSpeedFactors[4] = {0.1f, 1.0f, 10.0f, 100.0f};

BR::CountedTextList* NamedList(int32_t row) {
    static BR::CountedTextList* speedMultiplier = new BR::CountedTextList({"0.1", "1", "10", "100"});
    static BR::CountedTextList* sync =
        new BR::CountedTextList({"Free", "Tempo", "Transport", "Quadrature", "Start/Stop", "Transport2"});
    static BR::CountedTextList* beatDivisor =
        new BR::CountedTextList({"1/1", "1/2", "1/4", "1/8", "1/16", "1/32", "1/64", "1/128"});
    static BR::CountedTextList* inputMode = new BR::CountedTextList({"Add", "Multiply", "Combine"});
    static BR::CountedTextList* swingType = new BR::CountedTextList({"16", "8"});
    if (row == kSwingTypeL || row == kSwingTypeR) return swingType;
    if (row < kFirstRowL || row >= kSmoothingL) return nullptr;
    switch ((row - kFirstRowL) % kRowsPerChannel) {
        case kSpeedMultiplier:
            return speedMultiplier;
        case kSync:
            return sync;
        case kBeatDivisor:
            return beatDivisor;
        case kInputMode:
            return inputMode;
        default:
            return nullptr;
    }
}

double Fraction(double x) {
    return x - std::floor(x);
}

}  // namespace

BrelCorvane::BrelCorvane() : BrelCorvaneBase(kConfig) {
    display = &status.Emplace<LfoStatus>();
    BrelCorvane::InitModule();
}

void BrelCorvane::InitModule() {
    for (int c = 0; c < 2; ++c) {
        state[c] = LfoChannelState{};
        settings[c] = LfoChannelSettings{};
        settings[c].asymmetry = 0.5f;
        settings[c].swingFraction = -1.0f;
        smoother[c].Reset();
    }
    *display = LfoStatus{};
    BrelCorvaneBase::InitModule();
}

bool BrelCorvane::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    if (RowsChanged())
        for (int c = 0; c < 2; ++c)
            ReadChannelRows(c);
    // With no transport the LFO plays at tempo 0 from position 0, so tempo-derived rates are 0.
    bool playing = true;
    double tempo = 0.0, beats = 0.0;
    if (const BR::HostTransport* transport = Transport()) {
        playing = transport->IsTransportPlaying();
        tempo = transport->GetCurrentTempo();
        beats = BR::CurrentBeatPosition(transport);
        // A tempo that is not a number, or below 0, derives no rate and no swing.
        if (!(tempo > 0.0) || !std::isfinite(tempo)) tempo = 0.0;
    }
    double passRateHz = 0.0;  // "Quadrature" on R takes the rate of L from this pass; on L it has none
    for (int c = 0; c < 2; ++c)
        ReadChannel(c, playing, tempo, beats, passRateHz);
    return true;
}

void BrelCorvane::ReadChannelRows(int c) {
    LfoChannelSettings& set = settings[c];
    LfoChannelRows& rows = channelRows[c];
    const int32_t row = c == 0 ? kFirstRowL : kFirstRowR;
    auto value = [&](int32_t channelRow) { return BlockValue(row + channelRow); };

    // Swing: a unit of half a beat ("16") or a beat ("8").
    rows.unit = BlockValue(kSwingTypeL + 2 * c) != 0.0f ? 1.0 : 0.5;
    rows.swing = BlockValue(kSwingL + 2 * c);
    rows.phaseFraction = double(value(kPhase)) / 360.0;
    rows.sync = int32_t(value(kSync));
    double cycleBeats = std::ldexp(4.0 * double(value(kBeats)), -int32_t(value(kBeatDivisor)));
    if (value(kTriplet) != 0.0f) cycleBeats = cycleBeats * 2.0 / 3.0;
    rows.cycleBeats = cycleBeats;
    const int32_t multiplier = int32_t(value(kSpeedMultiplier));
    const float factor = multiplier >= 0 && multiplier < 4 ? kSpeedFactors[multiplier] : 1.0f;
    rows.freeRateHz = double(value(kSpeed) * factor);

    // Levels, shapes and smoothing.
    set.pulseWidth = PulseWidthFraction(value(kPulseWidth));
    set.sine = value(kSine);
    set.triangle = value(kTriangle);
    set.square = value(kSquare);
    set.saw = value(kSaw);
    set.random = value(kRandom);
    set.noise = value(kNoise);
    set.offset = value(kOffset);
    set.asymmetry = AsymmetryMiddle(value(kAsymmetry));
    set.inputMode = int32_t(value(kInputMode));
    set.resetPhase = rows.phaseFraction;
    set.resetByNote = BlockValue(kResetByNoteL + c) != 0.0f;
    smoother[c].Configure(BlockValue(kSmoothingL + c), sampleRate);
}

void BrelCorvane::ReadChannel(int c, bool playing, double tempo, double beats, double& passRateHz) {
    LfoChannelSettings& set = settings[c];
    LfoChannelState& run = state[c];
    const LfoChannelRows& rows = channelRows[c];

    const double unit = rows.unit;
    const float swing = rows.swing;
    if (std::fabs(swing - 50.0f) <= 0.1f || tempo == 0.0 || !playing) {
        set.swingFraction = -1.0f;
    } else {
        set.swingFraction = std::clamp(swing * 0.01f, 0.05f, 0.95f);
        set.swingPosition = float(std::fmod(beats, unit) / unit);
        set.swingSamples = float(unit * 60.0 * double(sampleRate) / tempo);
    }

    // Rate, and the phase where it is set from outside.
    double phaseOffset = -1.0;
    const double phaseFraction = rows.phaseFraction;
    const int32_t sync = rows.sync;
    double rateHz = 0.0;
    switch (sync) {
        case kSyncTempo:
        case kSyncTransport:
        case kSyncTransport2: {
            const double cycleBeats = rows.cycleBeats;
            rateHz = cycleBeats > 0.0 ? tempo / (cycleBeats * 60.0) : 0.0;
            if (sync == kSyncTempo) break;
            double b = beats;
            if (set.swingFraction >= 0.0f) {
                // Back from swung to straight time, within the swing unit the block starts in.
                const double s = set.swingFraction;
                const double u = b - double(set.swingPosition) * unit;
                if (double(set.swingPosition) < s) {
                    b = u + (b - u) * 0.5 / s;
                } else {
                    b = u + (b - (s * unit + u)) * 0.5 / (1.0 - s) + unit * 0.5;
                }
            }
            // A cycle of no length has no position in it: the phase stands at "Phase".
            const double d = (cycleBeats > 0.0 ? std::fmod(b, cycleBeats) / cycleBeats : 0.0) + phaseFraction;
            phaseOffset = phaseFraction;
            if (playing || sync == kSyncTransport2) run.phase = d - std::floor(d);
            if (sync == kSyncTransport2 && !playing) rateHz = 0.0;
            break;
        }
        case kSyncQuadrature:
            rateHz = passRateHz;
            run.phase = Fraction(state[1 - c].phase + phaseFraction);
            phaseOffset = phaseFraction;
            break;
        case kSyncStartStop:
            // Phase 0 keeps a square high while playing; just below 1 keeps it low while stopped.
            rateHz = 0.0;
            run.phase = playing ? 0.0 : 0.999999;
            break;
        default:
            rateHz = rows.freeRateHz;
            break;
    }
    passRateHz = rateHz;

    set.rateHz = rateHz;
    set.rate = rateHz / double(sampleRate);
    display->phaseOffset[c] = phaseOffset;
    display->rateHz[c] = rateHz;
}

void BrelCorvane::ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
    for (int32_t c = 0; c < numOutputs && c < 2; ++c) {
        RenderChannel(c, inputs[c], outputs[c], frames);
        smoother[c].Process(outputs[c], int(frames));
        state[c].phase -= std::floor(state[c].phase);
        display->displayPhase[c] = float(state[c].phase);
        display->displayLevel[c] = smoother[c].smoothState;
    }
}

void BrelCorvane::RenderChannel(int c, const float* x, float* y, uint32_t frames) {
    const LfoChannelSettings& set = settings[c];
    if (set.swingFraction < 0.0f) {
        RenderWave(c, x, y, frames, set.rate);
        return;
    }
    // Each swing unit runs its first half cycle in s of its time and its second in 1 - s. The position
    // t starts from the block's swingPosition in every slice.
    const double s = set.swingFraction, perUnit = set.swingSamples;
    double t = set.swingPosition;
    uint32_t done = 0;
    while (done < frames) {
        const bool first = t < s;
        const double g = first ? s : 1.0 - s;
        double n = std::floor(((first ? s : 1.0) - t) * perUnit + 1.0);
        // At least a sample a segment: at absurd tempos a unit is far below a sample, and the rounding
        // of t could otherwise give segments of no length, or of a negative one.
        if (!(n >= 1.0)) n = 1.0;
        t += n / perUnit;
        if (!first && t >= 1.0) t -= 1.0;
        const uint32_t left = frames - done;
        const uint32_t run = n < double(left) ? uint32_t(n) : left;
        RenderWave(c, x + done, y + done, run, (0.5 / g) * set.rate);
        done += run;
    }
}

namespace {

// The per-sample loop, one instance per input mode so that the mode is not tested per sample.
template <int Mode>
void RenderWaveLoop(const WaveMix& m, LfoChannelState& run, const float* x, float* y, uint32_t frames,
                    double rate) {
    double phase = run.phase;
    uint32_t seed = run.seed;
    float held = run.heldRandom;
    float f = float(phase);
    for (uint32_t i = 0; i < frames; ++i) {
        // The warp shapes the wave's phase, not the running phase.
        const float p = WarpedPhase(m, f);
        const float sine = BR::PolySine(p);
        phase += rate;
        const bool wrap = phase - 1.0 >= 0.0;
        // Falls by one cycle; by more only at rates above a cycle a sample, which stay in range so.
        if (wrap) phase -= phase < 2.0 ? 1.0 : std::floor(phase);
        seed = BR::NextRandomState(seed);
        const float noise = BR::RandomStateToFloat(seed);
        if (wrap) held = noise;
        const float w = PeriodicWaves(m, p, sine) + held * m.random + noise * m.noise;
        const float in = x[i];
        if constexpr (Mode == kInputMultiply) {
            y[i] = (w + m.offset) * in;
        } else if constexpr (Mode == kInputCombine) {
            y[i] = (w + m.offset + 1.0f) * in;
        } else {
            y[i] = w + m.offset + in;
        }
        f = float(phase);
    }
    run.phase = phase;
    run.seed = seed;
    run.heldRandom = held;
}

}  // namespace

void BrelCorvane::RenderWave(int c, const float* x, float* y, uint32_t frames, double rate) {
    const LfoChannelSettings& set = settings[c];
    const WaveMix mix = MakeWaveMix(set.sine, set.triangle, set.square, set.saw, set.random, set.noise,
                                    set.offset, set.pulseWidth, set.asymmetry);
    switch (set.inputMode) {
        case kInputMultiply:
            RenderWaveLoop<kInputMultiply>(mix, state[c], x, y, frames, rate);
            break;
        case kInputCombine:
            RenderWaveLoop<kInputCombine>(mix, state[c], x, y, frames, rate);
            break;
        default:
            RenderWaveLoop<kInputAdd>(mix, state[c], x, y, frames, rate);
            break;
    }
}

void BrelCorvane::HandleNoteOn(int32_t, int32_t, int32_t) {
    // Runs at the note's time stamp, so the reset lands on the note's sample.
    for (int c = 0; c < 2; ++c)
        if (settings[c].resetByNote) state[c].phase = settings[c].resetPhase;
}

int32_t BrelCorvane::GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) {
    return BR::HandOutValueStrings(NamedList(tableIndex), out);
}

uint32_t BrelCorvane::GetParameterFlags(int32_t tableIndex) {
    return tableIndex == kOSCPortOffset || tableIndex == kSmoothingL || tableIndex == kSmoothingR
               ? BR::kDisplayStringFlag
               : 0;
}

int32_t BrelCorvane::GetParameterDisplayString(BR::DisplayStringRequest& request) {
    return OffDisplayString(request, request.index == kOSCPortOffset,
                            request.index == kSmoothingL || request.index == kSmoothingR);
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneLFO
