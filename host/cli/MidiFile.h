// Standard MIDI Files as timed MIDI for the offline jobs, read by a reader of our own that bounds
// everything it accepts.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "InputLimits.h"
#include "RenderPieces.h"

namespace BR {

// Every channel and system exclusive event of every track (format 0 or 1), at the frame nearest to its
// time in seconds by the file's own tempo map; meta events (tempo, names, end of track) are left out.
// Events of equal time keep the order of their tracks, then of the track. Times may be anything a
// file can express: events too late for any render are kept at a frame that no render reaches.
// Throws std::runtime_error naming the file, where in it and why, when it is refused.
std::vector<MidiEventSpec> ReadMidiFile(const std::string& path, double sampleRate);

}  // namespace BR
