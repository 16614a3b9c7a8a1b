// LFO: two independent low-frequency signals, each a weighted mix of six waves, free-running, at a
// rate from the tempo, or phase-locked to the host's position; also a clock and run signal source.
#pragma once

#include <algorithm>

#include "framework/BrelCorvaneBase.h"
#include "framework/Smoothing.h"

namespace BrelCorvaneLFO {

// Rows of the per-channel block, relative to its first row (1 for L, 18 for R).
enum ChannelRow : int32_t {
    kSpeed = 0,
    kSpeedMultiplier,
    kSync,
    kBeatDivisor,
    kBeats,
    kTriplet,
    kPhase,
    kOffset,
    kSine,
    kTriangle,
    kSquare,
    kSaw,
    kRandom,
    kNoise,
    kPulseWidth,
    kAsymmetry,
    kInputMode,
    kRowsPerChannel,
};

enum TableIndex : int32_t {
    kOSCPortOffset = 0,
    kFirstRowL = 1,
    kFirstRowR = 18,
    kSmoothingL = 35,
    kSmoothingR = 36,
    kSwingL = 37,
    kSwingTypeL = 38,
    kSwingR = 39,
    kSwingTypeR = 40,
    kResetByNoteL = 41,
    kResetByNoteR = 42,
    kNumParameters = 43,
};

enum SyncMode : int32_t {
    kSyncFree = 0,
    kSyncTempo = 1,
    kSyncTransport = 2,
    kSyncQuadrature = 3,
    kSyncStartStop = 4,
    kSyncTransport2 = 5,
};

enum InputMode : int32_t { kInputAdd = 0, kInputMultiply = 1, kInputCombine = 2 };

// One channel's wave weights as the sample loop uses them; `hi` and `lo` are the two slopes of the
// asymmetry's warp of the phase.
struct WaveMix {
    float sine, triangle, square, saw, random, noise, offset, pulseWidth, asymmetry, hi, lo;
};

// The mix from weights as set, the pulse width as a fraction and the asymmetry's middle (0 to 1,
// 0.5 for none).
inline WaveMix MakeWaveMix(float sine, float triangle, float square, float saw, float random, float noise,
                           float offset, float pulseWidth, float asymmetry) {
    const float a = asymmetry;
    return WaveMix{sine,
                   triangle,
                   square,
                   saw,
                   random,
                   noise,
                   offset,
                   pulseWidth,
                   a,
                   a >= 1.0f ? 0.0f : 0.5f / (1.0f - a),
                   a <= 0.0f ? 0.0f : 0.5f / a};
}

// The rows' percentages as the mix takes them.
inline float PulseWidthFraction(float percent) {
    return percent * 0.01f;
}
inline float AsymmetryMiddle(float percent) {
    return percent * 0.005f + 0.5f;
}

// The phase the waves see at running phase `f` (0 to below 1): the asymmetry moves the middle.
inline float WarpedPhase(const WaveMix& m, float f) {
    return f >= m.asymmetry ? f * m.hi + (1.0f - m.hi) : f * m.lo;
}

// The four periodic waves at warped phase `p`, weighted and summed in the sample loop's order (the
// random and noise terms are added after them).
inline float PeriodicWaves(const WaveMix& m, float p, float sine) {
    const float triangle = std::min(p * 4.0f - 1.0f, 3.0f - p * 4.0f);
    const float square = p > m.pulseWidth ? -1.0f : 1.0f;
    const float saw = p * 2.0f - 1.0f;
    return triangle * m.triangle + sine * m.sine + square * m.square + saw * m.saw;
}

// The LFO's part of the status block, read by the waveform display.
struct LfoStatus {
    float displayPhase[2];
    float displayLevel[2];  // each channel's smoothState
    double phaseOffset[2];  // "Phase" / 360 where the phase is set from outside, else -1
    double rateHz[2];
};

// What persists of a channel across blocks; zeroed by InitModule, never saved.
struct LfoChannelState {
    double phase;  // position in the cycle, 0 to below 1
    float heldRandom;
    uint32_t seed;  // noise generator state
};

// Values BeginBlock caches for one channel.
struct LfoChannelSettings {
    double rate;  // cycles per sample
    double rateHz;
    float pulseWidth;  // fraction
    float sine, triangle, square, saw, random, noise;
    float offset;
    float asymmetry;  // 0 to 1, 0.5 for none
    int32_t inputMode;
    float swingFraction;  // -1 for no swing
    float swingPosition;  // where the block starts in its swing unit, 0 to 1
    float swingSamples;   // samples per swing unit
    double resetPhase;    // "Phase" / 360
    bool resetByNote;
};

// What a channel derives from its rows alone; read again only in blocks where a row changed.
struct LfoChannelRows {
    double unit = 0.5;  // swing unit in beats
    float swing = 50.0f;
    double phaseFraction = 0.0;  // "Phase" / 360
    int32_t sync = 0;
    double cycleBeats = 0.0;  // beats per cycle in the tempo modes
    double freeRateHz = 0.0;  // rate of the free mode
};

class BrelCorvane : public BrelCorvaneBase {
public:
    BrelCorvane();

    void InitModule() override;
    bool BeginBlock(uint32_t frames) override;
    void ProcessSlice(float** inputs, float** outputs, uint32_t frames) override;
    void HandleNoteOn(int32_t channel, int32_t note, int32_t velocity) override;
    int32_t GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) override;
    uint32_t GetParameterFlags(int32_t tableIndex) override;
    int32_t GetParameterDisplayString(BR::DisplayStringRequest& request) override;
    const char* GetModuleName() const override { return "Corvane LFO"; }
    const char* GetGuiScriptName() const override { return "gui_lfo.lua"; }

    const LfoChannelState& State(int channel) const { return state[channel]; }
    const LfoChannelSettings& Settings(int channel) const { return settings[channel]; }
    const BR::OutputSmoother& Smoother(int channel) const { return smoother[channel]; }

private:
    void ReadChannelRows(int c);
    void ReadChannel(int c, bool playing, double tempo, double beats, double& passRateHz);
    void RenderChannel(int c, const float* x, float* y, uint32_t frames);
    void RenderWave(int c, const float* x, float* y, uint32_t frames, double rate);

    LfoChannelState state[2];
    LfoChannelSettings settings[2];
    LfoChannelRows channelRows[2];
    BR::OutputSmoother smoother[2];
    LfoStatus* display = nullptr;  // inside the status block
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneLFO
