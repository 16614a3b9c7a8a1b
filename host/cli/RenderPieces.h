// Pieces shared by the render and patch jobs: the transport and where blocks are cut, timed MIDI,
// parameter settings, and windows onto input channels.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/DriverTransport.h"
#include "host/HostDriver.h"

namespace BR {

struct MidiEventSpec {
    uint64_t frame;  // absolute, from the render's start
    std::vector<uint8_t> bytes;
};

struct TransportChange {
    uint64_t frame;
    bool play;
};

// A playing 4/4 at 120 BPM from quarter note 0 unless told otherwise.
struct TransportSettings {
    bool present = true;  // false: the modules see no transport, and play at tempo 0 from 0
    double tempo = 120;   // quarter notes per minute
    double position = 0;  // quarter notes at the first frame
    int32_t meterNumerator = 4, meterDenominator = 4;
    bool playing = true;
    std::vector<TransportChange> changes;
    bool looping = false;
    double loopStart = 0, loopEnd = 0;  // quarter notes
};

// The one transport of a render and the cutting of its blocks: a host cuts where the transport
// starts or stops and where it wraps round the loop, besides at its block size.
class BlockClock {
public:
    BlockClock(const TransportSettings& settings, double sampleRate);
    BlockClock(const BlockClock&) = delete;
    BlockClock& operator=(const BlockClock&) = delete;

    // What the modules are given: null when the settings have no transport.
    DriverTransport* Transport() { return present ? &transport : nullptr; }
    // Applies the starts and stops due at frame `done`, then gives the length of the block that
    // begins there: at most `limit`, and ending at the next change or loop end.
    uint32_t NextBlock(int64_t done, uint32_t limit);
    // Moves a shared transport on after every instance has rendered the block.
    void Advance(uint32_t frames) {
        if (present) transport.Advance(frames);
    }

private:
    DriverTransport transport;
    bool present;
    std::vector<TransportChange> changes;  // sorted by frame
    size_t nextChange = 0;
};

// Timed MIDI of a whole render, handed out block by block.
class MidiSchedule {
public:
    explicit MidiSchedule(std::vector<MidiEventSpec> events);  // sorted by frame, keeping equal frames' order
    // The events in [done, done + frames), at frames relative to `done`; valid until the next call.
    const std::vector<TimedMidi>& Block(int64_t done, uint32_t frames);
    size_t Size() const { return events.size(); }

private:
    std::vector<MidiEventSpec> events;
    std::vector<TimedMidi> block;
    size_t next = 0;
};

// "0:903C64" -> frame 0 and bytes {0x90, 0x3C, 0x64}; `what` leads the UsageError message.
MidiEventSpec ParseEvent(const std::string& text, const std::string& what);

// Sets a row (or "Master Bypass") from a number, "on"/"off", or the name of an indexed row's value.
// Throws UsageError; `what` leads the messages about the value, "--set \"NAME\"" when empty.
void ApplySetting(HostDriver& driver, const std::string& name, const std::string& valueText,
                  const std::string& what = "");

// A window of `frames` frames from `done` on, into a channel that may end before the render does:
// null (read as silence) past its end, or a copy padded with silence where it ends inside the window.
const float* ChannelWindow(const std::vector<float>& channel, int64_t done, uint32_t frames,
                           std::vector<float>& pad);

}  // namespace BR
