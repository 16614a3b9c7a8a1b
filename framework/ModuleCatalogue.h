// The twenty modules the plug-in file carries, with every name and number that identifies them.
#pragma once

#include <cstdint>
#include <string>

namespace BR {

struct CatalogueEntry {
    const char* stem;        // completes the effect identifier "com.brelmont.corvane." + stem
    const char* moduleName;  // GetModuleName is "Corvane " + this
    const char* id;          // four-character plug-in id
    const char* classScope;  // scope of the module's class BrelCorvane
    uint32_t inputStem;      // stem formats the host is told
    uint32_t outputStem;
    int32_t sidechains;
    int32_t auxOutputs;
    // ModuleConfig columns the module checks at RenderAudio, and its panel script.
    int32_t numInputs;
    int32_t numOutputs;
    int32_t oscPortOffsetIndex;
    int32_t numPresets;
    int32_t numParameters;
    int32_t interfaceCategoryIndex;
    const char* guiScriptName;
};

constexpr int kNumCatalogueEntries = 20;
constexpr const char* kManufacturerId = "Brel";
constexpr const char* kManufacturerName = "Brelmont";
constexpr uint32_t kPluginCategory = 2048;

// In catalogue order.
const CatalogueEntry* CatalogueEntries();
// By stem (exact, "Function" with its capital) or by four-character id; null when unknown.
const CatalogueEntry* FindCatalogueEntry(const std::string& stemOrId);
// "com.brelmont.corvane." + stem.
std::string EffectIdentifier(const CatalogueEntry& entry);
// Four characters as a 32-bit tag, the first in the high byte.
uint32_t IdAsTag(const char* id);

}  // namespace BR
