// Trigger: one MIDI note or one edge on the audio input becomes a gate, a pulse, an envelope or a held
// velocity voltage on the single output.
#pragma once

#include <memory>

#include "framework/BrelCorvaneBase.h"
#include "framework/Smoothing.h"
#include "modules/sequencing/EdgeScan.h"
#include "modules/sequencing/Envelope.h"

namespace BrelCorvaneTrigger {

enum TableIndex : int32_t {
    kOSCPortOffset = 0,
    kOutputMode = 1,
    kTriggerNote = 2,
    kOverrideGate = 3,
    kGate = 4,
    kMinVoltage = 5,
    kMaxVoltage = 6,
    kEnvTimeA1 = 7,  // fourteen envelope rows: five times, five shapes, four levels
    kEnvVelocityDepth = 21,
    kEnvResetToZero = 22,
    kSmoothing = 23,
    kTriggerLength = 24,
    kCVTriggerEnable = 25,
    kCVTriggerThreshold = 26,
    kEnvMultiplier = 27,
    kEnvTypeA1 = 28,  // five type rows
    kNumParameters = 33,
};

enum OutputMode : int32_t { kModeGate = 0, kModeTrigger = 1, kModeEnvelope = 2, kModeVelocity = 3 };

enum Property : uint32_t {
    kPropertyEnvelopeLayout = 64015,  // four int32: rows of "Env 1 Time A1", 14, "Env 1 Type A1", 5
    kPropertyDontPanic = 64094,       // one byte, write only: gate closed, envelope stopped at 0
};

// What the editor reads from the status block.
struct TriggerStatus {
    BR::EnvDisplayValues envelope;
    float output;  // last output sample of the latest sub-block
    uint8_t gateOpen;
};

class BrelCorvane : public BrelCorvaneBase {
public:
    BrelCorvane();

    int32_t GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) override;
    int32_t GetProperty(uint32_t id, void* data) override;
    int32_t GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) override;
    int32_t SetProperty(uint32_t id, const void* data, uint32_t size) override;
    void InitModule() override;
    void PrepareParameterRestore() override;
    bool BeginBlock(uint32_t frames) override;
    void BeginSlice(uint32_t frames, uint32_t reserved) override;
    void ProcessSlice(float** inputs, float** outputs, uint32_t frames) override;
    void HandleQueuedMessage(BR::MessageQueueItem* item) override;
    void HandleNoteOn(int32_t channel, int32_t note, int32_t velocity) override;
    void HandleNoteOff(int32_t channel, int32_t note, int32_t velocity) override;
    void HandleControlChange(int32_t channel, int32_t controller, int32_t value) override;
    uint32_t GetParameterFlags(int32_t tableIndex) override;
    int32_t GetParameterDisplayString(BR::DisplayStringRequest& request) override;
    const char* GetModuleName() const override { return "Corvane Trigger"; }
    const char* GetGuiScriptName() const override { return "gui_trigger.lua"; }

    // Audio state, for tests and displays.
    bool GateOpen() const { return gateOpen; }
    bool SustainPedal() const { return sustainPedal; }
    float Velocity() const { return velocity; }
    float ReleaseVelocity() const { return releaseVelocity; }
    uint32_t TriggerSamplesLeft() const { return triggerSamplesLeft; }
    int32_t TriggerLengthSamples() const { return triggerLengthSamples; }
    const BR::Envelope& GetEnvelope() const { return envelope; }
    const BR::OutputSmoother& Smoother() const { return smoother; }
    const BR::EnvSegmentCache& SegmentCache() const { return *segmentCache; }

private:
    float Value(int32_t tableIndex) const;
    void CacheParameters();
    void StartNote(float noteVelocity);
    void ReleaseNote(float noteVelocity);
    void AllOff();
    void RenderTrigger(float* out, uint32_t frames);
    void ScanCV(const float* in, float* out, uint32_t frames);

    BR::Envelope envelope;
    BR::EnvParameters envParameters;
    BR::EnvDisplayScale envDisplay;  // follows the rows and the rate, for the display position
    std::unique_ptr<BR::EnvSegmentCache> segmentCache;  // made with the module, never when rendering
    bool gateOpen = false;
    bool sustainPedal = false;  // stored only
    float velocity = 0.0f;
    float releaseVelocity = 0.0f;  // stored only
    uint32_t triggerSamplesLeft = 0;
    int32_t triggerLengthSamples = 1;
    int32_t triggerNote = 60;
    float minVoltage = 0.0f;
    float maxVoltage = 1.0f;
    int32_t outputMode = kModeGate;
    bool overrideActive = false;
    float overrideValue = 0.0f;
    bool rowsPending = true;  // rows changed since CacheParameters last ran
    bool cvTriggerEnabled = false;
    float cvThreshold = 0.0f;
    BR::GateThresholds cvThresholds = BR::GateThresholds::Single(0.0f);  // follows cvThreshold
    BR::OutputSmoother smoother;  // slewStep, onePoleCoefficient, smoothState
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneTrigger
