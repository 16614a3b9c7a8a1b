// Subcommands that describe the catalogue, the parameter tables and the MIDI devices, and the
// real-time benchmark.
#pragma once

#include <string>

namespace BR {

int RunList();
int RunParams(const std::string& stem);
// The MIDI output devices the system offers, one "SYSTEM<TAB>NAME" line each; a note on standard
// error when there are none.
int RunMidiPorts();
// Renders every available module and prints its real-time factor; seconds of audio per module.
// `only`, when not empty, names the one module to run (a stem or an id).
int RunBench(double seconds, double sampleRate, unsigned blockSize, const std::string& only = "");

}  // namespace BR
