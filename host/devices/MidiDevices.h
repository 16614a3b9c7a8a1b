// The MIDI output devices the system offers: ALSA sequencer ports and, when a JACK server runs, the
// MIDI input ports of JACK clients. Hosts register the opener with the modules' sender at start; the
// same listing serves `corvane midi-ports` and the editor's device browser.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "modules/events/MIDISender.h"

namespace BR {

struct MidiDeviceInfo {
    std::string name;    // what property 64100 must equal: "client:port"
    std::string system;  // "alsa" or "jack"
};

// One system's devices. Listing and opening run on ordinary threads, never the audio thread.
class MidiDeviceSystem {
public:
    virtual ~MidiDeviceSystem() = default;
    virtual const char* Name() const = 0;
    // Output device names in the system's order; none when the system is absent.
    virtual std::vector<std::string> ListOutputs() = 0;
    // Opens the device of that exact name; null on any failure.
    virtual std::unique_ptr<MIDIOutputDevice> Open(const std::string& name) = 0;
};

// ALSA's sequencer, then JACK (when a server runs): the order in which devices are listed and matched.
std::vector<MidiDeviceSystem*> MidiDeviceSystems();

// Every output device of the given systems, in their order.
std::vector<MidiDeviceInfo> ListMidiOutputDevices(const std::vector<MidiDeviceSystem*>& systems);
std::vector<MidiDeviceInfo> ListMidiOutputDevices();

// The first device in the listing whose name equals `name` exactly (case and spaces included) is
// opened; a name that matches none, or a device that fails to open, gives null and no message.
std::unique_ptr<MIDIOutputDevice> OpenMidiOutputDevice(const std::vector<MidiDeviceSystem*>& systems,
                                                       const std::string& name);
std::unique_ptr<MIDIOutputDevice> OpenMidiOutputDevice(const std::string& name);

// Makes OpenMidiOutputDevice the opener of every module that sends MIDI (property 64100), and the
// names of ListMidiOutputDevices what GetMIDIOutputLister gives layers that cannot reach the host's
// (the editor's device browser).
void InstallMidiOutputDevices();

}  // namespace BR
