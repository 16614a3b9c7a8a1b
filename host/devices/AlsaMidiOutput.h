// MIDI output through the ALSA sequencer: every port that others may write to and subscribe to,
// named "client:port"; a machine without a sequencer lists none.
#pragma once

#include "MidiDevices.h"

namespace BR {

class AlsaMidiSystem : public MidiDeviceSystem {
public:
    const char* Name() const override { return "alsa"; }
    std::vector<std::string> ListOutputs() override;
    std::unique_ptr<MIDIOutputDevice> Open(const std::string& name) override;
};

}  // namespace BR
