// Voice Controller: parameter table, settings read per block and sub-block, commands, properties and
// the calibration chunk.
#include "VoiceController.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "framework/PolySine.h"
#include "framework/StateChunkStore.h"

namespace BrelCorvaneVoiceController {

namespace {

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"Gate Closed Voltage", BR::kUnitGeneric, -1, 1, 0},
    {"Gate Open Voltage", BR::kUnitGeneric, -1, 1, 1},
    {"Trigger Off Voltage", BR::kUnitGeneric, -1, 1, 0},
    {"Trigger On Voltage", BR::kUnitGeneric, -1, 1, 1},
    {"Override Pitch", BR::kUnitBoolean, 0, 1, 0},
    {"Pitch", BR::kUnitMIDINote, 0, 127, 64},
    {"Override Gate", BR::kUnitBoolean, 0, 1, 0},
    {"Gate", BR::kUnitGeneric, 0, 1, 0},
    {"Pitch Wheel Range", BR::kUnitRelativeSemitones, 0, 48, 2},
    {"Detune", BR::kUnitCents, -100, 100, 0},
    {"Pitch LFO Depth", BR::kUnitCents, 0, 100, 0},
    {"Pitch LFO Speed", BR::kUnitFrequency, 0.05f, 20, 5},
    {"Env 1 Time A1", BR::kUnitSeconds, 0, 5, 0},
    {"Env 1 Time A2", BR::kUnitSeconds, 0, 5, 0.1f},
    {"Env 1 Time A3", BR::kUnitSeconds, 0, 5, 0.1f},
    {"Env 1 Time R1", BR::kUnitSeconds, 0, 5, 0.1f},
    {"Env 1 Time R2", BR::kUnitSeconds, 0, 5, 0},
    {"Env 1 Shape A1", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Env 1 Shape A2", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Env 1 Shape A3", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Env 1 Shape R1", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Env 1 Shape R2", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Env 1 Level A1", BR::kUnitLinearGain, 0, 1, 0},
    {"Env 1 Level A2", BR::kUnitLinearGain, 0, 1, 1},
    {"Env 1 Sustain", BR::kUnitLinearGain, 0, 1, 0.5f},
    {"Env 1 Level R1", BR::kUnitLinearGain, 0, 1, 0},
    {"Env 2 Time A1", BR::kUnitSeconds, 0, 5, 0},
    {"Env 2 Time A2", BR::kUnitSeconds, 0, 5, 0.1f},
    {"Env 2 Time A3", BR::kUnitSeconds, 0, 5, 0.1f},
    {"Env 2 Time R1", BR::kUnitSeconds, 0, 5, 0.1f},
    {"Env 2 Time R2", BR::kUnitSeconds, 0, 5, 0},
    {"Env 2 Shape A1", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Env 2 Shape A2", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Env 2 Shape A3", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Env 2 Shape R1", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Env 2 Shape R2", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Env 2 Level A1", BR::kUnitLinearGain, 0, 1, 0},
    {"Env 2 Level A2", BR::kUnitLinearGain, 0, 1, 1},
    {"Env 2 Sustain", BR::kUnitLinearGain, 0, 1, 0.5f},
    {"Env 2 Level R1", BR::kUnitLinearGain, 0, 1, 0},
    {"Env 3 Time A1", BR::kUnitSeconds, 0, 5, 0},
    {"Env 3 Time A2", BR::kUnitSeconds, 0, 5, 0.1f},
    {"Env 3 Time A3", BR::kUnitSeconds, 0, 5, 0.1f},
    {"Env 3 Time R1", BR::kUnitSeconds, 0, 5, 0.1f},
    {"Env 3 Time R2", BR::kUnitSeconds, 0, 5, 0},
    {"Env 3 Shape A1", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Env 3 Shape A2", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Env 3 Shape A3", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Env 3 Shape R1", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Env 3 Shape R2", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Env 3 Level A1", BR::kUnitLinearGain, 0, 1, 0},
    {"Env 3 Level A2", BR::kUnitLinearGain, 0, 1, 1},
    {"Env 3 Sustain", BR::kUnitLinearGain, 0, 1, 0.5f},
    {"Env 3 Level R1", BR::kUnitLinearGain, 0, 1, 0},
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
    {"Output 1 Offset", BR::kUnitGeneric, -1, 1, 0},
    {"Output 1 Pitch", BR::kUnitGeneric, -1, 1, 1},
    {"Output 1 Gate", BR::kUnitGeneric, -1, 1, 0},
    {"Output 1 Env1", BR::kUnitGeneric, -1, 1, 0},
    {"Output 1 Env2", BR::kUnitGeneric, -1, 1, 0},
    {"Output 1 Env3", BR::kUnitGeneric, -1, 1, 0},
    {"Output 1 Trigger", BR::kUnitGeneric, -1, 1, 0},
    {"Output 1 Velocity", BR::kUnitGeneric, -1, 1, 0},
    {"Output 2 Offset", BR::kUnitGeneric, -1, 1, 0},
    {"Output 2 Pitch", BR::kUnitGeneric, -1, 1, 0},
    {"Output 2 Gate", BR::kUnitGeneric, -1, 1, 1},
    {"Output 2 Env1", BR::kUnitGeneric, -1, 1, 0},
    {"Output 2 Env2", BR::kUnitGeneric, -1, 1, 0},
    {"Output 2 Env3", BR::kUnitGeneric, -1, 1, 0},
    {"Output 2 Trigger", BR::kUnitGeneric, -1, 1, 0},
    {"Output 2 Velocity", BR::kUnitGeneric, -1, 1, 0},
    {"Output 3 Offset", BR::kUnitGeneric, -1, 1, 0},
    {"Output 3 Pitch", BR::kUnitGeneric, -1, 1, 0},
    {"Output 3 Gate", BR::kUnitGeneric, -1, 1, 0},
    {"Output 3 Env1", BR::kUnitGeneric, -1, 1, 1},
    {"Output 3 Env2", BR::kUnitGeneric, -1, 1, 0},
    {"Output 3 Env3", BR::kUnitGeneric, -1, 1, 0},
    {"Output 3 Trigger", BR::kUnitGeneric, -1, 1, 0},
    {"Output 3 Velocity", BR::kUnitGeneric, -1, 1, 0},
    {"Output 4 Offset", BR::kUnitGeneric, -1, 1, 0},
    {"Output 4 Pitch", BR::kUnitGeneric, -1, 1, 0},
    {"Output 4 Gate", BR::kUnitGeneric, -1, 1, 0},
    {"Output 4 Env1", BR::kUnitGeneric, -1, 1, 0},
    {"Output 4 Env2", BR::kUnitGeneric, -1, 1, 1},
    {"Output 4 Env3", BR::kUnitGeneric, -1, 1, 0},
    {"Output 4 Trigger", BR::kUnitGeneric, -1, 1, 0},
    {"Output 4 Velocity", BR::kUnitGeneric, -1, 1, 0},
    {"Output 5 Offset", BR::kUnitGeneric, -1, 1, 0},
    {"Output 5 Pitch", BR::kUnitGeneric, -1, 1, 0},
    {"Output 5 Gate", BR::kUnitGeneric, -1, 1, 0},
    {"Output 5 Env1", BR::kUnitGeneric, -1, 1, 0},
    {"Output 5 Env2", BR::kUnitGeneric, -1, 1, 0},
    {"Output 5 Env3", BR::kUnitGeneric, -1, 1, 1},
    {"Output 5 Trigger", BR::kUnitGeneric, -1, 1, 0},
    {"Output 5 Velocity", BR::kUnitGeneric, -1, 1, 0},
    {"Output 6 Offset", BR::kUnitGeneric, -1, 1, 0},
    {"Output 6 Pitch", BR::kUnitGeneric, -1, 1, 0},
    {"Output 6 Gate", BR::kUnitGeneric, -1, 1, 0},
    {"Output 6 Env1", BR::kUnitGeneric, -1, 1, 0},
    {"Output 6 Env2", BR::kUnitGeneric, -1, 1, 0},
    {"Output 6 Env3", BR::kUnitGeneric, -1, 1, 0},
    {"Output 6 Trigger", BR::kUnitGeneric, -1, 1, 1},
    {"Output 6 Velocity", BR::kUnitGeneric, -1, 1, 0},
    {"Velocity Min Voltage", BR::kUnitGeneric, -1, 1, -1},
    {"Velocity Max Voltage", BR::kUnitGeneric, -1, 1, 1},
    {"Env 1 Velocity Depth", BR::kUnitGeneric, -1, 1, 0},
    {"Env 2 Velocity Depth", BR::kUnitGeneric, -1, 1, 0},
    {"Env 3 Velocity Depth", BR::kUnitGeneric, -1, 1, 0},
    {"Note Priority", BR::kUnitIndexed, 0, 2, 0},
    {"Retrigger Mode", BR::kUnitIndexed, 0, 1, 0},
    {"Poly Mode", BR::kUnitIndexed, 0, 2, 0},
    {"Polyphony/Voice", BR::kUnitIndexed, 1, 16, 1},
    {"Env 1 Reset To Zero", BR::kUnitBoolean, 0, 1, 0},
    {"Env 2 Reset To Zero", BR::kUnitBoolean, 0, 1, 0},
    {"Env 3 Reset To Zero", BR::kUnitBoolean, 0, 1, 0},
    {"Output 1 Smoothing", BR::kUnitMilliseconds, -500, 500, 0},
    {"Output 2 Smoothing", BR::kUnitMilliseconds, -500, 500, 0},
    {"Output 3 Smoothing", BR::kUnitMilliseconds, -500, 500, 0},
    {"Output 4 Smoothing", BR::kUnitMilliseconds, -500, 500, 0},
    {"Output 5 Smoothing", BR::kUnitMilliseconds, -500, 500, 0},
    {"Output 6 Smoothing", BR::kUnitMilliseconds, -500, 500, 0},
    {"Portamento Mode", BR::kUnitIndexed, 0, 4, 0},
    {"Portamento Time", BR::kUnitGeneric, 0, 10, 0.1f},
    {"Portamento Shape", BR::kUnitGeneric, 0, 1, 0},
    {"Random Tuning", BR::kUnitCents, 0, 10, 0},
    {"Env 1 Multiplier", BR::kUnitIndexed, 0, 3, 1},
    {"Env 2 Multiplier", BR::kUnitIndexed, 0, 3, 1},
    {"Env 3 Multiplier", BR::kUnitIndexed, 0, 3, 1},
    {"Hardware Mode", BR::kUnitIndexed, 0, 3, 0},
    {"Bipolar 3", BR::kUnitBoolean, 0, 1, 0},
    {"Bipolar 4", BR::kUnitBoolean, 0, 1, 0},
    {"Bipolar 5", BR::kUnitBoolean, 0, 1, 0},
    {"Transpose", BR::kUnitRelativeSemitones, -48, 48, 0},
    {"Trigger Length", BR::kUnitMilliseconds, 0, 100, 0.2f},
    {"Interface Category", BR::kUnitIndexed, 0, 1, 0},
    {"Target Hardware", BR::kUnitIndexed, 0, 1, 0},
    {"Target Channel", BR::kUnitIndexed, 0, 5, 0},
    {"Env 1 Type A1", BR::kUnitIndexed, 0, 1, 1},
    {"Env 1 Type A2", BR::kUnitIndexed, 0, 1, 1},
    {"Env 1 Type A3", BR::kUnitIndexed, 0, 1, 1},
    {"Env 1 Type R1", BR::kUnitIndexed, 0, 1, 1},
    {"Env 1 Type R2", BR::kUnitIndexed, 0, 1, 1},
    {"Env 2 Type A1", BR::kUnitIndexed, 0, 1, 1},
    {"Env 2 Type A2", BR::kUnitIndexed, 0, 1, 1},
    {"Env 2 Type A3", BR::kUnitIndexed, 0, 1, 1},
    {"Env 2 Type R1", BR::kUnitIndexed, 0, 1, 1},
    {"Env 2 Type R2", BR::kUnitIndexed, 0, 1, 1},
    {"Env 3 Type A1", BR::kUnitIndexed, 0, 1, 1},
    {"Env 3 Type A2", BR::kUnitIndexed, 0, 1, 1},
    {"Env 3 Type A3", BR::kUnitIndexed, 0, 1, 1},
    {"Env 3 Type R1", BR::kUnitIndexed, 0, 1, 1},
    {"Env 3 Type R2", BR::kUnitIndexed, 0, 1, 1},
};

float defaultsValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}};

constexpr BR::ModuleConfig kConfig{
    1, 6, 0, 2, kOSCPortOffset, 1, presetTable, kNumParameters, parameterTable, kInterfaceCategory};

BR::EnvParameterRows EnvelopeRows(int32_t e) {
    return BR::EnvParameterRows{kEnv1TimeA1 + e * BR::kEnvRowStride, kEnv1TypeA1 + e * BR::kEnvTypeRowStride,
                                kEnv1VelocityDepth + e, kEnv1ResetToZero + e, kEnv1Multiplier + e};
}

BR::CountedTextList* ValueNames(int32_t tableIndex) {
    static BR::CountedTextList* priority = new BR::CountedTextList({"Newest", "Lowest", "Highest"});
    static BR::CountedTextList* retrigger = new BR::CountedTextList({"Retrig On", "Retrig Off"});
    static BR::CountedTextList* poly = new BR::CountedTextList({"Poly Off", "Master", "Voice"});
    static BR::CountedTextList* portamento =
        new BR::CountedTextList({"Off", "Auto", "Fingered", "CT Auto", "CT Fingered"});
    static BR::CountedTextList* multiplier = new BR::CountedTextList({"0.1", "1", "10", "100"});
    static BR::CountedTextList* hardware = new BR::CountedTextList({"None", "Ardent", "Cinder", "Dunmore"});
    static BR::CountedTextList* category = new BR::CountedTextList({"Cat A", "Cat B"});
    static BR::CountedTextList* target = new BR::CountedTextList({"Ardent", "Basalt"});
    static BR::CountedTextList* channel = new BR::CountedTextList({"1", "2", "3", "4", "5", "6"});
    static BR::CountedTextList* curve = new BR::CountedTextList({"Parabolic", "Exponential"});
    switch (tableIndex) {
        case kNotePriority:
            return priority;
        case kRetriggerMode:
            return retrigger;
        case kPolyMode:
            return poly;
        case kPortamentoMode:
            return portamento;
        case kHardwareMode:
            return hardware;
        case kInterfaceCategory:
            return category;
        case kTargetHardware:
            return target;
        case kTargetChannel:
            return channel;
        default:
            break;
    }
    if (tableIndex >= kEnv1Multiplier && tableIndex < kEnv1Multiplier + kNumEnvelopes) return multiplier;
    if (tableIndex >= kEnv1TypeA1 && tableIndex < kNumParameters) return curve;
    return nullptr;
}

}  // namespace

float MarkerSample(int32_t batch) {
    const uint32_t bits = uint32_t(0x4080 + (batch & (kRingSize - 1))) << 16;
    float sample;
    std::memcpy(&sample, &bits, 4);
    return sample;
}

BrelCorvane::BrelCorvane() : BrelCorvaneBase(kConfig) {
    display = &status.Emplace<VoiceControllerStatus>();
    BrelCorvane::InitModule();
}

void BrelCorvane::InitModule() {
    std::memset(heldNotes, 0, sizeof heldNotes);
    heldCount = 0;
    gateOpen = sustainPedal = false;
    currentNote = noteVelocity = releaseVelocity = pitchBend = randomTuning = 0.0f;
    randomState = 0;
    triggerSamplesLeft = 0;
    mode = kModeNormal;
    polyMode = kPolyOff;
    polyphony = 1;
    nextVoice = 1;
    std::fill(voiceNote, voiceNote + kMaxVoices + 1, -1);
    for (VoiceEvent& event : eventRing) {
        event.kind = 0;
        event.status = event.channel = event.dataByte1 = event.dataByte2 = 0;
        event.timeStamp = 0;
        event.voice = 0;
    }
    eventWrite = 0;
    std::fill(batches, batches + kRingSize, EventBatch{});
    batchWrite = 0;
    voiceId = 1;
    for (BR::Envelope& envelope : envelopes)
        envelope = BR::Envelope();
    notePriority = retriggerMode = 0;
    pitchWheelRange = sine = lfoPhase = 0.0f;
    pitchTarget = glidePitch = 0.0f;
    portamentoActive = false;
    portamentoMode = kPortaOff;
    portamentoCoefficient = glideShape = glideStart = 0.0f;
    glideSamples = glideLeft = 0;
    gateVoltage = gateOpenVoltage = triggerOn = triggerOff = velocityVoltage = releaseVoltage = 0.0f;
    triggerLengthSamples = 0;
    std::memset(mix, 0, sizeof mix);
    for (BR::OutputSmoother& s : smoother)
        s.Reset();
    std::fill(smoothingUsed, smoothingUsed + kNumOutputs, 0.0f);
    mixPlanned = false;
    smoothingRate = 0.0f;
    portamentoSamplesUsed = -1.0f;
    exponentialCoefficient = 0.0f;
    pitch = PitchSettings{};
    gate = GateSettings{};
    velocityLow = velocityRange = 0.0f;
    hardwareMode = targetHardware = targetChannel = interfaceCategory = 0;
    std::fill(bipolar, bipolar + 3, false);
    hardwareCinder = BR::CinderStream();
    hardwareDunmore = BR::DunmoreStream();
    *display = VoiceControllerStatus{};
    BrelCorvaneBase::InitModule();
}

void BrelCorvane::SetMaxBlockSize(uint32_t frames) {
    BrelCorvaneBase::SetMaxBlockSize(frames);
    maxBlockSize = std::max<uint32_t>(frames, 1);
    scratchFrames = maxBlockSize;
    scratch.assign(size_t(kNumSources) * scratchFrames, 0.0f);
}

void BrelCorvane::PrepareParameterRestore() {
    // A state saved without the curve types plays back with parabolic segments.
    for (int32_t k = kEnv1TypeA1; k < kNumParameters; ++k)
        SetTableValue(k, 0.0f);
}

bool BrelCorvane::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    rowsPending = rowsPending || RowsChanged();
    // Events at the block's first frame meet this block's settings.
    ReadParameters();
    UpdateNoteOutputs();
    return true;
}

void BrelCorvane::BeginSlice(uint32_t frames, uint32_t) {
    // The vibrato steps once per sub-block; its rate of change is bounded by the block size.
    lfoPhase += float(frames) / sampleRate * BlockValue(kPitchLFOSpeed);
    lfoPhase -= std::floor(lfoPhase);
    sine = BR::PolySine(lfoPhase);
    ReadParameters();
    UpdateNoteOutputs();
    for (int32_t e = 0; e < kNumEnvelopes; ++e)
        BR::envBlockUpdate(envelopes[e], envParameters[e], sampleRate, display->envelope[e]);
}

void BrelCorvane::SelectMode() {
    polyMode = int32_t(BlockValue(kPolyMode));
    const int32_t number = std::clamp(int32_t(BlockValue(kPolyphonyVoice)), 1, kMaxVoices);
    if (polyMode == kPolyMaster) {
        mode = kModeMaster;  // also ends a measurement
        polyphony = number;
    } else {
        if (polyMode == kPolyVoice) voiceId = number;
        if (mode == kModeMaster) mode = kModeNormal;
    }
}

void BrelCorvane::ReadParameters() {
    // What derives from rows alone is read again only after a block in which a row changed; the
    // rest is state that notes and measurements move between slices, and is set at every call.
    if (rowsPending) {
        ReadRows();
        rowsPending = false;
    }
    SelectMode();
    switch (portamentoMode) {
        case kPortaAuto:
            portamentoActive = true;
            break;
        case kPortaFingered:
            break;
        case kPortaCTAuto:
            portamentoActive = glideSamples != 0;
            break;
        case kPortaCTFingered:
            if (glideSamples == 0) portamentoActive = false;
            break;
        default:
            portamentoActive = false;
            break;
    }
    display->mode = mode;
    display->measureStep = measurement.Step();
}

void BrelCorvane::ReadRows() {
    notePriority = int32_t(BlockValue(kNotePriority));
    retriggerMode = int32_t(BlockValue(kRetriggerMode));
    pitchWheelRange = BlockValue(kPitchWheelRange);
    for (int32_t e = 0; e < kNumEnvelopes; ++e)
        BR::ReadEnvBlockParameters(*this, EnvelopeRows(e), envParameters[e]);
    pitch.randomCents = BlockValue(kRandomTuning);
    pitch.override = BlockValue(kOverridePitch) != 0.0f;
    pitch.overrideNote = BlockValue(kPitch);
    pitch.vibratoCents = BlockValue(kPitchLFODepth);
    pitch.detuneCents = BlockValue(kDetune);
    pitch.transpose = BlockValue(kTranspose);

    portamentoMode = int32_t(BlockValue(kPortamentoMode));
    const float time = BlockValue(kPortamentoTime);
    switch (portamentoMode) {
        case kPortaAuto:
        case kPortaFingered: {
            // Time 0 gives exp(-infinity), 0: the pitch jumps. Computed again only when it changes.
            const float samples = time * sampleRate;
            if (samples != portamentoSamplesUsed) {
                portamentoSamplesUsed = samples;
                exponentialCoefficient = samples > 0.0f ? std::exp(-4.0f / samples) : 0.0f;
            }
            portamentoCoefficient = exponentialCoefficient;
            break;
        }
        case kPortaCTAuto:
        case kPortaCTFingered:
            glideSamples = uint32_t(std::max(0, int32_t(time * sampleRate)));
            if (glideSamples != 0) {
                portamentoCoefficient = 1.0f / float(glideSamples);
                glideShape = BlockValue(kPortamentoShape);
            }
            break;
        default:
            portamentoCoefficient = 0.0f;
            break;
    }

    gate.openVoltage = gateOpenVoltage = BlockValue(kGateOpenVoltage);
    gate.closedVoltage = BlockValue(kGateClosedVoltage);
    gate.override = BlockValue(kOverrideGate) != 0.0f;
    gate.overrideVoltage = BlockValue(kGate);
    triggerOn = BlockValue(kTriggerOnVoltage);
    triggerOff = BlockValue(kTriggerOffVoltage);
    triggerLengthSamples = uint32_t(std::max(1, int32_t(sampleRate * BlockValue(kTriggerLength) * 0.001f)));
    velocityLow = BlockValue(kVelocityMinVoltage);
    velocityRange = BlockValue(kVelocityMaxVoltage) - velocityLow;

    for (int32_t o = 0; o < kNumOutputs; ++o) {
        for (int32_t k = 0; k < kNumSources; ++k)
            mix[o][k] = BlockValue(kOutput1Offset + o * kNumSources + k);
        const float ms = BlockValue(kOutput1Smoothing + o);
        if (ms != smoothingUsed[o] || sampleRate != smoothingRate) {
            smoothingUsed[o] = ms;
            smoother[o].Configure(ms, sampleRate);
        }
    }
    smoothingRate = sampleRate;
    ++rowsRead;

    hardwareMode = std::clamp(int32_t(BlockValue(kHardwareMode)), 0, 3);
    if (hardwareMode == 1)
        for (int32_t b = 0; b < 3; ++b)
            bipolar[b] = BlockValue(kBipolar3 + b) != 0.0f;
    if (hardwareMode != 0) {
        targetHardware = std::clamp(int32_t(BlockValue(kTargetHardware)), 0, 1);
        targetChannel = std::clamp(int32_t(BlockValue(kTargetChannel)), 0, 5);
    }
    interfaceCategory = std::clamp(int32_t(BlockValue(kInterfaceCategory)), 0, 1);
}

void BrelCorvane::UpdateNoteOutputs() {
    float p = currentNote + pitchBend + pitch.randomCents * 0.01f * randomTuning;
    if (pitch.override) p = pitch.overrideNote;
    p += (sine * pitch.vibratoCents + pitch.detuneCents) * 0.01f + pitch.transpose;
    p = std::clamp(p, 0.0f, 127.0f);
    pitchTarget = calibration.table.Convert(p);
    display->note = p;
    display->value = pitchTarget;
    // An overridden gate is the voltage itself, not a place between the two.
    gateVoltage = gate.override ? gate.overrideVoltage : (gateOpen ? gate.openVoltage : gate.closedVoltage);
    velocityVoltage = velocityRange * noteVelocity + velocityLow;
    releaseVoltage = velocityRange * releaseVelocity + velocityLow;
}

void BrelCorvane::HandleQueuedMessage(BR::MessageQueueItem* item) {
    if (item->kind != BR::kMessageCommand) return;
    switch (item->Command()) {
        case BR::kPropertyMakeArdentTable:
        case BR::kPropertyMakeCinderTable:
            calibration.MakeFormula(item->Command());
            break;
        case BR::kPropertyCalibrateVoltsPerOctave:
        case BR::kPropertyCalibrateHertzPerVolt:
            measurement.Start(calibration.table, sampleRate, maxBlockSize,
                              item->Command() == BR::kPropertyCalibrateHertzPerVolt);
            mode = kModeMeasuring;
            break;
        case kPropertyDontPanic:
            AllGatesOff();
            break;
        default:
            break;
    }
}

int32_t BrelCorvane::GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) {
    BR::CountedTextList* names = ValueNames(tableIndex);
    if (!names || !out) return BR::kErrInvalidParameter;
    names->Retain();
    *out = names;
    return BR::kNoErr;
}

uint32_t BrelCorvane::GetParameterFlags(int32_t tableIndex) {
    const bool smoothing = tableIndex >= kOutput1Smoothing && tableIndex < kOutput1Smoothing + kNumOutputs;
    return tableIndex == kOSCPortOffset || smoothing ? BR::kDisplayStringFlag : 0;
}

int32_t BrelCorvane::GetParameterDisplayString(BR::DisplayStringRequest& request) {
    const bool smoothing =
        request.index >= kOutput1Smoothing && request.index < kOutput1Smoothing + kNumOutputs;
    return OffDisplayString(request, request.index == kOSCPortOffset, smoothing);
}

int32_t BrelCorvane::GetProperty(uint32_t id, void* data) {
    const int32_t answer = calibration.GetProperty(id, data);
    if (answer != BR::kNotCalibrationProperty) return answer;
    switch (id) {
        case kPropertyEnvelopeRows: {
            if (!data) return BR::kErrInvalidProperty;
            const int32_t rows[4] = {kEnv1TimeA1, BR::kEnvRowStride, kEnv1TypeA1, BR::kEnvTypeRowStride};
            std::memcpy(data, rows, sizeof rows);
            return BR::kNoErr;
        }
        case kPropertyPolyPlace:
            return BR::PutProperty(data, PolyPlace());
        default:
            return BrelCorvaneBase::GetProperty(id, data);
    }
}

int32_t BrelCorvane::GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) {
    const int32_t answer = calibration.GetPropertyInfo(id, size, writable);
    if (answer != BR::kNotCalibrationProperty) return answer;
    uint32_t bytes = 0;
    bool canWrite = false;
    switch (id) {
        case kPropertyEnvelopeRows:
            bytes = 16;
            break;
        case kPropertyPolyPlace:
            bytes = 4;
            break;
        case BR::kPropertyMakeArdentTable:
        case BR::kPropertyMakeCinderTable:
        case BR::kPropertyCalibrateVoltsPerOctave:
        case BR::kPropertyCalibrateHertzPerVolt:
        case kPropertyDontPanic:
            bytes = 1;
            canWrite = true;
            break;
        default:
            return BrelCorvaneBase::GetPropertyInfo(id, size, writable);
    }
    if (size) *size = bytes;
    if (writable) *writable = canWrite;
    return BR::kNoErr;
}

int32_t BrelCorvane::SetProperty(uint32_t id, const void* data, uint32_t size) {
    switch (id) {
        case BR::kPropertyMakeArdentTable:
        case BR::kPropertyMakeCinderTable:
        case BR::kPropertyCalibrateVoltsPerOctave:
        case BR::kPropertyCalibrateHertzPerVolt:
        case kPropertyDontPanic:
            // Acts on the audio thread, in HandleQueuedMessage.
            toAudioQueue.Write(id);
            return BR::kNoErr;
        case BR::kPropertyCalibrationName:
            return calibration.SetProperty(id, data, size);
        default:
            return BrelCorvaneBase::SetProperty(id, data, size);
    }
}

void BrelCorvane::SaveExtraChunks(BR::StateChunkStore& store) {
    calibration.SaveTable(store);  // the name is not kept
}

void BrelCorvane::LoadExtraChunks(const BR::StateChunkStore& store) {
    calibration.LoadTable(store);
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneVoiceController
