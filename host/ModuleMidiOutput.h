// What a module sends as MIDI (CV To MIDI's notes and controllers), collected for a host to pass on:
// into a MIDI file, an LV2 output port. The collecting runs on the audio thread and allocates nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/HostDriver.h"

namespace BR {

struct SentMidi {
    uint64_t frame;  // the driver's rendered frames (HostDriver::RenderedFrames) at the message
    uint8_t bytes[3];
};

// Whether the module sends MIDI messages that a host can collect.
bool ModuleSendsMidi(BrelCorvaneBase& module);

class ModuleMidiCapture {
public:
    // Room for `capacity` messages between two Clear calls; past it a message is lost, unless the
    // capture may grow (offline hosts, which do not render on a real-time thread).
    explicit ModuleMidiCapture(size_t capacity = 4096, bool growable = false);
    ~ModuleMidiCapture();
    ModuleMidiCapture(const ModuleMidiCapture&) = delete;
    ModuleMidiCapture& operator=(const ModuleMidiCapture&) = delete;

    // Listens to the driver's module; false (and nothing collected) for a module that sends no MIDI.
    bool Attach(HostDriver& driver);
    void Detach();

    // The messages since the last Clear, sorted by frame with those of one frame in the order sent
    // (the module sends a block's messages channel by channel). Sorts in place; no allocation.
    const SentMidi* Sorted();
    size_t Count() const { return count; }
    // Messages lost since the last Clear because the room was full.
    uint32_t Lost() const { return lost; }
    void Clear() { count = 0, lost = 0; }

private:
    static void Tap(void* context, uint32_t frame, uint8_t status, uint8_t data1, uint8_t data2);

    std::vector<SentMidi> messages;  // room for `capacity`, filled up to `count`
    size_t count = 0;
    uint32_t lost = 0;
    bool growable;
    HostDriver* driver = nullptr;
};

}  // namespace BR
