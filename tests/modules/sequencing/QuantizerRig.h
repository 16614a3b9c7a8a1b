// A Quantizer behind the host driver for module tests, with the scale list the program ships: when no
// script host has filled it, the rows are added through AddScale as the scripts' addScale would.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/HostDriver.h"
#include "modules/ModuleFactory.h"
#include "modules/sequencing/Quantizer.h"

namespace BR::Test {

struct ScaleRow {
    const char* name;
    std::vector<int> degrees;  // counted from 1, the key itself being 1
};

// The default scale list, in its order.
inline const std::vector<ScaleRow>& DefaultScaleRows() {
    static const std::vector<ScaleRow> rows = {
        {"Major", {1, 3, 5, 6, 8, 10, 12}},           {"Harmonic Minor", {1, 3, 4, 6, 8, 9, 12}},
        {"Melodic Minor ^", {1, 3, 4, 6, 8, 10, 12}}, {"Melodic Minor v", {1, 3, 4, 6, 8, 9, 11}},
        {"Dorian", {1, 3, 4, 6, 8, 10, 11}},          {"Phrygian", {1, 2, 4, 6, 8, 9, 11}},
        {"Lydian", {1, 3, 5, 7, 8, 10, 12}},          {"Mixolydian", {1, 3, 5, 6, 8, 10, 11}},
        {"Locrian", {1, 2, 4, 6, 7, 9, 11}},          {"Pentatonic Maj", {1, 3, 5, 8, 10}},
        {"Pentatonic Min", {1, 4, 6, 8, 11}},         {"Octaves", {1}},
    };
    return rows;
}

// The mask addScale makes of degrees: bit (d - 1) & 31 for each, kept to 16 bits.
inline uint16_t MaskOfDegrees(const std::vector<int>& degrees) {
    uint32_t mask = 0;
    for (int d : degrees)
        mask |= 1u << ((d - 1) & 31);
    return uint16_t(mask);
}

inline BrelCorvaneQuantizer::BrelCorvane& AsQuantizer(BrelCorvaneBase& module) {
    return static_cast<BrelCorvaneQuantizer::BrelCorvane&>(module);
}

inline BrelCorvaneQuantizer::BrelCorvane& Quantizer(HostDriver& driver) {
    return AsQuantizer(driver.Module());
}

// Adds the default list when the instance has no scales yet, then publishes it to the "Scale" rows;
// call before the parameter objects are built.
inline void EnsureDefaultScales(BrelCorvaneQuantizer::BrelCorvane& quantizer) {
    if (!quantizer.Scales().empty()) return;
    for (const ScaleRow& row : DefaultScaleRows())
        quantizer.AddScale(row.name, MaskOfDegrees(row.degrees));
    quantizer.PublishScaleList();
}

// A Quantizer with the default scales, plus `extra` scales added behind them.
inline std::unique_ptr<HostDriver> MakeQuantizer(const std::vector<ScaleRow>& extra = {},
                                                 float sampleRate = 48000.0f,
                                                 uint32_t maxBlockSize = kDefaultMaxBlockSize) {
    std::unique_ptr<BrelCorvaneBase> module = CreateModule("quantizer");
    BrelCorvaneQuantizer::BrelCorvane& quantizer = AsQuantizer(*module);
    EnsureDefaultScales(quantizer);
    for (const ScaleRow& row : extra)
        quantizer.AddScale(row.name, MaskOfDegrees(row.degrees));
    if (!extra.empty()) quantizer.PublishScaleList();
    return std::make_unique<HostDriver>(std::move(module), *FindCatalogueEntry("quantizer"), sampleRate,
                                        maxBlockSize);
}

// Index of a scale by name in the instance's list, or -1.
inline int ScaleIndex(BrelCorvaneQuantizer::BrelCorvane& quantizer, const std::string& name) {
    const std::vector<BrelCorvaneQuantizer::ScaleDefinition> scales = quantizer.Scales();
    for (size_t i = 0; i < scales.size(); ++i)
        if (scales[i].name == name) return int(i);
    return -1;
}

// A grid set through property 64120.
inline void SetGrid(HostDriver& driver, const std::vector<float>& voltages,
                    const std::vector<int32_t>& notes) {
    QuantizerTable table{};
    table.count = int32_t(voltages.size());
    for (size_t i = 0; i < voltages.size(); ++i) {
        table.voltages[i] = voltages[i];
        table.notes[i] = notes[i];
    }
    driver.Module().SetPropertyAndNotify(kPropertyQuantizerTable, &table, uint32_t(sizeof table));
}

}  // namespace BR::Test
