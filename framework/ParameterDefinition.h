// Plain rows of a module's parameter table and factory presets; a row's place and name are its identity.
#pragma once

#include <cstdint>

namespace BR {

enum ParameterUnit : uint32_t {
    kUnitGeneric = 0,
    kUnitIndexed = 1,
    kUnitBoolean = 2,
    kUnitPercent = 3,
    kUnitSeconds = 4,
    kUnitFrequency = 8,
    kUnitCents = 9,
    kUnitRelativeSemitones = 10,
    kUnitMIDINote = 11,
    kUnitDecibels = 13,
    kUnitLinearGain = 14,
    kUnitFader = 17,
    kUnitPan = 18,
    kUnitTempo = 22,
    kUnitBeats = 23,
    kUnitMilliseconds = 24,
};

struct ParameterDefinition {
    const char* name;
    uint32_t unit;
    float minimum;
    float maximum;
    float defaultValue;
};

// One factory preset. `values` points at numParameters floats owned by the module's static table;
// entries from numValues on are filled from the parameter table's defaults at each construction.
struct PresetDefinition {
    const char* name;
    uint32_t numValues;
    float* values;
};

// Bytes one preset row occupies in its serialised form: the values plus name pointer and count.
constexpr uint32_t PresetRowBytes(uint32_t numParameters) {
    return numParameters * 4 + 12;
}

}  // namespace BR
