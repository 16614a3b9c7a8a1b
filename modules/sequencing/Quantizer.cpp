// Quantizer: parameter table, scale list, calibration properties and the "calf"/"cals" chunks.
#include "Quantizer.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "framework/StateChunkStore.h"

namespace BrelCorvaneQuantizer {

namespace {

const BR::ParameterDefinition kParameterTable[kNumParameters] = {
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
    {"Enable L", BR::kUnitBoolean, 0, 1, 0},
    {"Mode L", BR::kUnitIndexed, 0, 1, 0},
    {"Steps L", BR::kUnitGeneric, 1, 400, 96},
    {"Steps Fine L", BR::kUnitGeneric, -1, 1, 0},
    {"Offset L", BR::kUnitPercent, 0, 100, 0},
    {"Transpose L", BR::kUnitMIDINote, -36, 36, 0},
    {"Smoothing L", BR::kUnitMilliseconds, -500, 500, 0},
    {"Enable R", BR::kUnitBoolean, 0, 1, 0},
    {"Mode R", BR::kUnitIndexed, 0, 1, 0},
    {"Steps R", BR::kUnitGeneric, 1, 400, 96},
    {"Steps Fine R", BR::kUnitGeneric, -1, 1, 0},
    {"Offset R", BR::kUnitPercent, 0, 100, 0},
    {"Transpose R", BR::kUnitMIDINote, -36, 36, 0},
    {"Smoothing R", BR::kUnitMilliseconds, -500, 500, 0},
    {"Enable Scale L", BR::kUnitBoolean, 0, 1, 0},
    {"Key L", BR::kUnitIndexed, 0, 11, 0},
    {"Key Offset L", BR::kUnitMIDINote, -36, 36, 0},
    {"Scale L", BR::kUnitIndexed, 0, 0, 0},  // upper limit set per instance from its scale list
    {"Enable Scale R", BR::kUnitBoolean, 0, 1, 0},
    {"Key R", BR::kUnitIndexed, 0, 11, 0},
    {"Key Offset R", BR::kUnitMIDINote, -36, 36, 0},
    {"Scale R", BR::kUnitIndexed, 0, 0, 0},
};

float defaultsValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}};

// Formula grids for the hardware expanders.
constexpr int32_t kArdentSteps = 64;
constexpr float kArdentStep = 0.015686275f;
constexpr int32_t kArdentFirstNote = 48;
constexpr int32_t kCinderSteps = 128;
constexpr float kCinderStep = 0.015628817f;
constexpr int32_t kCinderZeroNote = 60;

constexpr uint32_t kStepsChunkVersion = 1;

void PutU32(uint8_t* at, uint32_t value) {
    for (int b = 0; b < 4; ++b)
        at[b] = uint8_t(value >> (8 * b));
}

void PutFloat(uint8_t* at, float value) {
    uint32_t bits;
    std::memcpy(&bits, &value, 4);
    PutU32(at, bits);
}

float GetFloat(const uint8_t* at) {
    const uint32_t bits = BR::ReadU32(at);
    float value;
    std::memcpy(&value, &bits, 4);
    return value;
}

}  // namespace

InstanceParameterRows::InstanceParameterRows() {
    std::copy(std::begin(kParameterTable), std::end(kParameterTable), rows);
}

BrelCorvane::BrelCorvane()
    : BrelCorvaneBase(
          BR::ModuleConfig{2, 2, 0, 0, kOSCPortOffset, 1, presetTable, kNumParameters, rows, -1}) {
    BrelCorvane::InitModule();
}

BrelCorvane::~BrelCorvane() {
    if (scaleNames) scaleNames->Release();
}

void BrelCorvane::InitModule() {
    for (Channel& ch : channels)
        ch = Channel();
    builtGeneration = 0;
    status.Emplace<QuantizerStatus>() = QuantizerStatus{{-1, -1}};
    BrelCorvaneBase::InitModule();  // starts the script host, whose scale list calls AddScale
    PublishScaleList();
}

void BrelCorvane::AddScale(const char* name, uint32_t mask) {
    std::lock_guard<std::mutex> lock(scaleLock);
    scales.push_back(ScaleDefinition{name ? name : "", uint16_t(mask)});
    const int32_t count = audioScaleCount.load(std::memory_order_relaxed);
    if (count < kMaxAudioScales) {
        scaleMasks[count] = uint16_t(mask);
        audioScaleCount.store(count + 1, std::memory_order_release);
    }
}

void BrelCorvane::PublishScaleList() {
    std::vector<std::string> names;
    {
        std::lock_guard<std::mutex> lock(scaleLock);
        for (const ScaleDefinition& scale : scales)
            names.push_back(scale.name);
    }
    // With no scales the rows keep a range of one value, shown as "(none)", rather than an upper
    // limit below the lower one.
    const float maximum = float(std::max<size_t>(names.size(), 1) - 1);
    rows[kScaleL].maximum = maximum;
    rows[kScaleR].maximum = maximum;
    if (names.empty()) names.push_back("(none)");
    BR::CountedTextList* list = new BR::CountedTextList(std::move(names));
    std::swap(list, scaleNames);
    if (list) list->Release();
}

std::vector<ScaleDefinition> BrelCorvane::Scales() const {
    std::lock_guard<std::mutex> lock(scaleLock);
    return scales;
}

bool BrelCorvane::TablesBuilt() const {
    return builtGeneration == calibrationGeneration.load(std::memory_order_acquire);
}

int32_t BrelCorvane::GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) {
    static BR::CountedTextList* modes = new BR::CountedTextList({"Manual", "Calibrated"});
    static BR::CountedTextList* keys = new BR::CountedTextList(
        {"C", "C#/Db", "D", "D#/Eb", "E", "F", "F#/Gb", "G", "G#/Ab", "A", "A#/Bb", "B"});
    if (!out) return BR::kErrInvalidParameter;
    if (tableIndex == kModeL || tableIndex == kModeL + kRowsPerChannel)
        return BR::HandOutValueStrings(modes, out);
    if (tableIndex == kKeyL || tableIndex == kKeyL + kScaleRowsPerChannel)
        return BR::HandOutValueStrings(keys, out);
    if (tableIndex == kScaleL || tableIndex == kScaleR) return BR::HandOutValueStrings(scaleNames, out);
    return BR::kErrInvalidParameter;
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

void BrelCorvane::SetTable(const BR::QuantizerTable& table) {
    SetPropertyAndNotify(BR::kPropertyQuantizerTable, &table, uint32_t(sizeof table));
}

void BrelCorvane::SetName(const char* name) {
    SetPropertyAndNotify(BR::kPropertyCalibrationName, name, uint32_t(std::strlen(name) + 1));
}

int32_t BrelCorvane::GetProperty(uint32_t id, void* data) {
    switch (id) {
        case BR::kPropertyCalibrationName:
            return BR::PutProperty(data, calibrationName.c_str());
        case BR::kPropertyMakeArdentTable:
        case BR::kPropertyMakeCinderTable:
        case BR::kPropertyQuantizerTable:
            return BR::kErrInvalidProperty;  // write only
        default:
            return BrelCorvaneBase::GetProperty(id, data);
    }
}

int32_t BrelCorvane::GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) {
    uint32_t bytes = 0;
    switch (id) {
        case BR::kPropertyMakeArdentTable:
        case BR::kPropertyMakeCinderTable:
            bytes = 1;
            break;
        case BR::kPropertyQuantizerTable:
            bytes = uint32_t(sizeof(BR::QuantizerTable));
            break;
        case BR::kPropertyCalibrationName:
            bytes = uint32_t(calibrationName.size() + 1);
            break;
        default:
            return BrelCorvaneBase::GetPropertyInfo(id, size, writable);
    }
    if (size) *size = bytes;
    if (writable) *writable = true;
    return BR::kNoErr;
}

int32_t BrelCorvane::SetProperty(uint32_t id, const void* data, uint32_t size) {
    switch (id) {
        case BR::kPropertyMakeArdentTable: {
            // Unlike the Voice Controller, the grid is made here on the caller's thread.
            BR::QuantizerTable table{};
            table.count = kArdentSteps;
            for (int32_t i = 0; i < kArdentSteps; ++i) {
                table.voltages[i] = float(i) * kArdentStep;
                table.notes[i] = kArdentFirstNote + i;
            }
            SetTable(table);
            SetName(kArdentCalibrationName);
            return BR::kNoErr;
        }
        case BR::kPropertyMakeCinderTable: {
            BR::QuantizerTable table{};
            table.count = kCinderSteps;
            for (int32_t i = 0; i < kCinderSteps; ++i) {
                table.voltages[i] = float(i - kCinderZeroNote) * kCinderStep;
                table.notes[i] = i;
            }
            SetTable(table);
            SetName(kCinderCalibrationName);
            return BR::kNoErr;
        }
        case BR::kPropertyQuantizerTable: {
            if (!data || size < sizeof(BR::QuantizerTable)) return BR::kErrInvalidProperty;
            // A voltage that is not finite (a damaged session, a bad transfer) would make the outputs NaN:
            // such a grid is refused whole and the one in use stays.
            const auto* table = static_cast<const BR::QuantizerTable*>(data);
            const int32_t given = std::clamp<int32_t>(table->count, 0, BR::kCalibrationEntries);
            for (int32_t i = 0; i < given; ++i)
                if (!std::isfinite(table->voltages[i])) return BR::kErrInvalidProperty;
            // Written without a lock while the audio thread may read it: a block may see half the old
            // table, and the generation bumped behind the copy has the next block build it again.
            std::memcpy(&calibration, data, sizeof calibration);
            calibration.count = std::clamp<int32_t>(calibration.count, 0, BR::kCalibrationEntries);
            calibrationGeneration.fetch_add(1, std::memory_order_release);
            return BR::kNoErr;
        }
        case BR::kPropertyCalibrationName: {
            if (!data) return BR::kErrInvalidProperty;
            const char* text = static_cast<const char*>(data);
            calibrationName.assign(text, strnlen(text, size));
            return BR::kNoErr;
        }
        default:
            return BrelCorvaneBase::SetProperty(id, data, size);
    }
}

void BrelCorvane::SaveExtraChunks(BR::StateChunkStore& store) {
    store.Add(kTagCalibrationName, calibrationName.c_str(), uint32_t(calibrationName.size() + 1));
    std::vector<uint8_t> steps(kStepsChunkBytes, 0);
    const int32_t count = std::clamp<int32_t>(calibration.count, 0, BR::kCalibrationEntries);
    PutU32(&steps[0], kStepsChunkVersion);
    PutU32(&steps[4], uint32_t(count));
    // Voltages, and the notes directly behind the last of them; the rest stays zero.
    for (int32_t i = 0; i < count; ++i) {
        PutFloat(&steps[size_t(8 + 4 * i)], calibration.voltages[i]);
        PutU32(&steps[size_t(8 + 4 * (count + i))], uint32_t(calibration.notes[i]));
    }
    store.Add(kTagCalibrationSteps, steps.data(), uint32_t(steps.size()));
}

void BrelCorvane::LoadExtraChunks(const BR::StateChunkStore& store) {
    BR::StateChunkStore::Blob blob;
    if (store.Find(kTagCalibrationName, blob)) {
        const std::string name(reinterpret_cast<const char*>(blob.data),
                               strnlen(reinterpret_cast<const char*>(blob.data), blob.length));
        SetPropertyAndNotify(BR::kPropertyCalibrationName, name.c_str(), uint32_t(name.size() + 1));
    }
    if (!store.Find(kTagCalibrationSteps, blob) || blob.length < 9) return;
    if (BR::ReadU32(blob.data) != kStepsChunkVersion) return;
    const uint32_t stored = BR::ReadU32(blob.data + 4);
    if (uint64_t(blob.length) < uint64_t(stored) * 8 + 8) return;
    BR::QuantizerTable table{};
    table.count = int32_t(std::min<uint32_t>(stored, uint32_t(BR::kCalibrationEntries)));
    const uint8_t* voltages = blob.data + 8;
    const uint8_t* notes = voltages + size_t(stored) * 4;  // the stored layout, whatever is taken
    for (int32_t i = 0; i < table.count; ++i) {
        table.voltages[i] = GetFloat(voltages + 4 * i);
        table.notes[i] = int32_t(BR::ReadU32(notes + 4 * i));
    }
    SetTable(table);
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneQuantizer
