// The running part of a patch, shared by the offline render and the live JACK host: its instances
// made and set up, and the rendering of a stretch of frames cut into blocks as the offline path
// cuts them. Rendering allocates nothing, locks nothing and prints nothing.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "PatchJob.h"
#include "Progress.h"
#include "host/HostDriver.h"

namespace BR {

class PatchEngine {
public:
    // Makes every instance and applies its state file, settings, properties and calibration; throws
    // InputError naming the place in the patch. `midiCapacity` is the room for outside MIDI events
    // per instance and stretch (the live MIDI port).
    PatchEngine(const Patch& patch, const ModuleSource& modules, size_t midiCapacity = 0);
    ~PatchEngine();
    PatchEngine(const PatchEngine&) = delete;
    PatchEngine& operator=(const PatchEngine&) = delete;

    // Renders frames [done, done + frames). `outputs[i][c]` receives instance i's output c at its
    // first frame; `inputs[i][c]`, when not null, is read for an input the patch leaves silent.
    // `outsideMidi` (frames relative to `done`, sorted) goes to the instances marked in `takesMidi`.
    void Render(int64_t done, int64_t frames, float* const* const* outputs, const float* const* const* inputs,
                const TimedMidi* outsideMidi = nullptr, uint32_t outsideCount = 0);

    size_t Count() const { return drivers.size(); }
    HostDriver& Driver(size_t i) { return *drivers[i]; }
    uint32_t MaxBlock() const { return maxBlock; }
    // The one transport every instance reads; null when the patch has none.
    DriverTransport* Transport() { return clock->Transport(); }
    // Offline only: each block waits until it is due (the live host is paced by its device).
    void SetPacer(const RealTimePacer* pacer_) { pacer = pacer_; }
    // Offline only: told of the frames done after each block.
    void SetProgress(RenderProgress* progress_) { progress = progress_; }
    // Whether instance i is given the outside MIDI; all by default.
    std::vector<bool> takesMidi;

private:
    const Patch& patch;
    uint32_t maxBlock;
    std::vector<std::unique_ptr<HostDriver>> drivers;
    std::vector<MidiSchedule> midi;
    std::vector<std::vector<TimedMidi>> merged;  // scheduled and outside MIDI of one block
    std::vector<std::vector<std::vector<float>>> pads;
    std::unique_ptr<BlockClock> clock;
    std::vector<const float*> in;
    std::vector<float*> out;
    const RealTimePacer* pacer = nullptr;
    RenderProgress* progress = nullptr;
};

}  // namespace BR
