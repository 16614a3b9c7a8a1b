// Step LFO: two lanes of a 96-step sequencer read by a phase accumulator at audio rate, free, at
// tempo, locked to the transport, in quadrature or stepped by triggers, with a random register each.
#pragma once

#include <limits>

#include "framework/BrelCorvaneBase.h"
#include "framework/Smoothing.h"
#include "modules/sequencing/RandomRegister.h"

namespace BrelCorvaneStepLFO {

constexpr int32_t kNumSteps = 96;
constexpr int32_t kNumLanes = 2;
constexpr int32_t kNumInputs = 6;

// Table rows.
constexpr int32_t kOSCPortOffset = 0;
constexpr int32_t kLaneRowsL = 1;  // 21 rows per lane, offsets below
constexpr int32_t kLaneRowsR = 22;
constexpr int32_t kStepsL = 43;  // "Step 1 L" .. "Step 96 L"
constexpr int32_t kStepsR = 139;
constexpr int32_t kResetRowsL = 235;  // 5 rows per lane
constexpr int32_t kResetRowsR = 240;
constexpr int32_t kInputRowsL = 245;  // 3 rows per lane
constexpr int32_t kInputRowsR = 248;
constexpr int32_t kGateLengthL = 251;
constexpr int32_t kGateLengthR = 252;
constexpr int32_t kRandomRowsL = 253;  // 6 rows per lane
constexpr int32_t kRandomRowsR = 259;
constexpr int32_t kDACBitsL = 265;  // "DAC Bit 1 L" .. "DAC Bit 24 L"
constexpr int32_t kDACBitsR = 289;
constexpr int32_t kDACRowsL = 313;  // 4 rows per lane
constexpr int32_t kDACRowsR = 317;
constexpr int32_t kNumParameters = 321;

// Offsets within a lane's 21 rows.
enum LaneRow : int32_t {
    kSpeedMode,
    kSpeed,
    kSpeedMultiplier,
    kSync,
    kBeatDivisor,
    kBeats,
    kTriplet,
    kPhase,
    kOffset,
    kMultiplier,
    kAsymmetry,
    kRangeMode,
    kLengthMode,
    kStartStep,
    kLengthInSteps,
    kEndStep,
    kInterpolation,
    kInputMode,
    kSmoothing,
    kSwing,
    kSwingType,
    kNumLaneRows,
};
enum ResetRow : int32_t { kResetByNote, kResetNoteMin, kResetNoteMax, kTriggerNoteMin, kTriggerNoteMax };
enum InputRow : int32_t { kSignalInput, kTriggerInput, kResetInput };
enum RandomRow : int32_t {
    kRandomEnable,
    kRandomMode,
    kRandomSetNext,
    kRegisterLength,
    kDACBitCount,
    kRandomness
};
enum DACRow : int32_t { kDACEnable, kDACScaleMode, kDACScale, kDACRangeMode };

enum SyncMode : int32_t { kFree, kTempo, kTransport, kQuadrature, kTrigFree, kTrigTempo };
enum ResetKind : int32_t { kResetOff, kResetOn, kResetDelayed, kResetInstant, kResetClosest };

enum Property : uint32_t {
    kPropertyStepValuesL = 64150,  // read: address of the lane's 96 step values
    kPropertyStepValuesR = 64151,
    kPropertyRegisterEdit = 64152,   // write only: int32 lane, bit, operation; queued for the audio thread
    kPropertyDACBitValuesL = 64153,  // read: address of the lane's 24 DAC bit weights
    kPropertyDACBitValuesR = 64154,
};

// Values cached per lane by BeginBlock.
struct LaneSettings {
    int32_t startIndex = 0;
    int32_t stepCount = 16;
    int32_t syncMode = kTransport;
    double rate = 0.0;  // phase increment per sample
    float offset = 0.0f, multiplier = 1.0f;
    bool bipolar = true, linear = false;
    float asymmetry = 0.5f;  // position in 0..1 where the first half of the steps ends
    float inputGain = 1.0f, stepGain = 1.0f, productGain = 0.0f;
    int32_t signalInput = 0, triggerInput = 0, resetInput = 0;  // 0 off, 1..6 the audio inputs
    float gateLength = 1.0f;
    float swingAmount = -1.0f;  // -1 off
    double swingPhase = 0.0, swingPeriod = 0.0;
    double startPhase = 0.0;  // "Phase" / 360
    int32_t resetKind = kResetOff;
    int32_t resetNoteMin = 0, resetNoteMax = 127, triggerNoteMin = 0, triggerNoteMax = 127;
    BR::RandomSettings random;
};

// What a lane derives from its rows alone; read again only in blocks where a row changed.
struct LaneRows {
    double swingBeat = 0.5;  // quarter notes
    float swing = 50.0f;
    double freeRate = 0.0;  // cycles per second in the free modes
    // freeRate / sample rate, and the rate it was divided by (not a number: not since the rows were read).
    double freeRatePerSample = 0.0;
    float perSampleRate = std::numeric_limits<float>::quiet_NaN();
    float cycleQuarters = 0.0f;  // the cycle in quarter notes in the tempo modes
    float offset = 0.0f, multiplier = 1.0f;
    // "Free" or "Trig Free" with the swing within 0.1 of 50: nothing of the transport reaches the lane,
    // so a block whose rows did not move finds its settings as the last one left them.
    bool followsRowsAlone = false;
};

struct LaneState {
    double phase = 0.0;
    double increment = 0.0;
    double phaseOffset = 0.0;     // against the transport position, "Transport" mode only
    BR::OutputSmoother smoother;  // slewStep, onePoleCoefficient and smoothState
    float displayPosition = 0.0f;
    int32_t currentStep = 0;
    bool pendingReset = false;
    double pendingPhase = 0.0, pendingOffset = 0.0;
    BR::RandomRegister random;  // registerBits, randomState, editBit, editOperation
    // A lane standing still at `standingPhase` (no increment) plays one place of one step until a
    // trigger, a reset or a row moves it: which step (absolute), the step it leans to and the place
    // within it, as the step loop found them. A pass then needs only the step values.
    bool standing = false;
    double standingPhase = 0.0;
    int32_t standingStep = 0, standingNext = 0;
    float standingWithin = 0.0f;
};

// What the step editor reads from the status block after each rendered sub-block.
struct StepLFOStatus {
    float displayPosition[kNumLanes];
    int32_t currentStep[kNumLanes];
    uint64_t registerBits[kNumLanes];
};

class BrelCorvane : public BrelCorvaneBase {
public:
    BrelCorvane();

    int32_t GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) override;
    int32_t GetProperty(uint32_t id, void* data) override;
    int32_t GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) override;
    int32_t SetProperty(uint32_t id, const void* data, uint32_t size) override;
    void InitModule() override;
    bool BeginBlock(uint32_t frames) override;
    void ProcessSlice(float** inputs, float** outputs, uint32_t frames) override;
    void HandleNoteOn(int32_t channel, int32_t note, int32_t velocity) override;
    uint32_t GetParameterFlags(int32_t tableIndex) override;
    int32_t GetParameterDisplayString(BR::DisplayStringRequest& request) override;
    const char* GetModuleName() const override { return "Corvane Step LFO"; }
    const char* GetGuiScriptName() const override { return "gui_steplfo.lua"; }

    const LaneSettings& Settings(int lane) const { return settings[lane]; }
    const LaneState& State(int lane) const { return lanes[lane]; }
    const float* StepValues(int lane) const { return stepValues[lane]; }
    BR::MessageQueue& EditQueue() { return editQueue; }
    // With false every sample takes the full per-sample form (step search included), the reference
    // that tests compare the in-step runs and standing passes with. The output is the same either way.
    void SetInStepRuns(bool on) { inStepRuns = on; }
    // Samples rendered so far by in-step runs and standing passes (the rest took the full form).
    uint64_t InStepSamples() const { return inStepSamples; }

protected:
    void ParameterValueChanged(int32_t parameterIndex, float value) override;

private:
    // Returns the lane's rate in cycles per second, for a following lane in "Quadrature".
    double ReadLane(int lane, bool playing, double tempo, double position, double previousRate);
    void ReadLaneRows(int lane);
    // ReadLane for a lane that follows its rows alone; returns its rate in cycles per second too.
    double KeepLane(int lane);
    void ReadRandom(int lane);
    void WriteBackSteps(int lane);
    void ApplyEdits();
    void HandleTriggerReset(int lane, bool trigger, bool reset);
    void RenderLane(int lane, float** inputs, float** outputs, uint32_t from, uint32_t frames);
    // A lane's pass under swing: cut at the swing's boundaries, each part at its own speed.
    void RenderSwung(int lane, const float* x, float* out, uint32_t frames);
    void RenderSteps(int lane, const float* x, float* out, uint32_t frames);
    // A pass of a standing lane: the step loop's first sample, which meets no boundary, for them all.
    void RenderStanding(int lane, const float* x, float* out, uint32_t frames);
    // The step loop, made for the pass's case: with or without a signal input, interpolated or not.
    // The first sample of a step takes the full form; the rest of the step runs without the search.
    template <bool kInput, bool kLinear>
    void StepLoop(int lane, const float* x, float* out, uint32_t frames);
    void PublishStatus();
    // The absolute step that the render loop plays at `phase`, and the phase that plays `step`.
    int32_t StepAt(int lane, double phase) const;
    double PhaseOfStepStart(int lane, int32_t relativeStep) const;

    LaneSettings settings[kNumLanes];
    LaneRows laneRows[kNumLanes];
    LaneState lanes[kNumLanes];
    float stepValues[kNumLanes][kNumSteps];  // mirror of the step rows; the random register writes here
    float dacBitValues[kNumLanes][BR::kNumDACBits];
    bool inputGate[4] = {};  // trigger L, reset L, trigger R, reset R
    // The lines of those four that read an input, in that order: which of the four each is and the
    // input it reads (from 0). Set in blocks where rows changed.
    int32_t lineCount = 0;
    int32_t lineSlot[4] = {}, lineInput[4] = {};
    bool wasPlaying = false;
    bool inStepRuns = true;
    uint64_t inStepSamples = 0;
    BR::MessageQueue editQueue;
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneStepLFO
