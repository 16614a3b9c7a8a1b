// One running LV2 plug-in: a module behind the shared host driver, fed by the host's ports, atom
// sequence, options, worker and state calls.
#pragma once

#include <lv2/core/lv2.h>
#include <lv2/state/state.h>
#include <lv2/worker/worker.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <vector>

#include "host/HostDriver.h"
#include "host/ModuleMidiOutput.h"
#include "host/lv2/Lv2Bundle.h"
#include "host/lv2/Lv2Transport.h"
#include "host/lv2/Lv2Urids.h"

namespace BR {

class Lv2Instance {
public:
    // Most MIDI events and positions taken from one host block; later ones are dropped.
    static constexpr uint32_t kMaxEvents = 1024;
    static constexpr uint32_t kMaxPositions = 32;
    // Most messages a module may send in one host block for the MIDI output port; later ones are lost.
    static constexpr uint32_t kMaxSentMidi = 8192;
    // Block length the module is given when the host names no bufsz:maxBlockLength, and the most it
    // is ever given: longer host blocks are cut.
    static constexpr uint32_t kDefaultMaxBlock = kDefaultMaxBlockSize;
    static constexpr uint32_t kLargestMaxBlock = 8192;

    // Null, with a message on standard error, when the host lacks urid:map or the module cannot be made.
    static std::unique_ptr<Lv2Instance> Create(const Lv2BundleInfo& bundle, const Lv2ModuleSource& source,
                                               double sampleRate, const LV2_Feature* const* features);
    ~Lv2Instance();

    void ConnectPort(uint32_t port, void* data);
    void Activate() {}
    void Run(uint32_t frames);

    LV2_State_Status Save(LV2_State_Store_Function store, LV2_State_Handle handle);
    LV2_State_Status Restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle);
    // Worker thread: runs the notifications of parameters the audio thread stored.
    LV2_Worker_Status Work();

    HostDriver& Driver() { return *driver; }
    const Lv2PortLayout& Layout() const { return layout; }
    uint32_t MaxBlock() const { return maxBlock; }
    Lv2Transport& Transport() { return transport; }

private:
    Lv2Instance(const Lv2BundleInfo& bundle, const Lv2ModuleSource& source, double sampleRate);

    // Applies the control ports that moved; with `resync`, only takes their values as seen.
    void ReadControls(bool resync);
    // True when the ports lie side by side and none differs from lastSeen. Equal bits mean equal
    // values, or the same non-finite value, which ReadControls ignores as well.
    bool ControlsUnchanged() {
        if (!controlsLaidOut) LayOutControls();
        return controlsContiguous &&
               std::memcmp(controlPorts[0], lastSeen.data(), controlPorts.size() * sizeof(float)) == 0;
    }
    // Works out controlsContiguous for the ports connected now.
    void LayOutControls();
    void CollectEvents(uint32_t frames);
    // Writes what the module sent during this block into the MIDI output port, at its frames.
    void WriteSentMidi(uint32_t frames);
    // Renders frames [from, to) of the host block, cut where inputs share buffers with outputs.
    void RenderSpan(uint32_t from, uint32_t to);
    // Sets input i's bit of inPlaceInputs from the buffers connected now.
    void UpdateInPlace(uint32_t input);

    struct TimedPosition {
        uint32_t frame;
        Lv2Position position;
    };

    const Lv2BundleInfo& bundle;
    const Lv2ModuleSource& source;
    Lv2Urids urids{};
    std::unique_ptr<HostDriver> driver;
    Lv2PortLayout layout;
    Lv2Transport transport;
    uint32_t maxBlock = kDefaultMaxBlock;
    const LV2_Worker_Schedule* schedule = nullptr;

    std::vector<const float*> controlPorts;
    std::vector<float> lastSeen;            // value each control port had at the last block
    bool controlsLaidOut = false;           // controlsContiguous is known for the ports connected now
    bool controlsContiguous = false;        // every control port follows the one before it in memory
    std::vector<int32_t> controlParameter;  // parameter index of each control port
    std::vector<const float*> audioIn;
    std::vector<float*> audioOut;
    // Worked out when a port is connected to a new buffer, not at every block (hosts connect the
    // same buffers again and again): inputs that share their buffer with an output, bit per input,
    // and whether an output has no buffer. Valid once outputsMoved is cleared by Run.
    uint32_t inPlaceInputs = 0;
    bool outputMissing = true;
    bool outputsMoved = true;
    const LV2_Atom_Sequence* midiIn = nullptr;
    LV2_Atom_Sequence* midiOut = nullptr;
    uint32_t midiOutCapacity = 0;  // what the host gave the port, read at the block's start
    ModuleMidiCapture sentMidi{kMaxSentMidi};
    uint64_t runStart = 0;  // the driver's rendered frames at the block's start

    std::vector<TimedMidi> events;  // this block's MIDI, frames from the block's start
    uint32_t numEvents = 0;
    std::vector<TimedMidi> spanEvents;
    std::vector<TimedPosition> positions;
    uint32_t numPositions = 0;
    std::vector<std::vector<float>> inputCopies;  // inputs of a host that renders in place

    std::unique_ptr<std::atomic<uint8_t>[]> notifyPending;  // per parameter index
    std::atomic<bool> workScheduled{false};
    // Set by Restore: the next block takes the control ports' values as seen without applying them,
    // so the restored chunk, which holds every parameter, stands.
    std::atomic<bool> resyncControls{false};
};

}  // namespace BR
