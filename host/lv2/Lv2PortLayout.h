// The LV2 face of one module, derived from its catalogue row and parameter table alone: the ports in
// index order with their symbols, ranges, units and properties. The Turtle generator and the running
// plug-in build it the same way, so port numbers always agree.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "framework/BrelCorvaneBase.h"
#include "framework/ModuleCatalogue.h"

namespace BR {

enum class Lv2PortKind { Enabled, Control, AudioIn, AudioOut, MidiIn, MidiOut };

struct Lv2Port {
    Lv2PortKind kind = Lv2PortKind::Control;
    uint32_t index = 0;
    std::string symbol;  // a C identifier, unique in the plug-in
    std::string name;

    // Control ports. Enabled stands for Master Bypass with the inverted sense (1 = not bypassed).
    int32_t tableIndex = -1;
    uint32_t unit = 0;
    float minimum = 0, maximum = 1, defaultValue = 0;
    bool integer = false, enumeration = false, toggled = false, logarithmic = false;
    std::vector<std::pair<float, std::string>> scalePoints;  // value, label

    // Audio ports: module channel, sidechain flag, and the stereo group a channel belongs to.
    int32_t channel = -1;
    bool sideChain = false;
    int32_t group = -1;  // index into Lv2PortLayout::groups
    bool right = false;  // within its group
};

struct Lv2PortGroup {
    std::string symbol;  // "main_out", "aux_3_4", ...
    std::string label;   // "Main", "3/4", "5/6"
    bool output = true;
};

struct Lv2PortLayout {
    std::vector<Lv2Port> ports;
    std::vector<Lv2PortGroup> groups;
    uint32_t numControls = 0;  // Enabled and one per table row: ports 0 .. numControls - 1
    uint32_t firstAudioIn = 0, numAudioIn = 0;
    uint32_t firstAudioOut = 0, numAudioOut = 0;
    uint32_t midiIn = 0;
    uint32_t midiOut = kNoPort;  // only for modules that send MIDI
    static constexpr uint32_t kNoPort = 0xFFFFFFFF;
};

// Symbol of a row name: lower case, each run of other characters one '_', no '_' at either end,
// '_' before a leading digit; "Output Positive L" gives "output_positive_l".
std::string Lv2SymbolFromName(const std::string& name);

// Control ports first (port k + 1 is table row k, port 0 is Enabled), then audio inputs in channel
// order (sidechains after the main pair), audio outputs (aux stems after the main pair), MIDI in, and
// MIDI out for a module that sends MIDI.
// New table rows, which only ever go at the end, thus leave existing port numbers alone.
// `module` answers GetParameterValueStrings for the scale points.
Lv2PortLayout BuildLv2PortLayout(const CatalogueEntry& entry, BrelCorvaneBase& module);

// Default the description gives a row: the table's, except "Interface Category", whose table default
// follows a per-user preference at run time and is described by the preference's own default, 0.
float Lv2DescribedDefault(const CatalogueEntry& entry, const ParameterDefinition& row, int32_t tableIndex);

}  // namespace BR
