// MIDI output to a JACK client's MIDI input port, named "client:port", while a JACK server runs.
#pragma once

#include "MidiDevices.h"

namespace BR {

class JackMidiSystem : public MidiDeviceSystem {
public:
    const char* Name() const override { return "jack"; }
    // No server (none is ever started): no devices.
    std::vector<std::string> ListOutputs() override;
    std::unique_ptr<MIDIOutputDevice> Open(const std::string& name) override;
};

}  // namespace BR
