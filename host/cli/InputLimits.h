// What the corvane command accepts from outside: every reader of a file or option checks against these
// before it acts, so that no input can exhaust memory or overflow a count. The README lists them.
#pragma once

#include <cstdint>
#include <string>

namespace BR {

// A render (or a whole patch) holds its outputs in memory until it writes them: frames times output
// channels, summed over a patch's instances, at most 2^28 samples (1 GiB of 32-bit floats).
constexpr uint64_t kMaxRenderSamples = uint64_t(1) << 28;
// Audio inputs are read block by block; each file may hold at most this many frames times channels, and
// the inputs of one patch together as many.
constexpr uint64_t kMaxInputSamples = uint64_t(1) << 28;
constexpr int kMaxInputChannels = 64;
constexpr uint64_t kInputReadFrames = 65536;  // frames per block when reading

// Patch files: size, nesting of arrays and objects, and the number of instances (so the longest chain
// of instances feeding each other too).
constexpr uint64_t kMaxPatchBytes = uint64_t(16) << 20;
constexpr int kMaxPatchDepth = 16;
constexpr size_t kMaxPatchInstances = 1024;
// The events of all instances' "midi" and "events" together.
constexpr size_t kMaxPatchEvents = 4000000;

// MIDI files: size, and channel and system exclusive events over all tracks.
constexpr uint64_t kMaxMidiFileBytes = uint64_t(16) << 20;
constexpr size_t kMaxMidiEvents = 1000000;

// State and calibration files are read whole; larger ones are refused unread.
constexpr uint64_t kMaxStateFileBytes = uint64_t(16) << 20;
constexpr uint64_t kMaxCalibrationFileBytes = uint64_t(1) << 20;

// The transport, wherever it comes from: tempo in quarter notes per minute, positions in quarter notes.
constexpr double kMinTempo = 1.0;
constexpr double kMaxTempo = 999.0;
constexpr double kMaxPositionQuarters = 1e9;

// Throws std::runtime_error ("cannot read \"PATH\": ...") when the file does not exist ("no such
// file"), is not a regular file, or holds more than `limit` bytes (`what` names the kind of file).
void CheckFileSize(const std::string& path, uint64_t limit, const std::string& what);

}  // namespace BR
