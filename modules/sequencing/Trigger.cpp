// Trigger: table, per-sub-block parameter reading, MIDI and CV triggering, and the four output modes.
#include "Trigger.h"

#include <algorithm>
#include <cstring>

#include "framework/SampleKernels.h"

namespace BrelCorvaneTrigger {

namespace {

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
    {"Output Mode", BR::kUnitIndexed, 0, 3, 0},
    {"Trigger Note", BR::kUnitMIDINote, 0, 127, 60},
    {"Override Gate", BR::kUnitBoolean, 0, 1, 0},
    {"Gate", BR::kUnitGeneric, 0, 1, 0},
    {"Min Voltage", BR::kUnitGeneric, -1, 1, 0},
    {"Max Voltage", BR::kUnitGeneric, -1, 1, 1},
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
    {"Env 1 Velocity Depth", BR::kUnitGeneric, -1, 1, 0},
    {"Env 1 Reset To Zero", BR::kUnitBoolean, 0, 1, 0},
    {"Smoothing", BR::kUnitMilliseconds, -500, 500, 0},
    {"Trigger Length", BR::kUnitMilliseconds, 0, 100, 0.2f},
    {"CV Trigger Enable", BR::kUnitBoolean, 0, 1, 0},
    {"CV Trigger Threshold", BR::kUnitGeneric, -1, 1, 0},
    {"Env 1 Multiplier", BR::kUnitIndexed, 0, 3, 1},
    {"Env 1 Type A1", BR::kUnitIndexed, 0, 1, 1},
    {"Env 1 Type A2", BR::kUnitIndexed, 0, 1, 1},
    {"Env 1 Type A3", BR::kUnitIndexed, 0, 1, 1},
    {"Env 1 Type R1", BR::kUnitIndexed, 0, 1, 1},
    {"Env 1 Type R2", BR::kUnitIndexed, 0, 1, 1},
};

float defaultsValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}};

constexpr BR::ModuleConfig kConfig{1, 1, 0, 0, kOSCPortOffset, 1, presetTable, kNumParameters, parameterTable,
                                   -1};

constexpr BR::EnvParameterRows kEnvRows{kEnvTimeA1, kEnvTypeA1, kEnvVelocityDepth, kEnvResetToZero,
                                        kEnvMultiplier};
constexpr float kVelocityScale = 0.007874016f;  // 1 / 127
constexpr int32_t kControllerSustain = 64;
constexpr int32_t kControllerAllSoundOff = 120;
constexpr int32_t kControllerAllNotesOff = 123;

}  // namespace

BrelCorvane::BrelCorvane() : BrelCorvaneBase(kConfig), segmentCache(std::make_unique<BR::EnvSegmentCache>()) {
    BrelCorvane::InitModule();
}

float BrelCorvane::Value(int32_t tableIndex) const {
    // Before the parameter objects exist, the table's defaults stand in for them.
    return GetParameter(tableIndex + 1) ? BlockValue(tableIndex) : parameterTable[tableIndex].defaultValue;
}

void BrelCorvane::InitModule() {
    envelope = BR::Envelope();
    gateOpen = false;
    sustainPedal = false;
    velocity = 0.0f;
    releaseVelocity = 0.0f;
    triggerSamplesLeft = 0;
    smoother.Reset();
    CacheParameters();
    status.Emplace<TriggerStatus>();
    BrelCorvaneBase::InitModule();
}

void BrelCorvane::PrepareParameterRestore() {
    // Sessions saved before the type rows existed play back with parabolic segments.
    for (int32_t s = 0; s < BR::kNumEnvSegments; ++s)
        SetTableValue(kEnvTypeA1 + s, 0.0f);
}

void BrelCorvane::CacheParameters() {
    // Envelope rows first, so that envBlockUpdate lets the sustain knob act at once on a held note.
    if (GetParameter(kEnvTimeA1 + 1)) {
        BR::ReadEnvBlockParameters(*this, kEnvRows, envParameters);
    } else {
        envParameters = BR::EnvParameters();  // the table's defaults
    }
    minVoltage = Value(kMinVoltage);
    maxVoltage = Value(kMaxVoltage);
    triggerLengthSamples = std::max(1, int32_t(Value(kTriggerLength) * sampleRate * 0.001f));
    triggerNote = int32_t(Value(kTriggerNote));
    cvTriggerEnabled = Value(kCVTriggerEnable) != 0.0f;
    if (cvTriggerEnabled) {
        cvThreshold = Value(kCVTriggerThreshold);
        cvThresholds = BR::GateThresholds::Single(cvThreshold);
    }
    outputMode = int32_t(Value(kOutputMode));
    overrideActive = outputMode == kModeGate && Value(kOverrideGate) != 0.0f;
    if (overrideActive) overrideValue = (maxVoltage - minVoltage) * Value(kGate) + minVoltage;
    smoother.Configure(Value(kSmoothing), sampleRate);
    BR::PrepareEnvDisplay(envDisplay, envParameters, sampleRate,
                          BR::EnvTimeMultiplier(envParameters.multiplier));
}

bool BrelCorvane::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    // What CacheParameters derives depends on rows and the rate alone, and a block sees constant
    // rows: it runs again only in a block where a row changed. Kept at the first slice, after the
    // events at the block's first frame, which still meet the settings of the block before.
    rowsPending = rowsPending || RowsChanged();
    return true;
}

void BrelCorvane::BeginSlice(uint32_t, uint32_t) {
    if (rowsPending) {
        CacheParameters();
        rowsPending = false;
    }
    BR::envBlockUpdate(envelope, envParameters, envDisplay, status.As<TriggerStatus>().envelope);
}

void BrelCorvane::StartNote(float noteVelocity) {
    velocity = noteVelocity;
    triggerSamplesLeft = uint32_t(triggerLengthSamples);
    gateOpen = true;
    BR::envNoteOn(envelope, velocity, envParameters, sampleRate);
}

void BrelCorvane::ReleaseNote(float noteVelocity) {
    releaseVelocity = noteVelocity;
    gateOpen = false;
    BR::envNoteOff(envelope, envParameters, sampleRate);
}

void BrelCorvane::AllOff() {
    gateOpen = false;
    envelope.level = 0.0f;
    envelope.stageIndex = BR::kEnvFinished;
}

void BrelCorvane::HandleNoteOn(int32_t, int32_t note, int32_t noteVelocity) {
    if (std::clamp(note, 0, 127) == triggerNote) StartNote(float(noteVelocity) * kVelocityScale);
}

void BrelCorvane::HandleNoteOff(int32_t, int32_t note, int32_t noteVelocity) {
    // The release starts whether or not the gate was open. From a finished envelope (level 0) R1 heads
    // for "Env 1 Level R1" only while the scaled sustain is 0.001 or less: above that the R1 level is
    // kept in proportion to level / sustain, which is 0, and the output stays where it is.
    if (note == triggerNote) ReleaseNote(float(noteVelocity) * kVelocityScale);
}

void BrelCorvane::HandleControlChange(int32_t, int32_t controllerNumber, int32_t value) {
    switch (controllerNumber) {
        case kControllerSustain:
            sustainPedal = value >= 64;
            break;
        case kControllerAllSoundOff:
            AllOff();
            break;
        case kControllerAllNotesOff:
            if (gateOpen) BR::envNoteOff(envelope, envParameters, sampleRate);
            gateOpen = false;
            break;
        default:
            break;
    }
}

void BrelCorvane::HandleQueuedMessage(BR::MessageQueueItem* item) {
    if (item->kind == BR::kMessageCommand && item->Command() == kPropertyDontPanic) AllOff();
}

void BrelCorvane::ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
    float* out = outputs[0];
    if (cvTriggerEnabled) {
        ScanCV(inputs[0], out, frames);
    } else {
        RenderTrigger(out, frames);
    }
    smoother.Process(out, int32_t(frames));
    auto& display = status.As<TriggerStatus>();
    display.output = out[frames - 1];
    display.gateOpen = gateOpen;
}

void BrelCorvane::ScanCV(const float* in, float* out, uint32_t frames) {
    const BR::GateThresholds thresholds = cvThresholds;
    uint32_t position = 0;
    while (position < frames) {
        const uint32_t edge = BR::FindGateChange(in, position, frames, gateOpen, thresholds);
        // The state changes before the samples leading up to the edge are rendered, so the output
        // leads the input edge by up to one pass.
        if (edge < frames) {
            if (gateOpen) {
                ReleaseNote(1.0f);
            } else {
                StartNote(1.0f);
            }
        }
        if (edge > position) RenderTrigger(out + position, edge - position);
        position = edge;
    }
}

void BrelCorvane::RenderTrigger(float* out, uint32_t frames) {
    if (overrideActive) {
        BR::FillSamples(out, frames, overrideValue);
        return;
    }
    switch (outputMode) {
        case kModeGate:
            BR::FillSamples(out, frames, gateOpen ? maxVoltage : minVoltage);
            break;
        case kModeTrigger: {
            const uint32_t high = std::min(frames, triggerSamplesLeft);
            BR::FillSamples(out, high, maxVoltage);
            BR::FillSamples(out + high, frames - high, minVoltage);
            triggerSamplesLeft -= high;
            break;
        }
        case kModeEnvelope: {
            BR::renderEnvelopeMapped(envelope, out, frames, segmentCache.get(), maxVoltage - minVoltage,
                                     minVoltage);
            break;
        }
        case kModeVelocity:
            BR::FillSamples(out, frames, (maxVoltage - minVoltage) * velocity + minVoltage);
            break;
        default:
            BR::FillSamples(out, frames, minVoltage);
            break;
    }
}

int32_t BrelCorvane::GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) {
    static BR::CountedTextList* modes = new BR::CountedTextList({"Gate", "Trigger", "Envelope", "Velocity"});
    static BR::CountedTextList* multipliers = new BR::CountedTextList({"0.1", "1", "10", "100"});
    static BR::CountedTextList* types = new BR::CountedTextList({"Parabolic", "Exponential"});
    if (!out) return BR::kErrInvalidParameter;
    if (tableIndex == kOutputMode) return BR::HandOutValueStrings(modes, out);
    if (tableIndex == kEnvMultiplier) return BR::HandOutValueStrings(multipliers, out);
    if (tableIndex >= kEnvTypeA1 && tableIndex < kEnvTypeA1 + int32_t(BR::kNumEnvSegments))
        return BR::HandOutValueStrings(types, out);
    return BR::kErrInvalidParameter;
}

int32_t BrelCorvane::GetProperty(uint32_t id, void* data) {
    if (id == kPropertyEnvelopeLayout) {
        if (!data) return BR::kErrInvalidProperty;
        const int32_t layout[4] = {kEnvTimeA1, BR::kEnvRowStride, kEnvTypeA1, BR::kEnvTypeRowStride};
        std::memcpy(data, layout, sizeof layout);
        return BR::kNoErr;
    }
    if (id == kPropertyDontPanic) return BR::kErrInvalidProperty;  // write only
    return BrelCorvaneBase::GetProperty(id, data);
}

int32_t BrelCorvane::GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) {
    if (id == kPropertyEnvelopeLayout || id == kPropertyDontPanic) {
        if (size) *size = id == kPropertyDontPanic ? 1 : 16;
        if (writable) *writable = id == kPropertyDontPanic;
        return BR::kNoErr;
    }
    return BrelCorvaneBase::GetPropertyInfo(id, size, writable);
}

int32_t BrelCorvane::SetProperty(uint32_t id, const void* data, uint32_t size) {
    if (id == kPropertyDontPanic) {
        // The audio thread acts on it at the start of its next block.
        toAudioQueue.Write(uint32_t(kPropertyDontPanic));
        return BR::kNoErr;
    }
    if (id == kPropertyEnvelopeLayout) return BR::kErrInvalidProperty;
    return BrelCorvaneBase::SetProperty(id, data, size);
}

uint32_t BrelCorvane::GetParameterFlags(int32_t tableIndex) {
    return tableIndex == kOSCPortOffset || tableIndex == kSmoothing ? BR::kDisplayStringFlag : 0;
}

int32_t BrelCorvane::GetParameterDisplayString(BR::DisplayStringRequest& request) {
    return OffDisplayString(request, request.index == kOSCPortOffset, request.index == kSmoothing);
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneTrigger
