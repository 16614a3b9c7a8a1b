// The base of all twenty modules: the render path with its queues, slicing and bypass, the base
// properties, and the operations a module overrides.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "BrelAuBase.h"
#include "MessageQueue.h"
#include "ModuleServices.h"
#include "ModuleStatusBlock.h"
#include "PropertyData.h"

namespace BR {
class StateChunkStore;

// The ten constructor arguments of a module.
struct ModuleConfig {
    int32_t numInputs;
    int32_t numOutputs;
    int32_t numSidechains;
    int32_t numAuxOutputs;
    int32_t oscPortOffsetIndex;
    int32_t numPresets;
    PresetDefinition* presets;
    int32_t numParameters;
    ParameterDefinition* parameters;
    int32_t interfaceCategoryIndex;
};

// The chunk record as handed to and from the host.
struct ChunkRecord {
    uint32_t size;
    uint32_t version;
    uint32_t manufacturerId;
    uint32_t productId;
    uint32_t pluginId;
    uint32_t chunkId;
    char name[32];
    std::vector<uint8_t> data;
};

constexpr uint32_t kChunkIdControls = FourCC("elck");
constexpr uint32_t kChunkIdChunky = FourCC("Chnk");
constexpr uint32_t kModuleVersion = 132609;  // 0x20601, version 2.6.1

// Base property ids.
enum BaseProperty : uint32_t {
    kPropertySampleRate = 2,
    kPropertyDisplayString = 33,
    kPropertyStatusBlock = 64001,
    kPropertyProductName = 64002,
    kPropertyModuleName = 64003,
    kPropertyShortName = 64004,
    kPropertyParameterPaths = 64005,
    kPropertyOSCHelper = 64006,
    kPropertyNumTableParameters = 64007,
    kPropertyReopenOSC = 64008,
    kPropertyOSCPortOffset = 64009,
    kPropertyParameterTable = 64010,
    kPropertyGuiScriptName = 64011,
    kPropertyIsLearner = 64013,
    kPropertyReserved64140 = 64140,
};

// Most channels a module declares (main pair and sidechains); sizes the stack pointer arrays.
constexpr int32_t kMaxModuleChannels = 16;
constexpr uint32_t kDefaultMaxBlockSize = 1024;
constexpr uint32_t kDisplayStringFlag = 0x200000;
}  // namespace BR

class BrelCorvaneBase : public BrelAuBase {
public:
    explicit BrelCorvaneBase(const BR::ModuleConfig& config);
    ~BrelCorvaneBase() override;

    // Host interface.
    int32_t UpdateParameterNormalizedValue(const std::string& identifier, double normalized) override;
    int32_t GetNumberOfChunks() const { return 2; }
    int32_t GetChunkIDFromIndex(int32_t index, uint32_t* chunkId) const;
    int32_t GetChunkSize(uint32_t chunkId, uint32_t* size);
    int32_t GetChunk(uint32_t chunkId, BR::ChunkRecord* record);
    int32_t SetChunk(uint32_t chunkId, const BR::ChunkRecord* record);
    void RenderAudio(BR::RenderRecord* record) override;
    BR::ModuleStatusBlock* GetStatusBlock() { return &status; }

    int32_t GetProperty(uint32_t id, void* data) override;
    int32_t GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) override;
    int32_t SetProperty(uint32_t id, const void* data, uint32_t size) override;

    // Module operations, in the order a module meets them.
    virtual void InitModule();
    virtual void ShutdownModule();
    virtual uint32_t GetVersion() const { return BR::kModuleVersion; }
    virtual void SetMaxBlockSize(uint32_t frames);
    virtual void PrepareParameterRestore() {}
    virtual bool BeginBlock(uint32_t frames);
    virtual void BeginSlice(uint32_t frames, uint32_t reserved) { (void)frames, (void)reserved; }
    virtual void EndBlock(uint32_t frames) { (void)frames; }
    virtual void ProcessBlock(float** inputs, float** outputs, uint32_t frames);
    virtual void ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
        (void)inputs, (void)outputs, (void)frames;
    }
    virtual void HandleQueuedMessage(BR::MessageQueueItem* item) { (void)item; }
    virtual void HandleNoteOn(int32_t channel, int32_t note, int32_t velocity) {
        (void)channel, (void)note, (void)velocity;
    }
    virtual void HandleNoteOff(int32_t channel, int32_t note, int32_t velocity) {
        (void)channel, (void)note, (void)velocity;
    }
    virtual void HandleControlChange(int32_t channel, int32_t controller, int32_t value) {
        (void)channel, (void)controller, (void)value;
    }
    virtual void HandlePitchBend(int32_t channel, int32_t lsb, int32_t msb) {
        (void)channel, (void)lsb, (void)msb;
    }
    virtual void AddScale(const char* name, uint32_t mask) { (void)name, (void)mask; }
    virtual uint32_t GetParameterFlags(int32_t tableIndex) = 0;
    // Gives a text for a value and returns kNoErr, or returns kErrInvalidParameter when it has none.
    virtual int32_t GetParameterDisplayString(BR::DisplayStringRequest& request) = 0;
    virtual const char* GetProductName() const { return "Corvane"; }
    virtual const char* GetModuleName() const = 0;
    virtual const char* GetGuiScriptName() const = 0;
    virtual void SaveExtraChunks(BR::StateChunkStore& store) { (void)store; }
    virtual void LoadExtraChunks(const BR::StateChunkStore& store) { (void)store; }

    // The text an editor or script shows for a parameter's current value; `out` holds 25 bytes.
    void GetParameterValueText(int32_t tableIndex, char* out);
    // The value of table row k (parameter k + 1), or 0 when there is no such object. Reads the
    // parameter object itself, so any thread sees a value at once; the render path reads BlockValue.
    float GetTableValue(int32_t tableIndex) const {
        if (tableIndex < 0) return 0.0f;  // never Master Bypass through a table index
        const BR::Parameter* parameter = GetParameter(tableIndex + 1);
        return parameter ? parameter->GetValueAsFloat() : 0.0f;
    }

    // What this block sees of the parameters, polled once before BeginBlock and constant until the
    // next block. A module may read every row in BeginBlock through GetTableValue, as before; or read
    // BlockValue and recompute what it derives from rows only when RowsChanged says they moved.
    float BlockValue(int32_t tableIndex) const { return blockValues[size_t(tableIndex)]; }
    // True when any table row changed since the previous block (or the module was reset, or the
    // sample rate moved): everything derived from rows is due again.
    bool RowsChanged() const { return anyRowChanged; }
    bool RowChanged(int32_t tableIndex) const {
        const uint32_t p = uint32_t(tableIndex + 1);
        return (blockChanged[p / 64] >> (p % 64)) & 1u;
    }
    // True when any of `count` rows from `first` changed since the previous block.
    bool RowsChanged(int32_t first, int32_t count) const;
    // Counts the blocks that saw a changed row; lets tests and benchmarks see the mechanism at work.
    uint64_t ParameterReadCount() const { return parameterReadCount; }
    int32_t SetTableValue(int32_t tableIndex, float value) {
        return SetParameterValue(tableIndex + 1, value);
    }

    const BR::ParameterDefinition* ParameterTable() const { return parameters; }
    int32_t NumTableParameters() const { return numParameters; }
    int32_t NumInputs() const { return numInputs; }
    int32_t NumOutputs() const { return numOutputs; }
    int32_t NumSidechains() const { return numSidechains; }
    int32_t NumAuxOutputs() const { return numAuxOutputs; }
    const BR::PresetDefinition* Presets() const { return presets; }
    int32_t NumPresets() const { return numPresets; }
    uint32_t PresetStride() const { return presetStride; }
    BR::MessageQueue& MidiToAudioQueue() { return midiToAudioQueue; }
    BR::MessageQueue& ToAudioQueue() { return toAudioQueue; }
    const char* ShortName();
    const std::vector<std::string>& ParameterPaths();
    uint32_t SilenceFrames() const { return silenceFrames; }

protected:
    void ParameterValueChanged(int32_t parameterIndex, float value) override;
    // Makes the next block see every row as changed: after a reset of the module's state, whose
    // derived values must then be computed again.
    void MarkAllRowsChanged() { pollAll = true; }
    // Makes a row count as changed at the next block, from any thread.
    void MarkRowChanged(int32_t tableIndex) { MarkParameterChanged(tableIndex + 1); }
    // Step 7 of the render path: host packets into midiToAudioQueue.
    void TransferHostMIDI(const BR::HostMidiNode* node);
    // Hands one queued item to the module's handlers, the scripts and the Learner.
    void DispatchMIDI(BR::MessageQueueItem* item);
    // Fills a display request with a text, one reference for the caller.
    static int32_t SetDisplayText(BR::DisplayStringRequest& request, const char* text);
    // The value a display request asks about: its own, or the parameter's current one.
    float DisplayRequestValue(const BR::DisplayStringRequest& request) const;
    // The common display convention: "OSC Port Offset" at 0 and "Smoothing" rows inside +-0.5 ms read "Off".
    int32_t OffDisplayString(BR::DisplayStringRequest& request, bool isOSCPortRow, bool isSmoothingRow);

    std::unique_ptr<BR::ModuleServices> services;  // OSC helper and script host, when a layer provides them
    BR::MessageQueue midiToAudioQueue;
    BR::MessageQueue toAudioQueue;
    int32_t numInputPointers;
    int32_t numInputs;
    int32_t numOutputs;
    int32_t numPresets;
    BR::PresetDefinition* presets;
    uint32_t presetStride;
    int32_t numParameters;
    BR::ParameterDefinition* parameters;
    int32_t oscPortOffsetIndex;
    int32_t interfaceCategoryIndex;
    BR::ModuleStatusBlock status;
    uint32_t chunkSize = 0;
    int32_t numSidechains;
    int32_t numAuxOutputs;
    std::vector<float> silenceBuffer;
    float* silence = nullptr;
    uint32_t silenceBytes = 0;
    uint32_t silenceFrames = 0;
    std::string shortName;
    std::vector<std::string> parameterPaths;
    float sampleRate = 48000.0f;  // read again at each BeginBlock

private:
    // Takes the changed-parameter mask and copies the values of changed rows into blockValues.
    void PollParameters();
    // True when PollParameters has nothing to do: the rate is the polled one, the last block copied
    // nothing (so its mask is all zero already) and no store has set a bit since: one relaxed load
    // per 64 parameters. Reads this block's rate from the controller.
    bool NothingToPoll() {
        const float rate = controller->GetSampleRate();
        if (rate != polledSampleRate) {
            polledSampleRate = rate;
            pollAll = true;  // every rate-derived value is due again
        }
        if (pollAll || anyRowChanged) return false;
        const uint32_t words = std::min<uint32_t>(NumChangedWords(), uint32_t(blockChanged.size()));
        for (uint32_t w = 0; w < words; ++w)
            if (ChangedWordPending(w)) return false;
        return true;
    }
    // ProcessBlock's slicing at MIDI time stamps, from the first item read.
    void ProcessSlices(float** inputs, float** outputs, uint32_t frames, BR::MessageQueueItem* item);

    std::vector<float> blockValues;      // one per table row
    std::vector<uint64_t> blockChanged;  // this block's mask, by parameter index (row k is bit k + 1)
    const BR::HostController* stemController = nullptr;  // whose stem formats the two counts hold
    int32_t hostInputChannels = 0;
    int32_t hostOutputChannels = 0;
    bool anyRowChanged = true;
    bool pollAll = true;
    float polledSampleRate = 0.0f;
    uint64_t parameterReadCount = 0;
};
