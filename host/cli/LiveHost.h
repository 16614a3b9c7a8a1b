// A patch running live: the patch engine with one buffer table per instance, filled each period by
// the device (JACK's port buffers, or buffers of our own on the clock driver) and rendered in one
// call. Cycle() is what runs on the audio thread: it allocates, locks and prints nothing.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "PatchEngine.h"

namespace BR {

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

    int64_t FramesDone() const { return done.load(std::memory_order_relaxed); }
    PatchEngine& Engine() { return engine; }

private:
    PatchEngine engine;
    std::vector<std::vector<float*>> outputs;
    std::vector<std::vector<const float*>> inputs;
    std::vector<float* const*> outputTable;
    std::vector<const float* const*> inputTable;
    std::vector<TimedMidi> midiSlots;
    std::atomic<int64_t> done{0};
};

// The "live" command: runs the patch until SIGINT or SIGTERM (or --seconds), then saves the state
// files the patch names. Returns the exit status; throws UsageError/InputError for status 2.
int RunLive(int argc, char** argv);

}  // namespace BR
