// Soundplane: parameter table, block settings with the calibrated note, the per-slice matrix, and the
// calibration and learn-switch properties.
#include "Soundplane.h"

#include <algorithm>
#include <cstring>

#include "framework/PropertyData.h"
#include "framework/SharedState.h"

namespace BrelCorvaneSoundplane {

namespace {

// One output's six rows with their defaults.
#define OUTPUT_ROWS(N, NOTE, GATE, X, Y, Z)                                                               \
    {"Output " N " Offset", BR::kUnitGeneric, -1, 1, 0},                                                  \
        {"Output " N " Note", BR::kUnitGeneric, -1, 1, NOTE},                                             \
        {"Output " N " Gate", BR::kUnitGeneric, -1, 1, GATE},                                             \
        {"Output " N " X", BR::kUnitGeneric, -1, 1, X}, {"Output " N " Y", BR::kUnitGeneric, -1, 1, Y}, { \
        "Output " N " Z", BR::kUnitGeneric, -1, 1, Z                                                      \
    }

// The default matrix: output 1 the note, 2 the gate, 3 x, 4 y, 5 z; output 6 nothing.
BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"Voice ID", BR::kUnitIndexed, 0, 16, 1},
    OUTPUT_ROWS("1", 1, 0, 0, 0, 0),
    OUTPUT_ROWS("2", 0, 1, 0, 0, 0),
    OUTPUT_ROWS("3", 0, 0, 1, 0, 0),
    OUTPUT_ROWS("4", 0, 0, 0, 1, 0),
    OUTPUT_ROWS("5", 0, 0, 0, 0, 1),
    OUTPUT_ROWS("6", 0, 0, 0, 0, 0),
    {"Output 1 Smoothing", BR::kUnitMilliseconds, -500, 500, 0},
    {"Output 2 Smoothing", BR::kUnitMilliseconds, -500, 500, 0},
    {"Output 3 Smoothing", BR::kUnitMilliseconds, -500, 500, 0},
    {"Output 4 Smoothing", BR::kUnitMilliseconds, -500, 500, 0},
    {"Output 5 Smoothing", BR::kUnitMilliseconds, -500, 500, 0},
    {"Output 6 Smoothing", BR::kUnitMilliseconds, -500, 500, 0},
    {"Gate Z", BR::kUnitBoolean, 0, 1, 0},
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
};
#undef OUTPUT_ROWS

float defaultsValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}};

constexpr BR::ModuleConfig kConfig{
    0, kNumOutputs, 0, 2, kOSCPortOffset, 1, presetTable, kNumParameters, parameterTable, -1};

bool IsSmoothingRow(int32_t index) {
    return index >= kOutput1Smoothing && index < kOutput1Smoothing + kNumOutputs;
}

}  // namespace

BrelCorvane::BrelCorvane() : BrelCorvaneBase(kConfig) {
    BrelCorvane::InitModule();
}

void BrelCorvane::InitModule() {
    voiceId = 0;
    gateZ = false;
    noteVoltage = 0.0f;
    for (auto& row : rows)
        std::fill(std::begin(row), std::end(row), 0.0f);
    for (BR::OutputSmoother& s : smoother)
        s.Reset();
    calibration.table.Reset();  // note i at entry i, every value 0
    status.Emplace<SoundplaneStatus>();
    BrelCorvaneBase::InitModule();
}

bool BrelCorvane::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    if (RowsChanged()) {
        voiceId = std::clamp(int32_t(BlockValue(kVoiceId)), 0, 16);
        gateZ = BlockValue(kGateZ) >= 0.5f;
        for (int32_t k = 0; k < kNumOutputs; ++k) {
            for (int32_t s = 0; s < kNumSources; ++s)
                rows[k][s] = BlockValue(kOutput1Offset + k * kNumSources + s);
            smoother[k].Configure(BlockValue(kOutput1Smoothing + k), sampleRate);
        }
    }
    // The touch moves without any row changing: its note is looked up at every block.
    if (voiceId >= 1) {
        const float raw = BR::touchTable[voiceId - 1].values[BR::kTouchNote].load(std::memory_order_relaxed);
        const float note = !(raw > 0.0f) ? 0.0f : std::min(raw, 127.0f);  // NaN reads as 0
        noteVoltage = calibration.table.Convert(note);
        SoundplaneStatus& shown = status.As<SoundplaneStatus>();
        shown.displayNote = note;
        shown.noteVoltage = noteVoltage;
    }
    return true;
}

void BrelCorvane::ProcessSlice(float**, float** outputs, uint32_t frames) {
    if (frames == 0) return;
    // The touch is read once per slice; a released touch keeps the values of its last message.
    float a = 0.0f, x = 0.0f, y = 0.0f, z = 0.0f;
    const bool on = voiceId >= 1;
    if (on) {
        const BR::TouchEntry& e = BR::touchTable[voiceId - 1];
        const bool active = e.active.load(std::memory_order_relaxed) != 0;
        a = active ? 1.0f : 0.0f;
        x = e.values[BR::kTouchX].load(std::memory_order_relaxed);
        y = e.values[BR::kTouchY].load(std::memory_order_relaxed);
        z = gateZ && !active ? 0.0f : e.values[BR::kTouchZ].load(std::memory_order_relaxed);
    }
    for (int32_t k = 0; k < kNumOutputs; ++k) {
        const float* r = rows[k];
        const float v = on ? noteVoltage * r[kSourceNote] + r[kSourceOffset] + a * r[kSourceGate] +
                                 r[kSourceX] * x + r[kSourceY] * y + r[kSourceZ] * z
                           : 0.0f;
        std::fill(outputs[k], outputs[k] + frames, v);
        smoother[k].Process(outputs[k], int(frames));
    }
}

void BrelCorvane::HandleQueuedMessage(BR::MessageQueueItem* item) {
    if (item->kind == BR::kMessageCommand) calibration.MakeFormula(item->Command());
}

uint32_t BrelCorvane::GetParameterFlags(int32_t tableIndex) {
    return tableIndex == kVoiceId || tableIndex == kOSCPortOffset || IsSmoothingRow(tableIndex)
               ? BR::kDisplayStringFlag
               : 0;
}

int32_t BrelCorvane::GetParameterDisplayString(BR::DisplayStringRequest& request) {
    // "Voice ID" reads "Off" at 0 as the port row does.
    return OffDisplayString(request, request.index == kVoiceId || request.index == kOSCPortOffset,
                            IsSmoothingRow(request.index));
}

int32_t BrelCorvane::GetProperty(uint32_t id, void* data) {
    if (id == BR::kPropertyLearnActive) return BR::PutProperty(data, BR::GetLearnActive());
    const int32_t answer = calibration.GetProperty(id, data);
    return answer != BR::kNotCalibrationProperty ? answer : BrelCorvaneBase::GetProperty(id, data);
}

int32_t BrelCorvane::GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) {
    if (id == BR::kPropertyLearnActive || BR::CalibrationProperties::IsFormulaCommand(id)) {
        if (size) *size = 1;
        if (writable) *writable = true;
        return BR::kNoErr;
    }
    const int32_t answer = calibration.GetPropertyInfo(id, size, writable);
    return answer != BR::kNotCalibrationProperty ? answer
                                                 : BrelCorvaneBase::GetPropertyInfo(id, size, writable);
}

int32_t BrelCorvane::SetProperty(uint32_t id, const void* data, uint32_t size) {
    if (id == BR::kPropertyLearnActive) {
        if (!data || size < 1) return BR::kErrInvalidProperty;
        BR::SetLearnActive(*static_cast<const uint8_t*>(data) != 0 ? 1 : 0);
        return BR::kNoErr;
    }
    if (BR::CalibrationProperties::IsFormulaCommand(id)) {
        // The table is made on the audio thread, in HandleQueuedMessage; the name is given here, so
        // that the audio thread never touches a string.
        toAudioQueue.Write(id);
        const char* name =
            id == BR::kPropertyMakeArdentTable ? "<Ardent Calibration>" : "<Cinder Calibration>";
        SetPropertyAndNotify(BR::kPropertyCalibrationName, name, uint32_t(std::strlen(name) + 1));
        return BR::kNoErr;
    }
    const int32_t answer = calibration.SetProperty(id, data, size);
    return answer != BR::kNotCalibrationProperty ? answer : BrelCorvaneBase::SetProperty(id, data, size);
}

void BrelCorvane::SaveExtraChunks(BR::StateChunkStore& store) {
    calibration.SaveName(store);
    calibration.SaveTable(store);
}

void BrelCorvane::LoadExtraChunks(const BR::StateChunkStore& store) {
    calibration.LoadName(store);
    calibration.LoadTable(store);
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneSoundplane
