// Sync: clock and run signals from the host's transport, every clock edge on the exact sample that
// the host's position asks for, with bar-aligned start, loop correction, swing and FSK tape tones.
#pragma once

#include "framework/BrelCorvaneBase.h"

namespace BrelCorvaneSync {

enum TableIndex : int32_t {
    kDINsyncType = 0,
    kClockOutput = 1,
    kRunOutput = 2,
    kSwing = 3,
    kSwingType = 4,
    kOffset = 5,
    kPPQN = 6,
    kDivisor = 7,
    kFirstDelay = 8,
    kClockLow = 9,
    kClockHigh = 10,
    kRunLow = 11,
    kRunHigh = 12,
    kTriggerLength = 13,
    kOSCPortOffset = 14,
    kHardwareMode = 15,
    kMultiplier = 16,
    kMuteClocks = 17,
    kInterfaceCategory = 18,
    kRunSignalType = 19,
    kSkipFirstClock = 20,
    kRunTriggerLength = 21,
    kRunBeatDivisor = 22,
    kRunBeats = 23,
    kEnableFSK = 24,
    kNumParameters = 25,
};

enum DINsyncType : int32_t { kTypeOff = 0, kType24 = 1, kType48 = 2, kTypeCustom = 3 };
enum RunSignalType : int32_t { kRunLevel = 0, kRunStart = 1, kRunStartStop = 2, kRunStop = 3 };

// States of the clock pulse; above 3 the clock line is high.
enum ClockPhase : int32_t {
    kPhaseRest = 0,        // waiting for the next tick
    kPhaseLowTail = 1,     // low after a pulse
    kPhaseLowGap = 2,      // low before a pulse: the first delay, or between the halves of a double tick
    kPhaseHigh = 4,        // a normal pulse, half a period
    kPhaseHighFirst = 5,   // first pulse of a double tick, a quarter period
    kPhaseHighSecond = 6,  // a pulse after a low gap, a quarter period
};

// Parameters as the clock uses them, read again in blocks where a row changed.
struct SyncSettings {
    int32_t dinsyncType;
    double base;      // ticks per quarter before the divisor and the multiplier
    double tickRate;  // ticks per quarter: base * 2^-"Divisor" / "Multiplier"
    int32_t clockOutput, runOutput;
    double offsetSeconds;
    bool firstDelay, muteClocks, skipFirstClock, enableFSK;
    float clockLow, clockHigh, runLow, runHigh;
    int32_t hardwareMode;  // 0 plain, 1 "Ardent" frame, 2 "Basalt" frame
    int32_t interfaceCategory;
    int32_t runSignalType;
    int32_t runPulseLength;  // samples, at least 1
};

// What the editor sees: the last hardware frame's bytes.
struct SyncStatus {
    uint8_t frameBytes[6];
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
    const char* GetModuleName() const override { return "Corvane Sync"; }
    const char* GetGuiScriptName() const override { return "gui_sync.lua"; }

    // The clock's state, for tests and displays.
    double TicksPerQuarter() const { return ticksPerQuarter; }
    int32_t LastTick() const { return lastTick; }
    int32_t NextTick() const { return nextTick; }
    int32_t GetClockPhase() const { return clockPhase; }
    int32_t ClockPeriod() const { return clockPeriod; }
    bool FirstTick() const { return firstTick; }
    bool RunHigh() const { return runHigh; }
    int32_t RunInterval() const { return runInterval; }
    int32_t TriggerSamples() const { return triggerSamples; }
    bool SwingOn() const { return swingOn; }
    float SwingAmount() const { return swingAmount; }
    double SwingUnit() const { return swingUnit; }
    const SyncSettings& Settings() const { return settings; }

private:
    struct TickClock;
    void ReadSettings();
    void ReadTransport();
    void StartPulse(int64_t elapsed);
    void EndPhase();
    void RenderChunk(float* const* inputs, float* const* outputs, uint32_t at, uint32_t frames);
    void RenderHardwareChunk(float* const* inputs, float* const* outputs, uint32_t at, uint32_t frames);
    double ToStraight(double x) const;
    double ToSwung(double x) const;

    SyncSettings settings{};

    // Transport, read once a block.
    bool playing = false;
    double tempo = 0.0;            // quarter notes per minute
    double position = 0.0;         // quarter notes at the block's start
    uint32_t blockFramesDone = 0;  // frames of this block rendered by earlier slices

    double ticksPerQuarter = 0.0;  // last rate used to place ticks, 0 for none
    int32_t lastTick = 0;          // number of the last tick played
    int32_t nextTick = 0;          // number of the tick expected next
    int32_t clockPhase = kPhaseRest;
    int32_t phaseSamples = 0;  // samples left in the clock phase
    int32_t clockPeriod = 0;   // samples from this tick to the next, at least 8
    bool firstTick = false;    // the transport has just started
    bool runHigh = false;
    int32_t runPulseLeft = 0;  // samples left of a run pulse, or 0
    int32_t runInterval = 0;   // clock ticks between run pulses, or 0
    bool swingOn = false;
    float swingAmount = 0.5f;    // 0.05..0.95
    double swingUnit = 0.0;      // length of a swing cycle in ticks
    float fskPhase = 0.0f;       // tone phase, 0..1
    int32_t triggerSamples = 0;  // "Trigger Length" in samples, 0 for none
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneSync
