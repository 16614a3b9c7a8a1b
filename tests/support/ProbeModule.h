// A module for framework tests: a configurable channel layout that records every call the render
// path makes, and a small host that fills render records by hand.
#pragma once

#include <string>
#include <vector>

#include "framework/BrelCorvaneBase.h"
#include "host/HostDriver.h"

namespace BR::Test {

struct ProbeLayout {
    int32_t numInputs = 2;
    int32_t numOutputs = 2;
    int32_t numSidechains = 0;
    int32_t numAuxOutputs = 0;
};

// Parameter table of the probe: "Gain" (generic), "Mode" (indexed, with value strings),
// "Switch" (boolean), "OSC Port Offset" (indexed), "Smoothing L" (ms), "Cutoff" (frequency).
enum ProbeRow : int32_t { kGain, kMode, kSwitch, kOSCPort, kSmoothing, kCutoff, kNumProbeRows };

class ProbeModule : public BrelCorvaneBase {
public:
    struct Call {
        std::string what;   // "BeginBlock", "Slice", "NoteOn", "NoteOff", "CC", "Bend", "Queued", "EndBlock"
        uint32_t frames;    // slice length, or block length
        uint32_t position;  // frames rendered in the block before this call
        int32_t a, b, c;
    };

    explicit ProbeModule(ProbeLayout layout = {});

    bool BeginBlock(uint32_t frames) override;
    void EndBlock(uint32_t frames) override;
    void ProcessSlice(float** inputs, float** outputs, uint32_t frames) override;
    void HandleQueuedMessage(MessageQueueItem* item) override;
    void HandleNoteOn(int32_t channel, int32_t note, int32_t velocity) override;
    void HandleNoteOff(int32_t channel, int32_t note, int32_t velocity) override;
    void HandleControlChange(int32_t channel, int32_t controller, int32_t value) override;
    void HandlePitchBend(int32_t channel, int32_t lsb, int32_t msb) override;
    int32_t GetParameterValueStrings(int32_t tableIndex, CountedTextList** out) override;
    uint32_t GetParameterFlags(int32_t tableIndex) override;
    int32_t GetParameterDisplayString(DisplayStringRequest& request) override;
    const char* GetModuleName() const override { return "Corvane Probe Module"; }
    const char* GetGuiScriptName() const override { return "gui_probe.lua"; }

    std::vector<Call> calls;
    std::vector<std::vector<const float*>> sliceInputs;  // input pointers of each slice
    uint32_t blockPosition = 0;
    // Each output sample becomes outputValue + its input sample on the same channel.
    float outputValue = 0.5f;
};

// Fills a render record by hand so that tests control stems, sidechains and packets.
class ManualHost {
public:
    explicit ManualHost(BrelCorvaneBase& module, uint32_t inputStem = kStemFormatStereo,
                        uint32_t outputStem = kStemFormatStereo, float sampleRate = 48000.0f);

    // Renders one block. `inputs`/`outputs` are the host's channel pointers.
    void Render(std::vector<float*> inputs, std::vector<float*> outputs, uint32_t frames,
                std::vector<HostMidiPacket> packets = {});

    DriverController controller;
    int32_t sidechainIndex[kMaxSidechains] = {};

private:
    BrelCorvaneBase& module;
    BrelCorvaneBase* slot;
};

HostMidiPacket Packet(uint32_t timeStamp, std::vector<uint8_t> bytes);

}  // namespace BR::Test
