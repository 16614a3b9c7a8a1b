// The list, params and midi-ports subcommands.
#include "InfoCommands.h"

#include <cstdio>

#include "CommandLine.h"
#include "host/devices/MidiDevices.h"
#include "modules/ModuleFactory.h"

namespace BR {

int RunList() {
    const CatalogueEntry* entries = CatalogueEntries();
    for (int i = 0; i < kNumCatalogueEntries; ++i) {
        const CatalogueEntry& e = entries[i];
        if (!FindModuleFactory(e)) continue;
        std::printf("%s\t%s\t%s\t%d\t%d\n", e.id, e.stem, e.moduleName, e.numInputs, e.numOutputs);
    }
    return 0;
}

int RunParams(const std::string& stem) {
    const CatalogueEntry* entry = FindCatalogueEntry(stem);
    if (!entry) throw UsageError("unknown module \"" + stem + "\"; \"corvane list\" shows the modules");
    std::unique_ptr<BrelCorvaneBase> module = CreateModule(stem);
    if (!module) throw UsageError("module \"" + stem + "\" is not available in this build");
    const ParameterDefinition* table = module->ParameterTable();
    for (int32_t k = 0; k < module->NumTableParameters(); ++k) {
        const ParameterDefinition& row = table[k];
        std::printf("%d\t%s\t%u\t%g\t%g\t%g\n", k, row.name, row.unit, double(row.minimum),
                    double(row.maximum), double(row.defaultValue));
    }
    return 0;
}

int RunMidiPorts() {
    const std::vector<MidiDeviceInfo> devices = ListMidiOutputDevices();
    for (const MidiDeviceInfo& device : devices)
        std::printf("%s\t%s\n", device.system.c_str(), device.name.c_str());
    if (devices.empty())
        std::fprintf(stderr,
                     "corvane: no MIDI output devices (no ALSA sequencer ports, no JACK server with MIDI "
                     "input ports)\n");
    return 0;
}

}  // namespace BR
