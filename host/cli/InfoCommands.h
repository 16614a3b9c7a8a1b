// Subcommands that describe the catalogue and the parameter tables, and the real-time benchmark.
#pragma once

#include <string>

namespace BR {

int RunList();
int RunParams(const std::string& stem);
// Renders every available module and prints its real-time factor; seconds of audio per module.
// `only`, when not empty, names the one module to run (a stem or an id).
int RunBench(double seconds, double sampleRate, unsigned blockSize, const std::string& only = "");

}  // namespace BR
