// The shared driver that stands in for a plug-in host: it owns one module instance, presents the
// controller and transport, turns timed MIDI into packets, and renders blocks through RenderAudio.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "framework/BrelCorvaneBase.h"
#include "framework/ModuleCatalogue.h"
#include "host/DriverTransport.h"

namespace BR {

// MIDI bytes at a frame of the block being rendered.
struct TimedMidi {
    uint32_t frame;
    uint32_t length;
    const uint8_t* bytes;
};

class DriverController : public HostController {
public:
    float GetSampleRate() const override { return sampleRate; }
    uint32_t GetInputStemFormat() const override { return inputStem; }
    uint32_t GetOutputStemFormat() const override { return outputStem; }

    float sampleRate = 48000.0f;
    uint32_t inputStem = kStemFormatStereo;
    uint32_t outputStem = kStemFormatStereo;
};

class HostDriver {
public:
    static constexpr uint32_t kMaxPackets = 1024;

    // Takes the module, initialises it against the driver's controller and sets its maximum block.
    HostDriver(std::unique_ptr<BrelCorvaneBase> module, const CatalogueEntry& entry, float sampleRate,
               uint32_t maxBlockSize = kDefaultMaxBlockSize);
    ~HostDriver();
    // The render record points into the driver itself.
    HostDriver(const HostDriver&) = delete;
    HostDriver& operator=(const HostDriver&) = delete;

    BrelCorvaneBase& Module() { return *module; }
    const CatalogueEntry& Entry() const { return entry; }
    DriverController& Controller() { return controller; }
    uint32_t MaxBlockSize() const { return maxBlockSize; }

    // Channels the host exchanges with the module: main inputs and sidechains, all outputs.
    int32_t NumHostInputs() const { return module->NumInputs(); }
    int32_t NumHostOutputs() const { return module->NumOutputs(); }

    // The transport the module sees, or none (the module then plays at tempo 0 from position 0).
    // Process advances it after each block it renders, unless it is shared: then drivers rendering
    // side by side leave it alone, and their owner advances it once per block (so calls to Process
    // must then be no longer than MaxBlockSize()).
    void SetTransport(DriverTransport* transport, bool shared = false) {
        currentTransport = transport;
        advanceTransport = !shared;
    }
    DriverTransport* Transport() const { return currentTransport; }

    // Renders `frames` (cut into blocks of at most the maximum block size). `inputs` has
    // NumHostInputs() channels (null entries read silence), `outputs` NumHostOutputs(). MIDI frames are
    // relative to this call and sorted; no allocation happens here.
    void Process(const float* const* inputs, float* const* outputs, uint32_t frames, const TimedMidi* midi,
                 uint32_t numMidi);

    // Sets a table row or "Master Bypass" by its name. False when there is no such row.
    bool SetParameterByName(const std::string& name, float value);
    // Parameter index of a row name or "Master Bypass", or -1.
    int32_t ParameterIndexByName(const std::string& name) const;

    // Frames this driver has rendered since it was made, counted at the start of each module block:
    // while the module renders, the frame at which its block began. Hosts place what the module sends
    // with it.
    uint64_t RenderedFrames() const { return renderedFrames; }

private:
    void ProcessPieces(const float* const* inputs, float* const* outputs, uint32_t frames,
                       const TimedMidi* midi, uint32_t numMidi);
    void RenderOne(const float* const* inputs, float* const* outputs, uint32_t offset, uint32_t frames,
                   const TimedMidi* midi, uint32_t numMidi);
    void RenderRecordBlock(const float* const* inputs, float* const* outputs, uint32_t offset,
                           uint32_t frames, uint32_t numPackets);

    std::unique_ptr<BrelCorvaneBase> module;
    const CatalogueEntry& entry;
    DriverController controller;
    uint32_t maxBlockSize;
    uint32_t numHostInputs = 0;
    uint32_t numHostOutputs = 0;
    DriverTransport* currentTransport = nullptr;
    bool advanceTransport = true;
    uint64_t renderedFrames = 0;
    BrelCorvaneBase* instanceSlot = nullptr;
    std::vector<HostMidiPacket> packets;
    std::vector<float> zeros;
    std::vector<float*> inputPointers;
    std::vector<float*> outputPointers;
    std::array<int32_t, kMaxSidechains> sidechainIndex{};
    // The render record and what its fields point at, set up once: a block changes only the length,
    // the packet count, the transport and the channel pointers.
    RenderRecord record{};
    int32_t blockLength = 0;
    HostMidiNode node{};
};

}  // namespace BR
