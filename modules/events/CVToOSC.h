// CV To OSC: each channel's value goes out as an OSC float message to a target of the user's choice,
// at a limited rate and only when the signal has moved; the audio passes through unchanged.
#pragma once

#include <string>

#include "OSCSender.h"
#include "framework/BrelCorvaneBase.h"

namespace BrelCorvaneCVToOSC {

enum TableIndex : int32_t {
    kOSCPortOffset = 0,
    kEnableL = 1,
    kThresholdL = 2,
    kMaxRateL = 3,
    kRowsPerChannel = 3,
    kNumParameters = 7,
};

enum Property : uint32_t {
    kPropertyTarget = 64110,  // text "host:port", with or without "osc.udp://"
    kPropertyPathL = 64111,
    kPropertyPathR = 64112,
};

constexpr uint32_t kTagTarget = 0x69706570;  // "ipep"
constexpr uint32_t kTagPathL = 0x6F737030;   // "osp0"
constexpr uint32_t kTagPathR = 0x6F737031;   // "osp1"
constexpr const char* kDefaultTarget = "127.0.0.1:7000";

struct ChannelSettings {
    bool enable = false;
    float threshold = 0;      // full scale: "Threshold" percent * 0.01
    int32_t minInterval = 0;  // samples between two values sent
};

struct ChannelState {
    float lastSent = 0;
    int32_t countdown = 0;
};

// The target a text names, read as told at property 64110.
struct TargetText {
    std::string host;
    int32_t port = -1;  // -1 when the text has no ":"
};
TargetText ParseTarget(const std::string& text);

class BrelCorvane : public BrelCorvaneBase {
public:
    BrelCorvane();
    ~BrelCorvane() override;

    int32_t GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) override;
    int32_t GetProperty(uint32_t id, void* data) override;
    int32_t GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) override;
    int32_t SetProperty(uint32_t id, const void* data, uint32_t size) override;
    void InitModule() override;
    void ShutdownModule() override;
    bool BeginBlock(uint32_t frames) override;
    void ProcessSlice(float** inputs, float** outputs, uint32_t frames) override;
    uint32_t GetParameterFlags(int32_t tableIndex) override;
    int32_t GetParameterDisplayString(BR::DisplayStringRequest& request) override;
    const char* GetModuleName() const override { return "Corvane CV To OSC"; }
    const char* GetGuiScriptName() const override { return "gui_cvtoosc.lua"; }
    void SaveExtraChunks(BR::StateChunkStore& store) override;
    void LoadExtraChunks(const BR::StateChunkStore& store) override;

    const ChannelSettings& Settings(int c) const { return settings[c]; }
    const ChannelState& State(int c) const { return state[c]; }
    BR::OSCSender& Sender() { return sender; }
    const std::string& Target() const { return targetText; }

private:
    void SetTarget(const std::string& text);

    ChannelSettings settings[2];
    ChannelState state[2];
    BR::OSCSender sender;
    std::string targetText;
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneCVToOSC
