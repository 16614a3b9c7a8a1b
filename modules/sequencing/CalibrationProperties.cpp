// The calibration properties and chunks shared by the modules that own a calibration table.
#include "CalibrationProperties.h"

#include <algorithm>
#include <cstring>
#include <ctime>

#include "framework/PropertyData.h"
#include "framework/StateChunkStore.h"

namespace BR {

void CalibrationProperties::Reset() {
    table.Reset();
    name.clear();
    time = 0;
}

int32_t CalibrationProperties::GetProperty(uint32_t id, void* data) const {
    switch (id) {
        case kPropertyCalibrationTable:
            return PutProperty(data, static_cast<const CalibrationPoint*>(table.notes));
        case kPropertyCalibrationValid:
            return PutProperty(data, static_cast<const uint8_t*>(table.valid));
        case kPropertyCalibrationCount:
            return PutProperty(data, int32_t(kCalibrationEntries));
        case kPropertyCalibrationName:
            return PutProperty(data, name.c_str());
        case kPropertyCalibrationTime:
            if (timed) return PutProperty(data, int64_t(time));
            return kNotCalibrationProperty;
        default:
            return kNotCalibrationProperty;
    }
}

int32_t CalibrationProperties::GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) const {
    uint32_t bytes = 0;
    bool canWrite = false;
    switch (id) {
        case kPropertyCalibrationTable:
        case kPropertyCalibrationValid:
            bytes = 8;
            break;
        case kPropertyCalibrationTime:
            if (!timed) return kNotCalibrationProperty;
            bytes = 8;
            break;
        case kPropertyCalibrationCount:
            bytes = 4;
            break;
        case kPropertyCalibrationName:
            bytes = uint32_t(name.size() + 1);
            canWrite = true;
            break;
        default:
            return kNotCalibrationProperty;
    }
    if (size) *size = bytes;
    if (writable) *writable = canWrite;
    return kNoErr;
}

int32_t CalibrationProperties::SetProperty(uint32_t id, const void* data, uint32_t size) {
    if (id != kPropertyCalibrationName) return kNotCalibrationProperty;
    if (!data) return kErrInvalidProperty;
    const char* text = static_cast<const char*>(data);
    name.assign(text, strnlen(text, size));
    if (timed) time = std::max<int64_t>(1, int64_t(std::time(nullptr)));
    return kNoErr;
}

void CalibrationProperties::SaveTable(StateChunkStore& store) const {
    const std::vector<uint8_t> data = table.SaveChunk();
    store.Add(kTagCalibrationTable, data.data(), uint32_t(data.size()));
}

void CalibrationProperties::SaveName(StateChunkStore& store) const {
    store.Add(kTagCalibrationName, name.c_str(), uint32_t(name.size() + 1));
}

void CalibrationProperties::LoadTable(const StateChunkStore& store) {
    StateChunkStore::Blob blob;
    // Version 1 whose size holds its count; at most 129 entries are taken.
    if (store.Find(kTagCalibrationTable, blob)) table.LoadChunk(blob.data, blob.length);
}

void CalibrationProperties::LoadName(const StateChunkStore& store) {
    StateChunkStore::Blob blob;
    if (!store.Find(kTagCalibrationName, blob) || !blob.data) return;
    const char* text = reinterpret_cast<const char*>(blob.data);
    name.assign(text, strnlen(text, blob.length));
}

void CalibrationProperties::MakeFormula(uint32_t id) {
    if (id == kPropertyMakeArdentTable) table.MakeArdent();
    if (id == kPropertyMakeCinderTable) table.MakeCinder();
}

}  // namespace BR
