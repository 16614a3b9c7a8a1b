// A module's calibration table together with the properties through which editors read and name it
// (64016 to 64018, 64121, and 64020 where the module keeps the naming time) and its state chunks:
// one place for the Voice Controller, the Follower and Soundplane.
#pragma once

#include <cstdint>
#include <string>

#include "Calibration.h"

namespace BR {

class StateChunkStore;

// What the property calls return for an id that is not one of the calibration's.
constexpr int32_t kNotCalibrationProperty = 1;

constexpr uint32_t kTagCalibrationName = 0x63616C66;   // "calf"
constexpr uint32_t kTagCalibrationTable = 0x63616C74;  // "calt"

class CalibrationProperties {
public:
    // `timed`: naming the table also stores the time, read by property 64020; only the Voice
    // Controller keeps it, which is how "Transfer" knows a calibration source.
    explicit CalibrationProperties(bool timed) : timed(timed) {}

    // Table reset, name empty, time 0.
    void Reset();

    int32_t GetProperty(uint32_t id, void* data) const;
    int32_t GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) const;
    // 64121 only: the other properties are read-only, and the formula commands are the module's.
    int32_t SetProperty(uint32_t id, const void* data, uint32_t size);

    // "calt": version 1, 129 values, 129 valid bytes. "calf": the name with its terminator.
    void SaveTable(StateChunkStore& store) const;
    void SaveName(StateChunkStore& store) const;
    // A table of another version or too short leaves the table as it is.
    void LoadTable(const StateChunkStore& store);
    void LoadName(const StateChunkStore& store);

    // The formula tables of properties 64090 and 64091; false for any other id.
    static bool IsFormulaCommand(uint32_t id) {
        return id == kPropertyMakeArdentTable || id == kPropertyMakeCinderTable;
    }
    void MakeFormula(uint32_t id);

    CalibrationTable table;
    std::string name;
    int64_t time = 0;

private:
    bool timed;
};

}  // namespace BR
