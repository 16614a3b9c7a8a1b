// A small in-process LV2 host for the plug-in glue's tests: it goes through the descriptor's C entry
// points like any host, with a URID map, options, a worker it runs on demand, and an atom sequence
// it builds for each block.
#pragma once

#include <lv2/atom/forge.h>
#include <lv2/core/lv2.h>
#include <lv2/options/options.h>
#include <lv2/state/state.h>
#include <lv2/worker/worker.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/lv2/Lv2Instance.h"
#include "host/lv2/Lv2Library.h"

namespace BR::Test {

struct HostOptions {
    double sampleRate = 48000;
    std::optional<int32_t> maxBlockLength;  // none: the option is not offered
    bool worker = true;
    uint32_t capacity = 16384;  // most frames of one Run
};

// Position fields; unset ones are not sent.
struct PositionFields {
    std::optional<int64_t> frame, bar;
    std::optional<float> speed, bpm, barBeat;
    std::optional<double> beat;
    std::optional<float> beatsPerBar;
    std::optional<int32_t> beatUnit;
};

// The descriptors of corvane.so and of the probe bundle, built from the same tables here.
const Lv2Library& CorvaneLibrary();
const Lv2Library& ProbeLibrary();
constexpr const char* kProbeUri = "urn:brelmont:corvane-test:hostprobe";

class Lv2TestHost {
public:
    Lv2TestHost(const Lv2Library& library, const std::string& uri, HostOptions options = {});
    ~Lv2TestHost();

    bool Valid() const { return handle != nullptr; }
    Lv2Instance& Instance() { return *static_cast<Lv2Instance*>(handle); }
    BrelCorvaneBase& Module() { return Instance().Driver().Module(); }
    const LV2_Descriptor& Descriptor() const { return *descriptor; }

    // The control port of a symbol; it stays connected for the host's life.
    float& Control(const std::string& symbol);
    uint32_t PortIndex(const std::string& symbol) const;

    void AddMidi(uint32_t frame, std::vector<uint8_t> bytes);
    void AddPosition(uint32_t frame, const PositionFields& fields);
    // Connects every port, sends the queued events and runs `frames`; the events are then gone.
    void Run(uint32_t frames);
    // Runs the work the plug-in scheduled, as the host's worker thread would.
    void RunWork();
    uint32_t ScheduledWork() const { return scheduled; }
    // The MIDI output port's events of the last Run (modules that send MIDI): frame and bytes each.
    struct SentEvent {
        int64_t frame;
        std::vector<uint8_t> bytes;
        bool operator==(const SentEvent&) const = default;
    };
    std::vector<SentEvent> SentMidi();
    // Bytes of room the host gives the MIDI output port's sequence body in each Run.
    uint32_t midiOutCapacity = 1 << 15;
    // Heap allocations the plug-in's run() made in the last Run.
    uint64_t lastRunAllocations = 0;

    LV2_URID Map(const std::string& uri);

    std::vector<std::vector<float>> inputs;   // per audio input, `capacity` frames
    std::vector<std::vector<float>> outputs;  // per audio output
    // When set, output k is given input k's buffer, as a host that renders in place would.
    bool inPlace = false;

    // State through the state interface, into and from a plain map of key URI to {type, bytes}.
    struct Value {
        uint32_t type;
        std::vector<uint8_t> bytes;
    };
    using StateMap = std::map<std::string, Value>;
    LV2_State_Status Save(StateMap& state);
    LV2_State_Status Restore(const StateMap& state);

private:
    static LV2_URID MapUri(LV2_URID_Map_Handle handle, const char* uri);
    static const char* UnmapUri(LV2_URID_Unmap_Handle handle, LV2_URID urid);
    static LV2_Worker_Status Schedule(LV2_Worker_Schedule_Handle handle, uint32_t size, const void* data);

    struct Event {
        uint32_t frame;
        uint32_t order;
        LV2_URID type;
        std::vector<uint8_t> body;
    };

    const LV2_Descriptor* descriptor = nullptr;
    LV2_Handle handle = nullptr;
    std::vector<std::string> uris;  // URID - 1 -> URI
    LV2_URID_Map map{this, MapUri};
    LV2_URID_Unmap unmap{this, UnmapUri};
    LV2_Worker_Schedule schedule{this, Schedule};
    int32_t maxBlock = 0;
    std::vector<LV2_Options_Option> options;
    LV2_Feature mapFeature{}, unmapFeature{}, optionsFeature{}, scheduleFeature{};
    std::vector<const LV2_Feature*> features;
    std::vector<float> controls;
    std::vector<Event> events;
    std::vector<uint8_t> sequence;
    std::vector<uint8_t> outSequence;
    uint32_t scheduled = 0;
    uint32_t pendingWork = 0;
    const LV2_Worker_Interface* worker = nullptr;
    HostOptions hostOptions;
};

}  // namespace BR::Test
