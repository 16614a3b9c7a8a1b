// Sync: table and presets, the transport at each block, tick placement and the clock phase machine,
// and the plain rendering of clock, run and FSK tone onto the passing audio.
#include "Sync.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "framework/PolySine.h"

namespace BrelCorvaneSync {

namespace {

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"DINsync Type", BR::kUnitIndexed, 0, 3, 3},
    {"Clock Output", BR::kUnitIndexed, 0, 54, 1},
    {"Run Output", BR::kUnitIndexed, 0, 54, 2},
    {"Swing", BR::kUnitPercent, 0, 100, 50},
    {"Swing Type", BR::kUnitIndexed, 0, 1, 0},
    {"Offset", BR::kUnitMilliseconds, -100, 100, 0},
    {"PPQN", BR::kUnitIndexed, 1, 96, 1},
    {"Divisor", BR::kUnitIndexed, 0, 6, 0},
    {"1st Delay", BR::kUnitBoolean, 0, 1, 0},
    {"Clock Low", BR::kUnitGeneric, -1, 1, 0},
    {"Clock High", BR::kUnitGeneric, -1, 1, 1},
    {"Run Low", BR::kUnitGeneric, -1, 1, 0},
    {"Run High", BR::kUnitGeneric, -1, 1, 1},
    {"Trigger Length", BR::kUnitMilliseconds, 0, 100, 0},
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
    {"BR Hardware Mode", BR::kUnitIndexed, 0, 2, 0},
    {"Multiplier", BR::kUnitIndexed, 1, 96, 1},
    {"Mute Clocks", BR::kUnitBoolean, 0, 1, 0},
    {"Interface Category", BR::kUnitIndexed, 0, 1, 0},
    {"Run Signal Type", BR::kUnitIndexed, 0, 3, 0},
    {"Skip First Clock", BR::kUnitBoolean, 0, 1, 0},
    {"Run Trigger Length", BR::kUnitMilliseconds, 0, 100, 5},
    {"Run Beat Divisor", BR::kUnitIndexed, 0, 2, 2},
    {"Run Beats", BR::kUnitBeats, 0, 128, 0},
    {"Enable FSK", BR::kUnitBoolean, 0, 1, 0},
};

float defaultsValues[kNumParameters];
// "Custom" at 24 PPQN on "Output 1" as a tone between -1 and 1, skipping the first clock. "Mute Clocks"
// stands at -1, outside its range, as the table has always had it.
float fskTapeSyncValues[kNumParameters] = {3, 1, 0, 50, 0,  0, 24, 0, 0, -1, 1, 0, 1,
                                           0, 0, 0, 1,  -1, 1, 0,  1, 5, 2,  0, 1};
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues},
                                      {"FSK Tape Sync", kNumParameters, fskTapeSyncValues}};

constexpr BR::ModuleConfig kConfig{
    2, 2, 0, 0, kOSCPortOffset, 2, presetTable, kNumParameters, parameterTable, kInterfaceCategory};

constexpr int64_t kNever = std::numeric_limits<int64_t>::max();
// Tick numbers stay well inside 32 bits whatever position a host reports.
constexpr double kTickLimit = 1073741824.0;

int32_t TickNumber(double x) {
    if (!(x > -kTickLimit)) return x != x ? 0 : int32_t(-kTickLimit);
    return int32_t(std::min(x, kTickLimit));
}

// (int) of a product that should be whole, forgiving the last bits of float noise.
int32_t WholeTicks(double x) {
    const double nearest = std::round(x);
    return TickNumber(std::fabs(x - nearest) < 1e-6 ? nearest : std::trunc(x));
}

// "Output 1" feeds the first output, "Output 2" to "Output 6" the second; "Off" and the gate bits of
// the hardware modes feed neither. Returns the output index or -1.
int32_t PlainOutput(int32_t choice) {
    if (choice == 1) return 0;
    if (choice >= 2 && choice <= 6) return 1;
    return -1;
}

BR::CountedTextList* OutputChoices() {
    std::vector<std::string> names = {"Off"};
    for (int k = 1; k <= 6; ++k)
        names.push_back("Output " + std::to_string(k));
    for (int g = 1; g <= 6; ++g)
        for (int b = 1; b <= 8; ++b)
            names.push_back("Gates " + std::to_string(g) + "/" + std::to_string(b));
    return new BR::CountedTextList(std::move(names));
}

BR::CountedTextList* NamedList(int32_t row) {
    static BR::CountedTextList* type = new BR::CountedTextList({"Off", "24ppqn", "48ppqn", "Custom"});
    static BR::CountedTextList* outputs = OutputChoices();
    static BR::CountedTextList* swingType = new BR::CountedTextList({"16", "8"});
    static BR::CountedTextList* divisor =
        new BR::CountedTextList({"1", "/2", "/4", "/8", "/16", "/32", "/64"});
    static BR::CountedTextList* hardware = new BR::CountedTextList({"Off", "Ardent", "Basalt"});
    static BR::CountedTextList* category = new BR::CountedTextList({"Cat A", "Cat B"});
    static BR::CountedTextList* runType = new BR::CountedTextList({"Run", "Start", "Start/Stop", "Stop"});
    static BR::CountedTextList* runDivisor = new BR::CountedTextList({"1/1", "1/2", "1/4"});
    switch (row) {
        case kDINsyncType:
            return type;
        case kClockOutput:
        case kRunOutput:
            return outputs;
        case kSwingType:
            return swingType;
        case kDivisor:
            return divisor;
        case kHardwareMode:
            return hardware;
        case kInterfaceCategory:
            return category;
        case kRunSignalType:
            return runType;
        case kRunBeatDivisor:
            return runDivisor;
        default:
            return nullptr;
    }
}

}  // namespace

// Tick placement for one slice: the tick rate, where the slice starts in ticks, and samples per tick.
struct BrelCorvane::TickClock {
    const BrelCorvane& sync;
    double rate;     // T, ticks per quarter
    double now;      // ticks at the slice's first sample, "Offset" included
    double perTick;  // samples per tick

    // Samples from the slice's start to tick t, rounded to the nearest; a tick already past gives 0.
    int64_t OffsetOf(int32_t t) const {
        const double place = sync.swingOn ? sync.ToSwung(double(t)) : double(t);
        const double samples = (place - now) * perTick + 0.5;
        if (samples < 4.0e18) return samples <= 0.0 ? 0 : int64_t(samples);
        return int64_t(4.0e18);  // too far to matter, or not a number
    }
};

BrelCorvane::BrelCorvane() : BrelCorvaneBase(kConfig) {
    BrelCorvane::InitModule();
}

void BrelCorvane::InitModule() {
    // Reset clears all state.
    playing = false;
    tempo = position = 0.0;
    blockFramesDone = 0;
    ticksPerQuarter = 0.0;
    lastTick = nextTick = 0;
    clockPhase = kPhaseRest;
    phaseSamples = clockPeriod = 0;
    firstTick = runHigh = false;
    runPulseLeft = runInterval = 0;
    swingOn = false;
    swingAmount = 0.5f;
    swingUnit = 0.0;
    fskPhase = 0.0f;
    triggerSamples = 0;
    BrelCorvaneBase::InitModule();
    ReadSettings();
}

void BrelCorvane::ReadSettings() {
    SyncSettings& s = settings;
    s.dinsyncType = int32_t(BlockValue(kDINsyncType));
    if (s.dinsyncType == kType24 || s.dinsyncType == kType48) {
        s.base = 24.0 * s.dinsyncType;
    } else if (s.dinsyncType == kTypeCustom) {
        s.base = std::max(1.0, double(int32_t(BlockValue(kPPQN))));
    } else {
        s.base = 0.0;
    }
    const double multiplier = std::max(1.0, double(int32_t(BlockValue(kMultiplier))));
    // "Multiplier" divides the rate: the name is the table's, the arithmetic is this.
    s.tickRate = std::ldexp(s.base, -int32_t(BlockValue(kDivisor))) / multiplier;
    s.clockOutput = int32_t(BlockValue(kClockOutput));
    s.runOutput = int32_t(BlockValue(kRunOutput));
    s.offsetSeconds = double(BlockValue(kOffset)) * 0.001;
    s.firstDelay = BlockValue(kFirstDelay) != 0.0f;
    s.muteClocks = BlockValue(kMuteClocks) != 0.0f;
    s.skipFirstClock = BlockValue(kSkipFirstClock) != 0.0f;
    s.enableFSK = BlockValue(kEnableFSK) != 0.0f;
    s.clockLow = BlockValue(kClockLow);
    s.clockHigh = BlockValue(kClockHigh);
    s.runLow = BlockValue(kRunLow);
    s.runHigh = BlockValue(kRunHigh);
    s.hardwareMode = std::clamp(int32_t(BlockValue(kHardwareMode)), 0, 2);
    s.interfaceCategory = std::clamp(int32_t(BlockValue(kInterfaceCategory)), 0, 1);
    s.runSignalType = int32_t(BlockValue(kRunSignalType));
    const double rate = double(sampleRate);
    s.runPulseLength = std::max(1, int32_t(double(BlockValue(kRunTriggerLength)) * rate * 0.001));
    triggerSamples = std::max(0, int32_t(double(BlockValue(kTriggerLength)) * rate * 0.001));

    const float swing = BlockValue(kSwing);
    swingOn = std::fabs(swing - 50.0f) > 0.1f;
    swingAmount = std::clamp(swing * 0.01f, 0.05f, 0.95f);
    swingUnit = s.tickRate * (BlockValue(kSwingType) == 0.0f ? 0.5 : 1.0);
    const float runBeats = BlockValue(kRunBeats);
    if (s.runSignalType != kRunLevel && runBeats != 0.0f) {
        const double ticks = std::ldexp(s.tickRate, -int32_t(BlockValue(kRunBeatDivisor))) * 4.0 * runBeats;
        runInterval = TickNumber(ticks);
    } else {
        runInterval = 0;
    }
}

bool BrelCorvane::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    blockFramesDone = 0;
    // The settings depend on rows and the rate alone, and a block sees constant rows: they are
    // read again only in a block where a row changed, and hold for all its chunks.
    if (RowsChanged()) ReadSettings();
    // A block of no length moves nothing on: it must not look like a jump back to the loop logic.
    if (frames != 0) ReadTransport();
    return true;
}

void BrelCorvane::ReadTransport() {
    const bool oldPlaying = playing;
    const double oldPosition = position;
    const BR::HostTransport* transport = Transport();
    int64_t location = 0;
    if (transport) {
        playing = transport->IsTransportPlaying();
        tempo = transport->GetCurrentTempo();
        if (!std::isfinite(tempo)) tempo = 0.0;  // a tempo that is not a number places no ticks
        location = transport->GetCurrentNativeSampleLocation();
        position = double(transport->GetCustomTickPosition(location)) * BR::kBeatsPerTick;
    } else {
        // No transport: playing at tempo 0, which places no ticks.
        playing = true;
        tempo = 0.0;
        position = 0.0;
    }

    // The meter, the bar line and the loop matter only at a start and at a jump back; the host is
    // asked for them only then.
    const SyncSettings& s = settings;
    if (!oldPlaying && playing) {
        double barStart = 0.0, bar = 4.0;
        if (transport) {
            int32_t numerator = 4, denominator = 4;
            transport->GetCurrentMeter(numerator, denominator);
            if (numerator <= 0 || denominator <= 0) numerator = denominator = 4;
            bar = double(numerator) * 4.0 / double(denominator);
            int32_t bars = 1, beat = 1;
            int64_t beatTicks = 0;
            transport->GetBarBeatPosition(bars, beat, beatTicks, location);
            // Hosts report beats as quarter notes into the bar and ticks into that quarter, so this
            // is the bar line in any meter.
            barStart = position - (double(beatTicks) * BR::kBeatsPerTick + double(beat - 1));
        }
        firstTick = true;
        runHigh = false;
        phaseSamples = 0;
        nextTick = 1;
        runPulseLeft = 0;
        clockPeriod = lastTick = 0;
        clockPhase = kPhaseRest;
        ticksPerQuarter = 0.0;
        // The clock starts at the next bar line at or after the start, not where the host started.
        const double start = s.offsetSeconds * tempo / 60.0 + position;
        if (tempo != 0.0) {
            if (!transport) barStart = std::floor(start / bar) * bar;
            if (barStart < start) barStart += bar;
        }
        if (s.dinsyncType != kTypeOff) {
            ticksPerQuarter = s.tickRate;
            nextTick = WholeTicks(ticksPerQuarter * barStart);
            lastTick = nextTick - 1;
        }
        return;
    }
    if (playing && position <= oldPosition && transport && s.dinsyncType != kTypeOff) {
        bool looping = false;
        int64_t loopStartTick = 0, loopEndTick = 0;
        transport->GetCurrentLoopPosition(looping, loopStartTick, loopEndTick);
        const double loopStart = double(loopStartTick) * BR::kBeatsPerTick;
        const double loopEnd = double(loopEndTick) * BR::kBeatsPerTick;
        if (looping && loopEnd > loopStart) {
            // The host jumped back round its loop: the count goes back by the loop's length in ticks.
            lastTick -= WholeTicks(s.tickRate * (loopEnd - loopStart));
            nextTick = lastTick + 1;
        }
    }
    if (oldPlaying && !playing) {
        firstTick = false;
        clockPhase = kPhaseRest;
        if (s.runSignalType == kRunStartStop || s.runSignalType == kRunStop) {
            runHigh = true;
            runPulseLeft = s.runPulseLength;
        } else {
            runHigh = false;
            runPulseLeft = 0;
        }
    }
}

double BrelCorvane::ToStraight(double x) const {
    const double s = swingAmount, r = std::fmod(x, swingUnit);
    double f = r / swingUnit;
    f = f < s ? f * 0.5 / s : 1.0 - (1.0 - f) * 0.5 / (1.0 - s);
    return f * swingUnit + x - r;
}

double BrelCorvane::ToSwung(double x) const {
    const double s = swingAmount, r = std::fmod(x, swingUnit);
    double f = r / swingUnit;
    f = f < 0.5 ? 2.0 * s * f : 1.0 - 2.0 * (1.0 - s) * (1.0 - f);
    return f * swingUnit + x - r;
}

void BrelCorvane::StartPulse(int64_t elapsed) {
    const SyncSettings& s = settings;
    if (!firstTick) {
        bool skipped = false;
        if (runInterval > 0 && (int64_t(lastTick) + 1) % runInterval == 0) {
            runHigh = true;
            runPulseLeft = s.runPulseLength;
            if (s.skipFirstClock) {
                lastTick += 1;
                skipped = true;
            }
        }
        // A tick that carries a run pulse keeps its clock pulse unless "Skip First Clock" is on: then
        // the device takes the run pulse for that clock, and the tick is only counted.
        if (!skipped && elapsed < 2) {
            clockPhase = kPhaseHigh;
            phaseSamples = std::max(1, clockPeriod / 2);
            lastTick += 1;
        } else if (!skipped) {
            // Two ticks due at once: two short pulses in the time of one.
            clockPhase = kPhaseHighFirst;
            phaseSamples = std::max(1, clockPeriod / 4);
            lastTick += 2;
        }
    } else {
        switch (s.runSignalType) {
            case kRunLevel:
                runHigh = true;
                break;
            case kRunStart:
            case kRunStartStop:
                runHigh = true;
                runPulseLeft = s.runPulseLength;
                break;
            case kRunStop:
                runHigh = false;
                break;
            default:
                break;
        }
        firstTick = false;
        if (s.skipFirstClock) {
            clockPhase = kPhaseRest;
        } else if (s.firstDelay) {
            clockPhase = kPhaseLowGap;
            phaseSamples = std::max(1, clockPeriod / 4);
        } else {
            clockPhase = kPhaseHigh;
            phaseSamples = std::max(1, clockPeriod / 2);
        }
        lastTick += 1;
    }
    if (clockPhase >= kPhaseHigh && triggerSamples > 0) phaseSamples = std::min(phaseSamples, triggerSamples);
}

void BrelCorvane::EndPhase() {
    switch (clockPhase) {
        case kPhaseLowGap:
            clockPhase = kPhaseHighSecond;
            phaseSamples = std::max(1, clockPeriod / 4);
            if (triggerSamples > 0) phaseSamples = std::min(phaseSamples, triggerSamples);
            break;
        case kPhaseHigh:
        case kPhaseHighFirst:
            clockPhase = clockPhase == kPhaseHigh ? kPhaseLowTail : kPhaseLowGap;
            phaseSamples = std::max(1, clockPeriod / 4);
            break;
        case kPhaseHighSecond:
            clockPhase = kPhaseLowTail;
            phaseSamples = std::max(1, clockPeriod / 8);
            break;
        default:
            clockPhase = kPhaseRest;
            phaseSamples = 0;
            break;
    }
}

void BrelCorvane::ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
    const SyncSettings& s = settings;
    const int64_t n = frames;
    const double rate = double(sampleRate);
    const bool ticking = s.dinsyncType != kTypeOff && tempo > 0.0 && playing && s.tickRate > 0.0;
    int32_t t = 0;
    int64_t offset = kNever;
    TickClock clock{*this, s.tickRate, 0.0, 0.0};
    if (ticking) {
        // The position is read once a block, but MIDI cuts a block into slices: a slice after the first
        // starts later by the frames already rendered, or its ticks would land that much late.
        const double slicePosition = position + double(blockFramesDone) * tempo / (60.0 * rate);
        clock.now = s.offsetSeconds * tempo / (60.0 / clock.rate) + clock.rate * slicePosition;
        clock.perTick = rate * (60.0 / clock.rate) / tempo;
        t = TickNumber(std::ceil(swingOn ? ToStraight(clock.now) : clock.now));
        offset = clock.OffsetOf(t);
        if (clock.rate == ticksPerQuarter) {
            if (t > nextTick) {
                // A late tick is caught at once.
                offset = 0;
                t = nextTick;
            } else if (t < nextTick) {
                // No tick happens twice.
                t = nextTick;
                offset = clock.OffsetOf(t);
            }
        }
    }

    int64_t pos = 0;
    while (pos < n) {
        if (ticking && pos == offset) {
            if (clock.rate != ticksPerQuarter) {
                // A new rate: count from this tick, and drop the pulse in progress.
                ticksPerQuarter = clock.rate;
                lastTick = t - 1;
                nextTick = t;
                clockPhase = kPhaseRest;
            }
            const int64_t elapsed = int64_t(t) - lastTick;
            const int64_t previous = offset;
            t = TickNumber(double(t) + 1.0);
            offset = clock.OffsetOf(t);
            if (clockPhase == kPhaseRest && elapsed > 0) {
                clockPeriod = int32_t(std::clamp<int64_t>(offset - previous, 8, 1 << 30));
                StartPulse(elapsed);
            }
        }
        int64_t end = n;
        if (ticking && offset > pos && offset < n) end = offset;
        if (clockPhase != kPhaseRest) end = std::min(end, pos + phaseSamples);
        if (runPulseLeft > 0) end = std::min(end, pos + runPulseLeft);
        end = std::max(end, pos + 1);
        const uint32_t length = uint32_t(end - pos);

        RenderChunk(inputs, outputs, uint32_t(pos), length);

        if (clockPhase != kPhaseRest) {
            phaseSamples -= int32_t(length);
            if (phaseSamples <= 0) EndPhase();
        }
        if (runPulseLeft > 0) {
            runPulseLeft -= int32_t(length);
            if (runPulseLeft <= 0) {
                runPulseLeft = 0;
                runHigh = false;
            }
        }
        pos = end;
    }
    if (ticking) nextTick = t;
    blockFramesDone += frames;
}

void BrelCorvane::RenderChunk(float* const* inputs, float* const* outputs, uint32_t at, uint32_t frames) {
    const SyncSettings& s = settings;
    if (s.hardwareMode != 0) {
        RenderHardwareChunk(inputs, outputs, at, frames);
        return;
    }
    const bool plain = s.hardwareMode == 0 && s.dinsyncType != kTypeOff;
    float add[2] = {0.0f, 0.0f};
    const bool clockActive = clockPhase > 3 && !s.muteClocks;
    const int32_t clockTarget = plain ? PlainOutput(s.clockOutput) : -1;
    const int32_t runTarget = plain ? PlainOutput(s.runOutput) : -1;
    const bool tone = s.enableFSK && clockTarget >= 0;
    if (clockTarget >= 0 && !tone) add[clockTarget] += clockActive ? s.clockHigh : s.clockLow;
    if (runTarget >= 0) add[runTarget] += runHigh ? s.runHigh : s.runLow;

    for (int32_t c = 0; c < numOutputs && c < 2; ++c) {
        const float* x = inputs[c] + at;
        float* y = outputs[c] + at;
        const float a = add[c];
        if (tone && c == clockTarget) {
            // FSK: 2400 Hz while the clock is high, 1200 Hz while low, the phase running on across changes.
            // The tone carries the clock only; a run line keeps its plain levels wherever it goes.
            const float step = (clockActive ? 2400.0f : 1200.0f) / sampleRate;
            const float half = (s.clockHigh - s.clockLow) * 0.5f, middle = (s.clockHigh + s.clockLow) * 0.5f;
            float phase = fskPhase;
            for (uint32_t i = 0; i < frames; ++i) {
                y[i] = x[i] + a + BR::PolySine(phase) * half + middle;
                phase += step;
                if (phase >= 1.0f) phase -= 1.0f;
            }
            fskPhase = phase;
        } else {
            for (uint32_t i = 0; i < frames; ++i)
                y[i] = x[i] + a;
        }
    }
}

int32_t BrelCorvane::GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) {
    return BR::HandOutValueStrings(NamedList(tableIndex), out);
}

uint32_t BrelCorvane::GetParameterFlags(int32_t tableIndex) {
    return tableIndex == kTriggerLength || tableIndex == kOSCPortOffset || tableIndex == kRunBeats
               ? BR::kDisplayStringFlag
               : 0;
}

int32_t BrelCorvane::GetParameterDisplayString(BR::DisplayStringRequest& request) {
    // "Trigger Length", "OSC Port Offset" and "Run Beats" read "Off" at 0.
    if (request.index != kTriggerLength && request.index != kRunBeats)
        return OffDisplayString(request, request.index == kOSCPortOffset, false);
    if (DisplayRequestValue(request) == 0.0f) return SetDisplayText(request, "Off");
    return BR::kErrInvalidParameter;
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneSync
