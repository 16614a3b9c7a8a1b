// The host probe's table, its block reading and its sample loop.
#include "HostProbe.h"

#include <cmath>

namespace BrelCorvaneHostProbe {

namespace {

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"Level", BR::kUnitGeneric, -2, 2, 1},
    {"Mode", BR::kUnitIndexed, 0, 2, 0},
    {"Hold", BR::kUnitBoolean, 0, 1, 0},
    {"Rate", BR::kUnitFrequency, 0.1f, 1000, 1},
    {"Smoothing L", BR::kUnitMilliseconds, -500, 500, 0},
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
    {"Interface Category", BR::kUnitIndexed, 0, 1, 0},
    {"Enabled", BR::kUnitGeneric, 0, 1, 0.5f},
    {"Level!", BR::kUnitGeneric, 0, 1, 0.25f},
    {"3/4 Mix (%)", BR::kUnitPercent, 0, 100, 50},
    {"Swing \"Q\" \\ Amount", BR::kUnitSeconds, 0, 10, 0},
    {"Detune", BR::kUnitCents, -100, 100, 0},
    {"Transpose", BR::kUnitRelativeSemitones, -24, 24, 0},
    {"Root Note", BR::kUnitMIDINote, 0, 127, 60},
    {"Gain", BR::kUnitDecibels, -60, 12, 0},
    {"Tempo", BR::kUnitTempo, 20, 300, 120},
    {"Length", BR::kUnitBeats, 1, 16, 4},
    {"A Parameter Whose Name Runs Past Thirty-One Characters", BR::kUnitGeneric, 0, 1, 0},
};

float defaultValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultValues}};

constexpr BR::ModuleConfig kConfig{
    4, 6, 2, 2, kOSCPortOffset, 1, presetTable, kNumParameters, parameterTable, kInterfaceCategory};

const BR::CatalogueEntry kEntry{"hostprobe",
                                "Host Probe",
                                "CRhp",
                                "BrelCorvaneHostProbe",
                                BR::kStemFormatStereo,
                                BR::kStemFormatStereo,
                                2,
                                2,
                                4,
                                6,
                                kOSCPortOffset,
                                1,
                                kNumParameters,
                                kInterfaceCategory,
                                "gui_hostprobe.lua"};

}  // namespace

BrelCorvane::BrelCorvane() : BrelCorvaneBase(kConfig) {
    BrelCorvane::InitModule();
}

void BrelCorvane::InitModule() {
    heldNote = -1;
    heldVelocity = 0;
    beat = beatStep = 0;
    BrelCorvaneBase::InitModule();
}

bool BrelCorvane::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    level = GetTableValue(kLevel);
    mode = int32_t(GetTableValue(kMode));
    hold = GetTableValue(kHold) != 0.0f;
    blockValue = float(frames) / 8192.0f;
    const BR::HostTransport* t = Transport();
    beat = BR::CurrentBeatPosition(t);
    tempo = t ? float(t->GetCurrentTempo()) : 0.0f;
    playState = !t ? -1.0f : t->IsTransportPlaying() ? 1.0f : 0.0f;
    beatStep = t && t->IsTransportPlaying() ? t->GetCurrentTempo() / 60.0 / double(sampleRate) : 0.0;
    int64_t loopStart = 0, loopEnd = 0;
    if (t) t->GetCurrentLoopPosition(lastLooping, loopStart, loopEnd);
    lastLoopStart = double(loopStart) * BR::kBeatsPerTick;
    lastLoopEnd = double(loopEnd) * BR::kBeatsPerTick;
    lastBeat = beat;
    ++blocksSeen;
    return true;
}

void BrelCorvane::ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
    float gate = 0.0f;
    if (heldNote >= 0)
        gate = level * (mode == 0   ? 1.0f
                        : mode == 1 ? float(heldVelocity) / 127.0f
                                    : float(heldNote) / 127.0f);
    const float* in1 = inputs[0];
    const float* side1 = inputs[2];
    const float* side2 = inputs[3];
    double position = beat;
    for (uint32_t i = 0; i < frames; ++i) {
        outputs[0][i] = gate;
        outputs[1][i] = float(position - std::floor(position));
        outputs[2][i] = tempo / 1000.0f;
        outputs[3][i] = playState;
        outputs[4][i] = blockValue;
        outputs[5][i] = in1[i] + 2.0f * side1[i] + 4.0f * side2[i];
        position += beatStep;
    }
    beat = position;
}

void BrelCorvane::HandleNoteOn(int32_t, int32_t note, int32_t velocity) {
    heldNote = note;
    heldVelocity = velocity;
}

void BrelCorvane::HandleNoteOff(int32_t, int32_t note, int32_t) {
    if (!hold && note == heldNote) heldNote = -1;
}

int32_t BrelCorvane::GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) {
    static BR::CountedTextList* modes = new BR::CountedTextList({"Gate", "Velocity", "Note"});
    static BR::CountedTextList* categories = new BR::CountedTextList({"Cat A", "Cat B"});
    BR::CountedTextList* list = tableIndex == kMode                ? modes
                                : tableIndex == kInterfaceCategory ? categories
                                                                   : nullptr;
    if (!list) return BR::kErrInvalidParameter;
    list->Retain();
    *out = list;
    return BR::kNoErr;
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

const BR::CatalogueEntry& Entry() {
    return kEntry;
}

BR::Lv2BundleInfo ProbeBundleInfo() {
    return BR::Lv2BundleInfo{
        "urn:brelmont:corvane-test:", "corvane_probe.so", "Corvane host tests", {{&kEntry, &Create}}, ""};
}

}  // namespace BrelCorvaneHostProbe
