// Port numbering, symbols and control properties of the LV2 description.
#include "Lv2PortLayout.h"

#include <cctype>
#include <set>

#include "host/ModuleMidiOutput.h"

namespace BR {

std::string Lv2SymbolFromName(const std::string& name) {
    std::string symbol;
    bool pendingBreak = false;
    for (unsigned char c : name) {
        if (std::isalnum(c) && c < 0x80) {
            if (pendingBreak && !symbol.empty()) symbol += '_';
            pendingBreak = false;
            symbol += char(std::tolower(c));
        } else {
            pendingBreak = true;
        }
    }
    if (symbol.empty()) symbol = "parameter";
    if (std::isdigit(static_cast<unsigned char>(symbol[0]))) symbol.insert(0, "_");
    return symbol;
}

float Lv2DescribedDefault(const CatalogueEntry& entry, const ParameterDefinition& row, int32_t tableIndex) {
    return tableIndex == entry.interfaceCategoryIndex ? 0.0f : row.defaultValue;
}

namespace {

// Takes `wanted`, or wanted_2, wanted_3 ... when another port has it already.
std::string UniqueSymbol(std::set<std::string>& taken, const std::string& wanted) {
    std::string symbol = wanted;
    for (int n = 2; taken.count(symbol); ++n)
        symbol = wanted + "_" + std::to_string(n);
    taken.insert(symbol);
    return symbol;
}

std::vector<std::pair<float, std::string>> ScalePoints(BrelCorvaneBase& module, int32_t tableIndex,
                                                       const ParameterDefinition& row) {
    std::vector<std::pair<float, std::string>> points;
    CountedTextList* list = nullptr;
    if (module.GetParameterValueStrings(tableIndex, &list) != kNoErr || !list) return points;
    // Value string i names the value i.
    const std::vector<std::string>& names = list->Get();
    for (size_t i = 0; i < names.size(); ++i)
        if (float(i) >= row.minimum && float(i) <= row.maximum) points.emplace_back(float(i), names[i]);
    list->Release();
    return points;
}

Lv2Port MakePort(Lv2PortKind kind, uint32_t index, std::string symbol, std::string name) {
    Lv2Port port;
    port.kind = kind;
    port.index = index;
    port.symbol = std::move(symbol);
    port.name = std::move(name);
    return port;
}

}  // namespace

Lv2PortLayout BuildLv2PortLayout(const CatalogueEntry& entry, BrelCorvaneBase& module) {
    Lv2PortLayout layout;
    std::set<std::string> taken;
    const int32_t numInputs = module.NumInputs(), numOutputs = module.NumOutputs();
    const int32_t numSidechains = module.NumSidechains(), numAux = module.NumAuxOutputs();
    const int32_t numRows = module.NumTableParameters();
    const ParameterDefinition* table = module.ParameterTable();

    // Fixed symbols are reserved first, so a row can never take one of them.
    for (int32_t c = 0; c < numInputs; ++c)
        taken.insert(c >= numInputs - numSidechains && numSidechains > 0
                         ? "sidechain_" + std::to_string(c - (numInputs - numSidechains) + 1)
                         : "in_" + std::to_string(c + 1));
    for (int32_t c = 0; c < numOutputs; ++c)
        taken.insert("out_" + std::to_string(c + 1));
    taken.insert("midi_in");
    taken.insert("midi_out");
    taken.insert("enabled");

    uint32_t index = 0;
    Lv2Port enabled = MakePort(Lv2PortKind::Enabled, index++, "enabled", "Enabled");
    enabled.toggled = enabled.integer = true;
    enabled.minimum = 0;
    enabled.maximum = 1;
    enabled.defaultValue = 1;
    layout.ports.push_back(enabled);

    for (int32_t k = 0; k < numRows; ++k) {
        const ParameterDefinition& row = table[k];
        Lv2Port port = MakePort(Lv2PortKind::Control, index++,
                                UniqueSymbol(taken, Lv2SymbolFromName(row.name)), row.name);
        port.tableIndex = k;
        port.unit = row.unit;
        port.minimum = row.minimum;
        port.maximum = row.maximum;
        port.defaultValue = Lv2DescribedDefault(entry, row, k);
        if (row.unit == kUnitIndexed) {
            port.integer = true;
            port.scalePoints = ScalePoints(module, k, row);
            port.enumeration = !port.scalePoints.empty();
        } else if (row.unit == kUnitBoolean) {
            port.toggled = true;
        } else if (row.unit == kUnitFrequency && row.minimum > 0.0f && row.maximum > row.minimum) {
            port.logarithmic = true;
        }
        layout.ports.push_back(std::move(port));
    }
    layout.numControls = index;

    layout.firstAudioIn = index;
    for (int32_t c = 0; c < numInputs; ++c) {
        const bool sideChain = numSidechains > 0 && c >= numInputs - numSidechains;
        const int32_t number = sideChain ? c - (numInputs - numSidechains) + 1 : c + 1;
        Lv2Port port = MakePort(Lv2PortKind::AudioIn, index++,
                                (sideChain ? "sidechain_" : "in_") + std::to_string(number),
                                (sideChain ? "Sidechain " : "In ") + std::to_string(number));
        port.channel = c;
        port.sideChain = sideChain;
        layout.ports.push_back(std::move(port));
    }
    layout.numAudioIn = uint32_t(numInputs);

    // With aux stems, the main pair and each stem are stereo groups: "3/4", "5/6", ...
    if (numAux > 0 && numOutputs >= 2) {
        layout.groups.push_back({"main_out", "Main", true});
        for (int32_t a = 0; a < numAux && 2 + 2 * a + 1 < numOutputs; ++a) {
            const std::string first = std::to_string(3 + 2 * a), second = std::to_string(4 + 2 * a);
            layout.groups.push_back({"aux_" + first + "_" + second, first + "/" + second, true});
        }
    }
    layout.firstAudioOut = index;
    for (int32_t c = 0; c < numOutputs; ++c) {
        Lv2Port port = MakePort(Lv2PortKind::AudioOut, index++, "out_" + std::to_string(c + 1),
                                "Out " + std::to_string(c + 1));
        port.channel = c;
        if (!layout.groups.empty() && c / 2 < int32_t(layout.groups.size())) {
            port.group = c / 2;
            port.right = c % 2 == 1;
        }
        layout.ports.push_back(std::move(port));
    }
    layout.numAudioOut = uint32_t(numOutputs);

    layout.midiIn = index;
    layout.ports.push_back(MakePort(Lv2PortKind::MidiIn, index++, "midi_in", "MIDI In"));
    if (ModuleSendsMidi(module)) {
        layout.midiOut = index;
        layout.ports.push_back(MakePort(Lv2PortKind::MidiOut, index++, "midi_out", "MIDI Out"));
    }
    return layout;
}

}  // namespace BR
