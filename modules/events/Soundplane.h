// Soundplane: one touch of the process-wide touch table, picked by "Voice ID", made into six control
// signals through a matrix of note (calibrated), gate, x, y and z, each output smoothed on its own.
#pragma once

#include "framework/BrelCorvaneBase.h"
#include "framework/Smoothing.h"
#include "modules/sequencing/CalibrationProperties.h"

namespace BrelCorvaneSoundplane {

constexpr int32_t kNumOutputs = 6;
constexpr int32_t kNumSources = 6;  // offset, note, gate, x, y, z

enum TableIndex : int32_t {
    kVoiceId = 0,
    kOutput1Offset = 1,  // then Note, Gate, X, Y, Z, and the same six for outputs 2 to 6
    kOutput1Smoothing = 37,
    kGateZ = 43,
    kOSCPortOffset = 44,
    kNumParameters = 45,
};

enum Source : int32_t { kSourceOffset = 0, kSourceNote, kSourceGate, kSourceX, kSourceY, kSourceZ };

// For the calibration display.
struct SoundplaneStatus {
    float displayNote;  // the touch's note held within 0 and 127
    float noteVoltage;
};

class BrelCorvane : public BrelCorvaneBase {
public:
    BrelCorvane();

    int32_t GetProperty(uint32_t id, void* data) override;
    int32_t GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) override;
    int32_t SetProperty(uint32_t id, const void* data, uint32_t size) override;
    void InitModule() override;
    bool BeginBlock(uint32_t frames) override;
    void ProcessSlice(float** inputs, float** outputs, uint32_t frames) override;
    void HandleQueuedMessage(BR::MessageQueueItem* item) override;
    uint32_t GetParameterFlags(int32_t tableIndex) override;
    int32_t GetParameterDisplayString(BR::DisplayStringRequest& request) override;
    const char* GetModuleName() const override { return "Corvane Soundplane"; }
    const char* GetGuiScriptName() const override { return "gui_soundplane.lua"; }
    void SaveExtraChunks(BR::StateChunkStore& store) override;
    void LoadExtraChunks(const BR::StateChunkStore& store) override;

    int32_t VoiceId() const { return voiceId; }
    float NoteVoltage() const { return noteVoltage; }
    const BR::OutputSmoother& Smoother(int k) const { return smoother[k]; }
    BR::CalibrationTable& Calibration() { return calibration.table; }
    const std::string& CalibrationName() const { return calibration.name; }

private:
    // Settings.
    int32_t voiceId = 0;  // 0 is off; else the touch table entry voiceId - 1
    bool gateZ = false;
    float noteVoltage = 0;
    float rows[kNumOutputs][kNumSources] = {};
    BR::OutputSmoother smoother[kNumOutputs];  // slew, onePole and `smoothed` per output

    BR::CalibrationProperties calibration{false};
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneSoundplane
