// A patch running live: the patch engine with one buffer table per instance, filled each period by
// the device (JACK's port buffers, or buffers of our own on the clock driver) and rendered in one
// call. Cycle() is what runs on the audio thread: it allocates, locks and prints nothing.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "PatchEngine.h"

namespace BR {

// The transport of another timeline (JACK's) as it stands at the first frame of a period.
struct OutsideTransport {
    bool rolling = false;
    int64_t frame = 0;      // the outside timeline's frame, which the modules see as theirs
    bool hasBeats = false;  // false: the patch's tempo and meter, its position at frame 0
    double quarters = 0;    // quarter notes at `frame`, when hasBeats
    double tempo = 120;     // quarter notes per minute, when hasBeats
    int32_t meterNumerator = 4, meterDenominator = 4;
};

class LiveHost {
public:
    // Most outside MIDI events taken per period; the rest of a period's events are dropped.
    static constexpr uint32_t kMidiCapacity = 512;

    LiveHost(const Patch& patch, const ModuleSource& modules = BuiltModules());

    // Where the device puts instance i's channel c for the coming period.
    float*& Output(size_t i, size_t c) { return outputs[i][c]; }
    const float*& Input(size_t i, size_t c) { return inputs[i][c]; }
    // Outside MIDI of the coming period; at most kMidiCapacity, sorted by frame.
    TimedMidi* MidiSlots() { return midiSlots.data(); }

    // Renders one period of `frames` from the buffers set above, with `midiCount` outside events.
    void Cycle(uint32_t frames, uint32_t midiCount);
    // Before a Cycle: the modules' transport takes the outside one's state. While it rolls on from
    // where the last period left it at the same tempo and meter, the transport is left to advance on
    // its own, so that its position stays exactly what an offline render computes; a start, stop,
    // relocation or change of tempo or meter takes the outside values. Nothing without a transport.
    void Follow(const OutsideTransport& outside);

    int64_t FramesDone() const { return done.load(std::memory_order_relaxed); }
    PatchEngine& Engine() { return engine; }

private:
    PatchEngine engine;
    std::vector<std::vector<float*>> outputs;
    std::vector<std::vector<const float*>> inputs;
    std::vector<float* const*> outputTable;
    std::vector<const float* const*> inputTable;
    std::vector<TimedMidi> midiSlots;
    TransportSettings settings;  // the patch's, for what an outside transport without beats lacks
    double sampleRate;
    std::atomic<int64_t> done{0};
};

// The "live" command: runs the patch until SIGINT or SIGTERM (or --seconds), then saves the state
// files the patch names. Returns the exit status; throws UsageError/InputError for status 2.
int RunLive(int argc, char** argv);

}  // namespace BR
