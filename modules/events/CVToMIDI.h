// CV To MIDI: each channel's signal becomes a controller and notes (pitch from the channel, gate from the
// other one), sent to a MIDI output device by the module's own thread; the audio passes through.
#pragma once

#include <string>

#include "MIDISender.h"
#include "framework/BrelCorvaneBase.h"
#include "framework/MessageQueue.h"

namespace BrelCorvaneCVToMIDI {

enum TableIndex : int32_t {
    kOSCPortOffset = 0,
    kEnableL = 1,
    kChannelL = 2,
    kEnableCCL = 3,
    kSendCCL = 4,
    kCCMinL = 5,
    kCCMaxL = 6,
    kEnableNoteL = 7,
    kNoteOnModeL = 8,
    kNoteOffModeL = 9,
    kGateCloseMsgL = 10,
    kPitchCentreL = 11,
    kPitchSlopeL = 12,
    kGateThresholdL = 13,
    kMaxNoteLengthL = 14,
    kRowsPerChannel = 14,
    kMaxRateL = 29,
    kMaxRateR = 30,
    kSendToLearner = 31,
    kNumParameters = 32,
};

enum NoteOnMode : int32_t { kContinuous = 0, kGateOnly = 1, kGated = 2 };
enum NoteOffMode : int32_t { kOffNone = 0, kOffNormal = 1, kOffLegato = 2 };

constexpr uint32_t kPropertyDestinationName = 64100;
constexpr uint32_t kTagDestination = 0x6D696570;
constexpr int32_t kNone = 255;

struct ChannelSettings {
    bool enable = false;
    int32_t midiChannel = 0;
    bool enableCC = false;
    int32_t ccNumber = 0;
    float ccMin = 0, ccScale = 0;
    bool enableNote = false;
    int32_t noteOnMode = 0, noteOffMode = 0, gateCloseMsg = 0;
    float pitchCentre = 0, pitchSlope = 0, gateThreshold = 0;
    int32_t maxNoteSamples = 0, minInterval = 0;
};

struct ChannelState {
    float lastSample = 0;
    int32_t lastCC = kNone, lastNote = kNone, lastPitch = kNone;
    uint8_t gateOpen = 0;
    int32_t noteCountdown = 0, noteRateCountdown = 0, ccRateCountdown = 0;
};

// Where each message goes besides the device; tests and the host's MIDI file writer listen here.
using MessageTap = void (*)(void* context, uint32_t frame, uint8_t status, uint8_t data1, uint8_t data2);

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
    const char* GetModuleName() const override { return "Corvane CV To MIDI"; }
    const char* GetGuiScriptName() const override { return "gui_cvtomidi.lua"; }
    void SaveExtraChunks(BR::StateChunkStore& store) override;
    void LoadExtraChunks(const BR::StateChunkStore& store) override;

    void SetMessageTap(MessageTap tap, void* context) { messageTap = tap, tapContext = context; }
    const ChannelSettings& Settings(int c) const { return settings[c]; }
    const ChannelState& State(int c) const { return state[c]; }
    BR::MIDISender& Sender() { return sender; }
    const std::string& DestinationName() const { return destinationName; }

private:
    void Send(int32_t c, uint8_t status, uint8_t data1, uint8_t data2, uint32_t frame);
    void StartNote(int32_t c, int32_t note, uint32_t frame);
    void StopNote(int32_t c, uint32_t frame);
    void NoteLengthStep(int32_t c, uint32_t frame);
    void MaybeSendCC(int32_t c, float cv, uint32_t frame);
    int32_t NoteValue(int32_t c, float cv) const;

    ChannelSettings settings[2];
    ChannelState state[2];
    uint64_t nsPerSample = 0, timeBase = 0;
    bool sendToLearner = false;
    uint32_t sliceStart = 0;  // frame of the slice within the block, for time stamps
    BR::MIDISender sender;
    std::string destinationName;
    BR::MessageQueueItem learnerItems[16];
    int32_t learnerIndex = 0;
    MessageTap messageTap = nullptr;
    void* tapContext = nullptr;
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneCVToMIDI
