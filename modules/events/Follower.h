// Follower: an envelope and a zero-crossing pitch measured from an audio input, mixed to two outputs.
#pragma once

#include <string>
#include <vector>

#include "framework/BrelCorvaneBase.h"
#include "framework/Smoothing.h"
#include "modules/sequencing/CalibrationProperties.h"

namespace BrelCorvaneFollower {

enum TableIndex : int32_t {
    kInputSource = 0,
    kLowpassCutoff = 1,
    kHighpassCutoff = 2,
    kEnvGain = 3,
    kEnvAttack = 4,
    kEnvRelease = 5,
    kEnvGate = 6,
    kOutputPitchL = 7,
    kOutputPitchR = 8,
    kOutputEnvL = 9,
    kOutputEnvR = 10,
    kSmoothingL = 11,
    kSmoothingR = 12,
    kOSCPortOffset = 13,
    kPitchMode = 14,
    kVoltsPerOctave = 15,
    kHzPerVolt = 16,
    kVScaleMode = 17,
    kManualVScale = 18,
    kZeroVCoarse = 19,
    kZeroVFine = 20,
    kNumParameters = 21,
};

enum InputSource : int32_t { kSourceBoth = 0, kSourceLeft = 1, kSourceRight = 2 };
enum PitchMode : int32_t { kPitchVoltsPerOctave = 0, kPitchHertzPerVolt = 1, kPitchCalibrated = 2 };
enum VScaleMode : int32_t { kScaleManual = 0, kScaleArdent = 1, kScaleCinder = 2 };

constexpr uint32_t kRingSize = 4096;  // a power of two: the ring index is masked, never bounds-tested
constexpr uint32_t kRingMask = kRingSize - 1;
constexpr uint32_t kTagCalibrationName = BR::kTagCalibrationName;
constexpr uint32_t kTagCalibrationTable = BR::kTagCalibrationTable;

// Editor view, smoothed over about 30 ms. In "Calibrated" mode bytes 8 and 12 carry the clamped note
// and the pitch volts instead, for the calibration display.
struct FollowerStatus {
    float frequency;
    float level;
    float envelope;
    uint32_t noPitch;
    float pitchVolts;
    float pitchOut;
};

struct RingEntry {
    float input1;
    float input2;
    float filtered;
};

class BrelCorvane : public BrelCorvaneBase {
public:
    BrelCorvane();

    int32_t GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) override;
    int32_t GetProperty(uint32_t id, void* data) override;
    int32_t GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) override;
    int32_t SetProperty(uint32_t id, const void* data, uint32_t size) override;
    void InitModule() override;
    void SetMaxBlockSize(uint32_t frames) override;
    bool BeginBlock(uint32_t frames) override;
    void ProcessSlice(float** inputs, float** outputs, uint32_t frames) override;
    uint32_t GetParameterFlags(int32_t tableIndex) override;
    int32_t GetParameterDisplayString(BR::DisplayStringRequest& request) override;
    const char* GetModuleName() const override { return "Corvane Follower"; }
    const char* GetGuiScriptName() const override { return "gui_follower.lua"; }
    void SaveExtraChunks(BR::StateChunkStore& store) override;
    void LoadExtraChunks(const BR::StateChunkStore& store) override;

    // Read-outs for tests and the editor.
    float Frequency() const { return frequency; }
    float PitchVolts() const { return pitchVolts; }
    float PitchOut() const { return pitchOut; }
    float Level() const { return level; }
    float GatedLevel() const { return gatedLevel; }
    float Envelope() const { return envelope; }
    bool NoPitch() const { return noPitch != 0; }
    float Period() const { return period; }
    uint32_t NextEvaluation() const { return nextEvaluation; }
    uint32_t WindowSamples() const { return uint32_t(windowSamples); }
    const BR::OutputSmoother& Smoother(int k) const { return smoother[k]; }
    BR::CalibrationTable& Calibration() { return calibration.table; }
    const std::string& CalibrationName() const { return calibration.name; }

private:
    void Measure();
    void UpdateStatus(uint32_t frames);

    // Per block.
    float lowpassF = 0, lowpassQ = 0, highpassF = 0, highpassQ = 0;
    float envGain = 1, attackCoef = 0, releaseCoef = 0, envGate = 0;
    float voltsPerOctave = 1, hzPerVolt = 1000, zeroNote = 48, manualScale = 10;
    float pitchToOut[2] = {}, envToOut[2] = {};
    BR::OutputSmoother smoother[2];  // slew, onePole and the last output per channel
    int32_t windowSamples = 0, inputSource = 0, pitchMode = 0, vScaleMode = 0;

    // Filters.
    float low1 = 0, band1 = 0, low2 = 0, band2 = 0;

    // Detector.
    std::vector<RingEntry> ring;
    uint32_t writeIndex = 0;
    uint32_t nextEvaluation = 0;
    float lastFraction = 0;
    float period = 2047.0f, previousPeriod = 2047.0f;
    uint8_t noPitch = 1;
    float frequency = 0, pitchVolts = 0, pitchOut = 0;
    float level = 0, gatedLevel = 0, envelope = 0;
    float calibratedNote = 0;
    std::vector<float> scratch;

    BR::CalibrationProperties calibration{false};  // table and name; no naming time
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneFollower
