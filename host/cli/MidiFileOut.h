// The MIDI a module sent during a render, written as a Standard MIDI File whose ticks are frames.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/ModuleMidiOutput.h"

namespace BR {

// Division and tempo of a written file. With `exact`, one tick is one frame: ticks per quarter note
// = rate / k and microseconds per quarter note = 1e6 / k, for the smallest whole k that divides both
// the rate and 1e6 and keeps the division within 15 bits (every usual rate: 44100 -> 22050 at 120
// BPM, 96000 -> 24000 at 240 BPM). Other rates get 24000 ticks at 120 BPM and the nearest tick.
struct MidiFileTiming {
    uint16_t ticksPerQuarter;
    uint32_t microsecondsPerQuarter;
    bool exact;
};
MidiFileTiming MidiFileTimingFor(int64_t sampleRate);

// Format 0, one track: the tempo, then each message (frames counted from the render's first frame,
// sorted) at its tick, and the end of the track at `frames`, the render's length. Throws
// std::runtime_error naming the file when it cannot be written.
void WriteMidiFile(const std::string& path, const std::vector<SentMidi>& messages, int64_t sampleRate,
                   uint64_t frames);

}  // namespace BR
