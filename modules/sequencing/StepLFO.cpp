// Step LFO: parameter table, block-rate reading of both lanes and the transport, the step mirror and
// its write-back, note triggering, and the properties of the step and DAC editors.
#include "StepLFO.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace BrelCorvaneStepLFO {

namespace {

#define LANE_ROWS(s)                                                                                         \
    {"Speed Mode " s, BR::kUnitIndexed, 0, 1, 1}, {"Speed " s, BR::kUnitFrequency, 0.05f, 20, 5},            \
        {"Speed Multiplier " s, BR::kUnitIndexed, 0, 3, 1}, {"Sync " s, BR::kUnitIndexed, 0, 5, 2},          \
        {"Beat Divisor " s, BR::kUnitIndexed, 0, 5, 4}, {"Beats " s, BR::kUnitBeats, 0, 128, 1},             \
        {"Triplet " s, BR::kUnitBoolean, 0, 1, 0}, {"Phase " s, BR::kUnitGeneric, 0, 360, 0},                \
        {"Offset " s, BR::kUnitGeneric, -1, 1, 0}, {"Multiplier " s, BR::kUnitGeneric, -2, 2, 1},            \
        {"Asymmetry " s, BR::kUnitPercent, -100, 100, 0}, {"Range Mode " s, BR::kUnitIndexed, 0, 1, 1},      \
        {"Length Mode " s, BR::kUnitIndexed, 0, 1, 0}, {"Start Step " s, BR::kUnitIndexed, 1, 96, 1},        \
        {"Length In Steps " s, BR::kUnitIndexed, 1, 96, 16}, {"End Step " s, BR::kUnitIndexed, 1, 96, 16},   \
        {"Interpolation " s, BR::kUnitIndexed, 0, 1, 0}, {"Input Mode " s, BR::kUnitIndexed, 0, 2, 0},       \
        {"Smoothing " s, BR::kUnitMilliseconds, -500, 500, 0}, {"Swing " s, BR::kUnitPercent, 0, 100, 50}, { \
        "Swing Type " s, BR::kUnitIndexed, 0, 1, 0                                                           \
    }

#define STEP(n, s) \
    { "Step " #n " " s, BR::kUnitGeneric, -1, 1, 0 }
#define STEPS(s)                                                                                    \
    STEP(1, s), STEP(2, s), STEP(3, s), STEP(4, s), STEP(5, s), STEP(6, s), STEP(7, s), STEP(8, s), \
        STEP(9, s), STEP(10, s), STEP(11, s), STEP(12, s), STEP(13, s), STEP(14, s), STEP(15, s),   \
        STEP(16, s), STEP(17, s), STEP(18, s), STEP(19, s), STEP(20, s), STEP(21, s), STEP(22, s),  \
        STEP(23, s), STEP(24, s), STEP(25, s), STEP(26, s), STEP(27, s), STEP(28, s), STEP(29, s),  \
        STEP(30, s), STEP(31, s), STEP(32, s), STEP(33, s), STEP(34, s), STEP(35, s), STEP(36, s),  \
        STEP(37, s), STEP(38, s), STEP(39, s), STEP(40, s), STEP(41, s), STEP(42, s), STEP(43, s),  \
        STEP(44, s), STEP(45, s), STEP(46, s), STEP(47, s), STEP(48, s), STEP(49, s), STEP(50, s),  \
        STEP(51, s), STEP(52, s), STEP(53, s), STEP(54, s), STEP(55, s), STEP(56, s), STEP(57, s),  \
        STEP(58, s), STEP(59, s), STEP(60, s), STEP(61, s), STEP(62, s), STEP(63, s), STEP(64, s),  \
        STEP(65, s), STEP(66, s), STEP(67, s), STEP(68, s), STEP(69, s), STEP(70, s), STEP(71, s),  \
        STEP(72, s), STEP(73, s), STEP(74, s), STEP(75, s), STEP(76, s), STEP(77, s), STEP(78, s),  \
        STEP(79, s), STEP(80, s), STEP(81, s), STEP(82, s), STEP(83, s), STEP(84, s), STEP(85, s),  \
        STEP(86, s), STEP(87, s), STEP(88, s), STEP(89, s), STEP(90, s), STEP(91, s), STEP(92, s),  \
        STEP(93, s), STEP(94, s), STEP(95, s), STEP(96, s)

#define RESET_ROWS(s)                                                                                     \
    {"Reset By Note " s, BR::kUnitIndexed, 0, 4, 0}, {"Reset Note Min " s, BR::kUnitMIDINote, 0, 127, 0}, \
        {"Reset Note Max " s, BR::kUnitMIDINote, 0, 127, 127},                                            \
        {"Trigger Note Min " s, BR::kUnitMIDINote, 0, 127, 0}, {                                          \
        "Trigger Note Max " s, BR::kUnitMIDINote, 0, 127, 127                                             \
    }

#define INPUT_ROWS(s, signal)                                                                               \
    {"Signal Input " s, BR::kUnitIndexed, 0, 6, signal}, {"Trigger Input " s, BR::kUnitIndexed, 0, 6, 0}, { \
        "Reset Input " s, BR::kUnitIndexed, 0, 6, 0                                                         \
    }

#define RANDOM_ROWS(s)                                                                                     \
    {"Random Enable " s, BR::kUnitBoolean, 0, 1, 0}, {"Random Mode " s, BR::kUnitIndexed, 0, 1, 0},        \
        {"Random Set Next " s, BR::kUnitBoolean, 0, 1, 0},                                                 \
        {"Register Length " s, BR::kUnitIndexed, 1, 48, 8}, {"DAC Bits " s, BR::kUnitIndexed, 1, 24, 8}, { \
        "Randomness " s, BR::kUnitGeneric, -1, 1, 0                                                        \
    }

#define BIT(n, s) \
    { "DAC Bit " #n " " s, BR::kUnitGeneric, -1, 1, 0 }
#define DAC_BITS(s)                                                                                     \
    BIT(1, s), BIT(2, s), BIT(3, s), BIT(4, s), BIT(5, s), BIT(6, s), BIT(7, s), BIT(8, s), BIT(9, s),  \
        BIT(10, s), BIT(11, s), BIT(12, s), BIT(13, s), BIT(14, s), BIT(15, s), BIT(16, s), BIT(17, s), \
        BIT(18, s), BIT(19, s), BIT(20, s), BIT(21, s), BIT(22, s), BIT(23, s), BIT(24, s)

#define DAC_ROWS(s)                                                                                 \
    {"DAC Enable " s, BR::kUnitBoolean, 0, 1, 0}, {"DAC Scale Mode " s, BR::kUnitIndexed, 0, 2, 0}, \
        {"DAC Scale " s, BR::kUnitGeneric, 1, 24, 8}, {                                             \
        "DAC Range Mode " s, BR::kUnitIndexed, 0, 1, 1                                              \
    }

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
    LANE_ROWS("L"),
    LANE_ROWS("R"),
    STEPS("L"),
    STEPS("R"),
    RESET_ROWS("L"),
    RESET_ROWS("R"),
    INPUT_ROWS("L", 1),
    INPUT_ROWS("R", 2),
    {"Gate Length L", BR::kUnitPercent, 0, 100, 100},
    {"Gate Length R", BR::kUnitPercent, 0, 100, 100},
    RANDOM_ROWS("L"),
    RANDOM_ROWS("R"),
    DAC_BITS("L"),
    DAC_BITS("R"),
    DAC_ROWS("L"),
    DAC_ROWS("R"),
};

float defaultsValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}};

constexpr BR::ModuleConfig kConfig{kNumInputs,     2, 4, 0, kOSCPortOffset, 1, presetTable, kNumParameters,
                                   parameterTable, -1};

constexpr int32_t kLaneRows[kNumLanes] = {kLaneRowsL, kLaneRowsR};
constexpr int32_t kStepRows[kNumLanes] = {kStepsL, kStepsR};
constexpr int32_t kResetRows[kNumLanes] = {kResetRowsL, kResetRowsR};
constexpr int32_t kInputRows[kNumLanes] = {kInputRowsL, kInputRowsR};
constexpr int32_t kGateRows[kNumLanes] = {kGateLengthL, kGateLengthR};
constexpr int32_t kRandomRows[kNumLanes] = {kRandomRowsL, kRandomRowsR};
constexpr int32_t kDACBitRows[kNumLanes] = {kDACBitsL, kDACBitsR};
constexpr int32_t kDACRows[kNumLanes] = {kDACRowsL, kDACRowsR};
constexpr float kSpeedFactors[4] = {0.1f, 1.0f, 10.0f, 100.0f};

double Frac(double x) {
    return x - std::floor(x);
}

}  // namespace

BrelCorvane::BrelCorvane() : BrelCorvaneBase(kConfig) {
    BrelCorvane::InitModule();
}

void BrelCorvane::InitModule() {
    for (int lane = 0; lane < kNumLanes; ++lane) {
        settings[lane] = LaneSettings();
        laneRows[lane] = LaneRows();
        lanes[lane] = LaneState();
        for (int32_t k = 0; k < kNumSteps; ++k)
            stepValues[lane][k] = parameterTable[kStepRows[lane] + k].defaultValue;
        for (int32_t k = 0; k < BR::kNumDACBits; ++k)
            dacBitValues[lane][k] = parameterTable[kDACBitRows[lane] + k].defaultValue;
    }
    std::fill(std::begin(inputGate), std::end(inputGate), false);
    lineCount = 0;
    wasPlaying = false;
    while (editQueue.Read()) {
    }
    status.Emplace<StepLFOStatus>();
    BrelCorvaneBase::InitModule();
}

void BrelCorvane::ParameterValueChanged(int32_t parameterIndex, float value) {
    // Every source that sets a step or a DAC weight reaches the mirror at once.
    const int32_t row = parameterIndex - 1;
    for (int lane = 0; lane < kNumLanes; ++lane) {
        if (row >= kStepRows[lane] && row < kStepRows[lane] + kNumSteps)
            stepValues[lane][row - kStepRows[lane]] = value;
        if (row >= kDACBitRows[lane] && row < kDACBitRows[lane] + BR::kNumDACBits) {
            dacBitValues[lane][row - kDACBitRows[lane]] = value;
            // The DAC scale derives from the mirror: a notification that comes after its store
            // (hosts that store on the audio thread and notify later) must bring a new reading.
            MarkRowChanged(row);
        }
    }
    BrelCorvaneBase::ParameterValueChanged(parameterIndex, value);
}

void BrelCorvane::WriteBackSteps(int lane) {
    for (int32_t k = 0; k < kNumSteps; ++k) {
        const int32_t row = kStepRows[lane] + k;
        const float mirror = stepValues[lane][k];
        if (GetTableValue(row) != mirror) SetTableValue(row, mirror);
    }
}

inline double BrelCorvane::KeepLane(int lane) {
    // What ReadLane does for such a lane whose free rate per sample is known, without its tests.
    LaneSettings& c = settings[lane];
    const LaneRows& rows = laneRows[lane];
    c.swingAmount = -1.0f;
    c.rate = rows.freeRatePerSample;
    if (c.syncMode == kFree) lanes[lane].increment = c.rate;
    c.offset = rows.offset;
    c.multiplier = rows.multiplier;
    lanes[lane].phaseOffset = 0.0;
    return rows.freeRate;
}

bool BrelCorvane::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    // Without a transport the module plays at tempo 0 from position 0.
    const BR::HostTransport* host = Transport();
    const bool playing = host ? host->IsTransportPlaying() : true;

    if (wasPlaying && !playing)
        for (int lane = 0; lane < kNumLanes; ++lane)
            WriteBackSteps(lane);
    wasPlaying = playing;

    // Row-derived settings are read again only in blocks where a row changed; what follows the
    // transport (rates at tempo, swing, phase locking, the stopped state) is worked out every block,
    // and tempo and position are asked for only when a lane follows them.
    const bool rowsChanged = RowsChanged();
    bool transportRead = false;
    double tempo = 0.0, position = 0.0;
    double previousRate = 0.0;  // "Quadrature" takes the rate of the lane handled just before
    for (int lane = 0; lane < kNumLanes; ++lane) {
        if (rowsChanged) ReadLaneRows(lane);
        const LaneRows& rows = laneRows[lane];
        if (rows.followsRowsAlone && rows.perSampleRate == sampleRate) {
            previousRate = KeepLane(lane);
        } else {
            if (!transportRead) {
                tempo = host ? host->GetCurrentTempo() : 0.0;
                position = BR::CurrentBeatPosition(host);
                if (!std::isfinite(tempo) || tempo < 0.0) tempo = 0.0;
                if (!std::isfinite(position)) position = 0.0;
                transportRead = true;
            }
            previousRate = ReadLane(lane, playing, tempo, position, previousRate);
        }
        if (rowsChanged) ReadRandom(lane);
    }
    if (rowsChanged) {
        const int32_t inputOf[4] = {settings[0].triggerInput, settings[0].resetInput,
                                    settings[1].triggerInput, settings[1].resetInput};
        lineCount = 0;
        for (int32_t l = 0; l < 4; ++l)
            if (inputOf[l] > 0) {
                lineSlot[lineCount] = l;
                lineInput[lineCount] = inputOf[l] - 1;
                ++lineCount;
            }
    }
    return true;
}

void BrelCorvane::ReadLaneRows(int lane) {
    LaneSettings& c = settings[lane];
    LaneRows& rows = laneRows[lane];
    auto row = [this, lane](int32_t k) { return BlockValue(kLaneRows[lane] + k); };

    rows.swingBeat = int32_t(row(kSwingType)) == 0 ? 0.5 : 1.0;  // quarter notes
    c.startIndex = std::clamp(int32_t(row(kStartStep)) - 1, 0, kNumSteps - 1);
    int32_t lastStep = int32_t(row(kLengthMode)) == 0 ? c.startIndex + int32_t(row(kLengthInSteps)) - 1
                                                      : int32_t(row(kEndStep)) - 1;
    lastStep = std::min(std::max(lastStep, c.startIndex), kNumSteps - 1);
    c.stepCount = lastStep - c.startIndex + 1;
    rows.swing = row(kSwing);
    lanes[lane].standing = false;

    const bool stepMode = row(kSpeedMode) != 0.0f;
    c.syncMode = std::clamp(int32_t(row(kSync)), 0, int32_t(kTrigTempo));
    c.startPhase = row(kPhase) / 360.0;
    double r = row(kSpeed) * kSpeedFactors[std::clamp(int32_t(row(kSpeedMultiplier)), 0, 3)];
    if (stepMode) r /= c.stepCount;
    rows.freeRate = r;
    rows.perSampleRate = std::numeric_limits<float>::quiet_NaN();
    // q: the cycle in quarter notes, with 2^x as exp(x * ln 2) in single precision.
    float q = std::exp(-float(int32_t(row(kBeatDivisor))) * 0.6931472f) * 4.0f * row(kBeats);
    if (row(kTriplet) != 0.0f) q = q * 2.0f / 3.0f;
    if (stepMode) q *= float(c.stepCount);
    rows.cycleQuarters = q;

    rows.offset = row(kOffset);
    rows.multiplier = row(kMultiplier);
    c.bipolar = row(kRangeMode) != 0.0f;
    c.linear = row(kInterpolation) != 0.0f;
    c.asymmetry = row(kAsymmetry) * 0.005f + 0.5f;
    switch (int32_t(row(kInputMode))) {
        case 1:  // Multiply
            c.inputGain = 0.0f, c.stepGain = 0.0f, c.productGain = 1.0f;
            break;
        case 2:  // Combine
            c.inputGain = 1.0f, c.stepGain = 0.0f, c.productGain = 1.0f;
            break;
        default:  // Add
            c.inputGain = 1.0f, c.stepGain = 1.0f, c.productGain = 0.0f;
            break;
    }
    auto selector = [this](int32_t tableRow) {
        return std::clamp(int32_t(BlockValue(tableRow)), 0, kNumInputs);
    };
    c.signalInput = selector(kInputRows[lane] + kSignalInput);
    c.triggerInput = selector(kInputRows[lane] + kTriggerInput);
    c.resetInput = selector(kInputRows[lane] + kResetInput);
    c.gateLength = BlockValue(kGateRows[lane]) * 0.01f;
    c.resetKind = int32_t(BlockValue(kResetRows[lane] + kResetByNote));
    c.resetNoteMin = int32_t(BlockValue(kResetRows[lane] + kResetNoteMin));
    c.resetNoteMax = int32_t(BlockValue(kResetRows[lane] + kResetNoteMax));
    c.triggerNoteMin = int32_t(BlockValue(kResetRows[lane] + kTriggerNoteMin));
    c.triggerNoteMax = int32_t(BlockValue(kResetRows[lane] + kTriggerNoteMax));
    lanes[lane].smoother.Configure(row(kSmoothing), sampleRate);
    rows.followsRowsAlone =
        (c.syncMode == kFree || c.syncMode == kTrigFree) && std::fabs(rows.swing - 50.0f) <= 0.1f;
}

double BrelCorvane::ReadLane(int lane, bool playing, double tempo, double position, double previousRate) {
    LaneSettings& c = settings[lane];
    LaneState& st = lanes[lane];
    LaneRows& rows = laneRows[lane];

    const double swingBeat = rows.swingBeat;
    const float swing = rows.swing;
    if (std::fabs(swing - 50.0f) <= 0.1f || tempo == 0.0 || !playing) {
        c.swingAmount = -1.0f;
    } else {
        c.swingAmount = std::clamp(swing * 0.01f, 0.05f, 0.95f);
        c.swingPhase = Frac(std::fmod(position, swingBeat) / swingBeat);
        c.swingPeriod = swingBeat * 60.0 * sampleRate / tempo;
    }

    double r = 0.0;
    switch (c.syncMode) {
        case kFree:
        case kTrigFree:
            r = rows.freeRate;
            break;
        case kQuadrature:
            st.phase = Frac(lanes[1 - lane].phase + c.startPhase);
            r = lane == 0 ? 0.0 : previousRate;
            break;
        default: {
            const float q = rows.cycleQuarters;
            r = q > 0.0f ? tempo / (double(q) * 60.0) : 0.0;
            if (c.syncMode == kTransport && playing) {
                double p = position;
                if (c.swingAmount >= 0.0f) {
                    // Warp the position so that the swing's long and short halves each cover half a beat.
                    const double amount = c.swingAmount;
                    const double b = p - c.swingPhase * swingBeat;
                    if (c.swingPhase >= amount) {
                        p = (p - (amount * swingBeat + b)) * 0.5 / (1.0 - amount) + swingBeat * 0.5 + b;
                    } else {
                        p = (p - b) * 0.5 / amount + b;
                    }
                }
                const double cycle = q > 0.0f ? std::fmod(p, double(q)) / double(q) : 0.0;
                st.phase = Frac(c.startPhase + cycle + st.phaseOffset);
            }
            break;
        }
    }
    if (c.syncMode == kFree || c.syncMode == kTrigFree) {
        // A free lane's rate follows its rows and the sample rate alone: the division runs again only
        // after one of them moved, and gives the same quotient.
        if (!(rows.perSampleRate == sampleRate)) {
            rows.freeRatePerSample = r / sampleRate;
            rows.perSampleRate = sampleRate;
        }
        c.rate = rows.freeRatePerSample;
    } else {
        c.rate = r / sampleRate;
    }
    if (c.syncMode != kTrigFree && c.syncMode != kTrigTempo) st.increment = c.rate;
    c.offset = rows.offset;
    c.multiplier = rows.multiplier;

    if (!playing && c.syncMode == kTransport) {
        // The lane's steps drop out of the output while the transport stands. The increment stops too:
        // a phase run on from 0 in every stopped block would cross the same step boundaries again and
        // again, and the random register would rewrite steps just written back to the parameters.
        c.rate = 0.0;
        c.offset = 0.0f;
        c.multiplier = 0.0f;
        st.phase = 0.0;
        st.increment = 0.0;
        st.pendingReset = false;
    }
    if (!playing || c.syncMode != kTransport) st.phaseOffset = 0.0;
    return r;
}

void BrelCorvane::ReadRandom(int lane) {
    BR::RandomSettings& rs = settings[lane].random;
    const int32_t base = kRandomRows[lane];
    const bool enabled = BlockValue(base + kRandomEnable) != 0.0f;
    if (enabled != rs.randomEnabled) {
        rs.randomEnabled = enabled;
        if (!enabled) {
            WriteBackSteps(lane);
            return;
        }
    }
    if (!enabled) return;
    rs.randomMode = int32_t(BlockValue(base + kRandomMode));
    rs.setNext = BlockValue(base + kRandomSetNext) != 0.0f;
    rs.registerLength = std::clamp(int32_t(BlockValue(base + kRegisterLength)), 1, BR::kMaxRegisterLength);
    rs.dacBits = std::clamp(int32_t(BlockValue(base + kDACBitCount)), 1, BR::kNumDACBits);
    rs.randomness = BlockValue(base + kRandomness);
    rs.dacEnabled = BlockValue(kDACRows[lane] + kDACEnable) != 0.0f;
    if (rs.dacEnabled) {
        rs.dacRangeMode = int32_t(BlockValue(kDACRows[lane] + kDACRangeMode));
        rs.dacScaleFactor =
            BR::DACScaleFactor(int32_t(BlockValue(kDACRows[lane] + kDACScaleMode)), rs.dacBits,
                               BlockValue(kDACRows[lane] + kDACScale), dacBitValues[lane]);
    }
}

void BrelCorvane::HandleNoteOn(int32_t, int32_t note, int32_t) {
    for (int lane = 0; lane < kNumLanes; ++lane) {
        const LaneSettings& c = settings[lane];
        const bool reset = c.resetKind != kResetOff && note >= c.resetNoteMin && note <= c.resetNoteMax;
        const bool trigger = (c.syncMode == kTrigFree || c.syncMode == kTrigTempo) &&
                             note >= c.triggerNoteMin && note <= c.triggerNoteMax;
        HandleTriggerReset(lane, trigger, reset);
    }
}

int32_t BrelCorvane::GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) {
    using List = BR::CountedTextList;
    static List* speedModes = new List({"Cycle", "Step"});
    static List* factors = new List({"0.1", "1", "10", "100"});
    static List* syncs = new List({"Free", "Tempo", "Transport", "Quadrature", "Trig Free", "Trig Tempo"});
    static List* divisors = new List({"1/1", "1/2", "1/4", "1/8", "1/16", "1/32"});
    static List* ranges = new List({"Unipolar", "Bipolar"});
    static List* lengthModes = new List({"Start/Length", "Start/End"});
    static List* interpolations = new List({"Step", "Linear"});
    static List* inputModes = new List({"Add", "Multiply", "Combine"});
    static List* swingTypes = new List({"16", "8"});
    static List* resetKinds = new List({"Off", "On", "Delayed", "Instant", "Closest"});
    static List* inputs = new List({"Off", "1", "2", "3", "4", "5", "6"});
    static List* rotations = new List({"Rotate Right", "Rotate Left"});
    static List* scaleModes = new List({"Manual", "Automatic", "Dynamic"});
    if (!out) return BR::kErrInvalidParameter;
    for (int lane = 0; lane < kNumLanes; ++lane) {
        switch (tableIndex - kLaneRows[lane]) {
            case kSpeedMode:
                return BR::HandOutValueStrings(speedModes, out);
            case kSpeedMultiplier:
                return BR::HandOutValueStrings(factors, out);
            case kSync:
                return BR::HandOutValueStrings(syncs, out);
            case kBeatDivisor:
                return BR::HandOutValueStrings(divisors, out);
            case kRangeMode:
                return BR::HandOutValueStrings(ranges, out);
            case kLengthMode:
                return BR::HandOutValueStrings(lengthModes, out);
            case kInterpolation:
                return BR::HandOutValueStrings(interpolations, out);
            case kInputMode:
                return BR::HandOutValueStrings(inputModes, out);
            case kSwingType:
                return BR::HandOutValueStrings(swingTypes, out);
            default:
                break;
        }
        if (tableIndex == kResetRows[lane] + kResetByNote) return BR::HandOutValueStrings(resetKinds, out);
        if (tableIndex >= kInputRows[lane] && tableIndex <= kInputRows[lane] + kResetInput)
            return BR::HandOutValueStrings(inputs, out);
        if (tableIndex == kRandomRows[lane] + kRandomMode) return BR::HandOutValueStrings(rotations, out);
        if (tableIndex == kDACRows[lane] + kDACScaleMode) return BR::HandOutValueStrings(scaleModes, out);
        if (tableIndex == kDACRows[lane] + kDACRangeMode) return BR::HandOutValueStrings(ranges, out);
    }
    return BR::kErrInvalidParameter;
}

int32_t BrelCorvane::GetProperty(uint32_t id, void* data) {
    const void* address = nullptr;
    switch (id) {
        case kPropertyStepValuesL:
        case kPropertyStepValuesR:
            address = stepValues[id - kPropertyStepValuesL];
            break;
        case kPropertyDACBitValuesL:
        case kPropertyDACBitValuesR:
            address = dacBitValues[id - kPropertyDACBitValuesL];
            break;
        case kPropertyRegisterEdit:
            return BR::kErrInvalidProperty;  // write only
        default:
            return BrelCorvaneBase::GetProperty(id, data);
    }
    if (!data) return BR::kErrInvalidProperty;
    std::memcpy(data, &address, sizeof address);
    return BR::kNoErr;
}

int32_t BrelCorvane::GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) {
    switch (id) {
        case kPropertyStepValuesL:
        case kPropertyStepValuesR:
        case kPropertyDACBitValuesL:
        case kPropertyDACBitValuesR:
        case kPropertyRegisterEdit:
            if (size) *size = id == kPropertyRegisterEdit ? 12 : 8;
            if (writable) *writable = id == kPropertyRegisterEdit;
            return BR::kNoErr;
        default:
            return BrelCorvaneBase::GetPropertyInfo(id, size, writable);
    }
}

int32_t BrelCorvane::SetProperty(uint32_t id, const void* data, uint32_t size) {
    switch (id) {
        case kPropertyRegisterEdit: {
            if (!data || size < 12) return BR::kErrInvalidProperty;
            int32_t edit[3];
            std::memcpy(edit, data, sizeof edit);
            const int32_t lane = edit[0], bit = edit[1], operation = edit[2];
            if (lane < 0 || lane >= kNumLanes || operation < BR::kEditNone || operation > BR::kEditToggle)
                return BR::kErrInvalidParameter;
            // Lane, bit (as used: modulo 64) and operation ride in the channel and data bytes of a
            // short-message item. This queue is read only by ApplyEdits and never dispatched as MIDI.
            editQueue.Write(0, uint8_t(lane), uint8_t(bit & 63), uint8_t(operation), 0);
            return BR::kNoErr;
        }
        case kPropertyStepValuesL:
        case kPropertyStepValuesR:
        case kPropertyDACBitValuesL:
        case kPropertyDACBitValuesR:
            return BR::kErrInvalidProperty;
        default:
            return BrelCorvaneBase::SetProperty(id, data, size);
    }
}

uint32_t BrelCorvane::GetParameterFlags(int32_t tableIndex) {
    const bool smoothing = tableIndex == kLaneRowsL + kSmoothing || tableIndex == kLaneRowsR + kSmoothing;
    return tableIndex == kOSCPortOffset || smoothing ? BR::kDisplayStringFlag : 0;
}

int32_t BrelCorvane::GetParameterDisplayString(BR::DisplayStringRequest& request) {
    const bool smoothing =
        request.index == kLaneRowsL + kSmoothing || request.index == kLaneRowsR + kSmoothing;
    return OffDisplayString(request, request.index == kOSCPortOffset, smoothing);
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneStepLFO
