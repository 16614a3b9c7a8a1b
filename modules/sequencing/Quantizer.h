// Quantizer: two channels that snap a control signal to even steps ("Manual") or to the voltages of a
// calibration table ("Calibrated"), the table optionally filtered by a scale and key.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "framework/BrelCorvaneBase.h"
#include "framework/Smoothing.h"
#include "modules/sequencing/CalibrationFile.h"

namespace BrelCorvaneQuantizer {

enum TableIndex : int32_t {
    kOSCPortOffset = 0,
    kEnableL = 1,  // seven rows per channel: Enable, Mode, Steps, Steps Fine, Offset, Transpose, Smoothing
    kModeL = 2,
    kStepsL = 3,
    kStepsFineL = 4,
    kOffsetL = 5,
    kTransposeL = 6,
    kSmoothingL = 7,
    kEnableR = 8,
    kRowsPerChannel = 7,
    kSmoothingR = 14,
    kEnableScaleL = 15,  // four scale rows per channel: Enable Scale, Key, Key Offset, Scale
    kKeyL = 16,
    kKeyOffsetL = 17,
    kScaleL = 18,
    kEnableScaleR = 19,
    kScaleRowsPerChannel = 4,
    kScaleR = 22,
    kNumParameters = 23,
};

enum Mode : int32_t { kModeManual = 0, kModeCalibrated = 1 };

constexpr const char* kArdentCalibrationName = "<Ardent Calibration>";
constexpr const char* kCinderCalibrationName = "<Cinder Calibration>";
constexpr uint32_t kTagCalibrationName = BR::FourCC("calf");
constexpr uint32_t kTagCalibrationSteps = BR::FourCC("cals");
constexpr uint32_t kStepsChunkBytes = 1040;  // version, count, 129 voltages, 129 notes

// Scales the audio thread can select; the named list may grow past it, the render path never does.
constexpr int32_t kMaxAudioScales = 1024;

// A named pitch-class mask: bit n set means the n-th semitone above the key is in the scale.
struct ScaleDefinition {
    std::string name;
    uint16_t mask;
};

// What the editor reads from the status block: one byte per channel, the note of the grid step the
// channel output last, or -1 (also for a note a byte cannot hold) when there is none to show.
struct QuantizerStatus {
    int8_t currentNote[2];
};

// The parameter rows as this instance's own copy: the upper limit of "Scale L" and "Scale R" follows
// the number of scales the instance knows. A base class, so that the rows exist before the module
// base is built on them.
struct InstanceParameterRows {
    InstanceParameterRows();
    BR::ParameterDefinition rows[kNumParameters];
};

class BrelCorvane : private InstanceParameterRows, public BrelCorvaneBase {
public:
    BrelCorvane();
    ~BrelCorvane() override;

    int32_t GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) override;
    int32_t GetProperty(uint32_t id, void* data) override;
    int32_t GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) override;
    int32_t SetProperty(uint32_t id, const void* data, uint32_t size) override;
    void InitModule() override;
    bool BeginBlock(uint32_t frames) override;
    void ProcessSlice(float** inputs, float** outputs, uint32_t frames) override;
    void AddScale(const char* name, uint32_t mask) override;
    uint32_t GetParameterFlags(int32_t tableIndex) override;
    int32_t GetParameterDisplayString(BR::DisplayStringRequest& request) override;
    const char* GetModuleName() const override { return "Corvane Quantizer"; }
    const char* GetGuiScriptName() const override { return "gui_quantizer.lua"; }
    void SaveExtraChunks(BR::StateChunkStore& store) override;
    void LoadExtraChunks(const BR::StateChunkStore& store) override;

    // Sets the upper limit of the "Scale" rows to the number of scales minus 1 and builds their value
    // names. InitModule calls it once the scripts have added their scales; the limit reaches the
    // parameter objects only when they are built after it.
    void PublishScaleList();

    // For tests and displays.
    std::vector<ScaleDefinition> Scales() const;
    const BR::QuantizerTable& Calibration() const { return calibration; }
    const BR::QuantizerTable& ChannelTable(int channel) const { return filtered[channel]; }
    const std::string& CalibrationName() const { return calibrationName; }
    bool TablesBuilt() const;
    uint32_t TableBuilds() const { return tableBuilds; }  // filtered tables built since construction
    int32_t CurrentNote(int channel) const { return channels[channel].currentNote; }

private:
    struct Channel {
        bool enabled = false;
        int32_t mode = kModeManual;
        float halfSteps = 48.0f;
        float gridOffset = 0.0f;
        float transpose = 0.0f;
        bool scaleEnabled = false;
        int32_t keySum = 0;
        int32_t scaleIndex = 0;
        bool builtScaleEnabled = false;  // what the channel's table was last built with
        int32_t builtKeySum = 0;
        int32_t builtScaleIndex = 0;
        bool ascending = true;  // the filtered table never falls, so a binary search finds the step
        int32_t currentNote = -1;
        BR::OutputSmoother smoother;  // slewStep, onePoleCoefficient, smoothState
    };

    void ReadChannelParameters(int channel, int32_t scaleCount);
    void BuildTable(int channel, const BR::QuantizerTable& source);
    void RenderManual(const Channel& ch, const float* x, float* y, uint32_t frames);
    void RenderCalibrated(Channel& ch, const BR::QuantizerTable& table, const float* x, float* y,
                          uint32_t frames);
    void SetTable(const BR::QuantizerTable& table);
    void SetName(const char* name);

    BR::QuantizerTable calibration{};
    BR::QuantizerTable filtered[2]{};
    std::string calibrationName;
    Channel channels[2];
    // The table's generation: bumped after each write of `calibration`. The filtered tables are
    // current ("tablesBuilt") while builtGeneration equals it; a write that races with a build thus
    // leaves them stale and they are built again at the next block.
    std::atomic<uint32_t> calibrationGeneration{1};
    uint32_t builtGeneration = 0;
    uint32_t tableBuilds = 0;

    mutable std::mutex scaleLock;  // guards `scales` among script and editor threads; never audio
    std::vector<ScaleDefinition> scales;
    uint16_t scaleMasks[kMaxAudioScales] = {};
    std::atomic<int32_t> audioScaleCount{0};
    int32_t readScaleCount = -1;  // audioScaleCount when the channel settings were last read
    BR::CountedTextList* scaleNames = nullptr;
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneQuantizer
