// Standard MIDI Files as timed MIDI for the offline jobs, read through libsmf.
#pragma once

#include <string>
#include <vector>

#include "RenderPieces.h"

namespace BR {

// Every channel, system exclusive and system message of every track, at the frame nearest to its time
// in seconds by the file's own tempo map; meta events (tempo, names, end of track) are left out.
// Throws std::runtime_error naming the file when it cannot be read.
std::vector<MidiEventSpec> ReadMidiFile(const std::string& path, double sampleRate);

}  // namespace BR
