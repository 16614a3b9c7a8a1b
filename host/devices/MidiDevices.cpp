// Listing and first-exact-match opening over the device systems, and the opener the hosts install.
#include "MidiDevices.h"

#include "AlsaMidiOutput.h"
#include "JackMidiOutput.h"

namespace BR {

std::vector<MidiDeviceSystem*> MidiDeviceSystems() {
    static AlsaMidiSystem alsa;
    static JackMidiSystem jack;
    return {&alsa, &jack};
}

std::vector<MidiDeviceInfo> ListMidiOutputDevices(const std::vector<MidiDeviceSystem*>& systems) {
    std::vector<MidiDeviceInfo> devices;
    for (MidiDeviceSystem* system : systems)
        for (std::string& name : system->ListOutputs())
            devices.push_back({std::move(name), system->Name()});
    return devices;
}

std::vector<MidiDeviceInfo> ListMidiOutputDevices() {
    return ListMidiOutputDevices(MidiDeviceSystems());
}

std::unique_ptr<MIDIOutputDevice> OpenMidiOutputDevice(const std::vector<MidiDeviceSystem*>& systems,
                                                       const std::string& name) {
    if (name.empty()) return nullptr;
    // Only the first match is tried: a device of the same name further on is never a fallback.
    for (MidiDeviceSystem* system : systems)
        for (const std::string& candidate : system->ListOutputs())
            if (candidate == name) return system->Open(name);
    return nullptr;
}

std::unique_ptr<MIDIOutputDevice> OpenMidiOutputDevice(const std::string& name) {
    return OpenMidiOutputDevice(MidiDeviceSystems(), name);
}

void InstallMidiOutputDevices() {
    SetMIDIOutputOpener([](const std::string& name) { return OpenMidiOutputDevice(name); });
    SetMIDIOutputLister([] {
        std::vector<std::string> names;
        for (MidiDeviceInfo& device : ListMidiOutputDevices())
            names.push_back(std::move(device.name));
        return names;
    });
}

}  // namespace BR
