// Displays of live module data: the common frame and colours, and the curves computed from parameters
// (envelope, LFO waveform, transfer function) or read from the module (calibration table).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "editor/Manager.h"
#include "editor/UIElement.h"
#include "framework/ModuleStatusBlock.h"

namespace BR {

// A display takes no mouse input; it polls its data on the render thread and draws a background quad,
// its content and a thin frame in its rectangle.
class ModuleDisplay : public UIElement {
public:
    explicit ModuleDisplay(Manager* manager);
    void Draw() override;
    UIElement* HitTest(Point) override { return nullptr; }
    virtual void DrawContent() {}

    // The module's status block through property 64001, or null without a module.
    ModuleStatusBlock* StatusBlock() const;
    // A line strip of (x, y) pairs in unit space (0 to 1 across the rectangle, 0 to 1 up it).
    void DrawUnitStrip(const std::vector<float>& xy, const float* colour) const;
    // The area between a unit-space strip and the line y = `base`.
    void FillUnitStrip(const std::vector<float>& xy, float base, const float* colour) const;
    // An outlined square of `size` px around a unit-space point, its y clamped to the rectangle.
    void DrawMarker(float ux, float uy, float size, const float* colour) const;

    float backgroundColour[4] = {0.5f, 0.5f, 0.5f, 1.0f};
    float fillColour[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    float lineColour[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    float peakLineColour[4] = {0.3f, 0.8f, 0.6f, 1.0f};
};

// A curve recomputed only when one of its watched parameters changes (compared byte for byte).
class CurveDisplay : public ModuleDisplay {
public:
    CurveDisplay(Manager* manager, std::vector<int32_t> watched);
    void Animate() override;
    void DrawContent() override;
    // Fills `vertices` (unit space) from `values`, one per watched parameter (0 for a missing row).
    virtual void ComputeCurve(const std::vector<float>& values) = 0;
    // Draws after the curve: markers of the running state.
    virtual void DrawLive() {}
    // Recomputes the vertices if a watched parameter changed since the last time; no GL involved.
    void PrepareCurve();

    std::vector<int32_t> watched;
    std::vector<float> shownValues, newValues;
    std::vector<float> vertices;
    bool dirty = true;
    // How many times the vertices were computed: once, then once per change of a watched parameter.
    int32_t recomputations = 0;
    bool filled = false;
    float fillBase = 0.0f;
};

// The shape of envelope `id` (0 to 2) as the module plays it: its 19 rows (five times, five shapes,
// four levels, five curve types), found through the module's property 64015, run through the
// module's own envelope code. Time runs left to right with each stage in proportion to its duration
// and the sustain held for a nominal second, as the module's position marker counts it.
class EnvDisplay : public CurveDisplay {
public:
    EnvDisplay(Manager* manager, int32_t id);
    void ComputeCurve(const std::vector<float>& values) override;
    void DrawLive() override;
    // Samples per second of the computed shape, for a whole shape of `totalSeconds`.
    static float CurveRate(float totalSeconds) { return 480.0f / totalSeconds; }
    int32_t id;
    bool voiceController = false;  // three envelopes in the status block, else the Trigger's one
    // Seconds the curve covers: 1 + the five times.
    float totalSeconds = 1;
};

// One cycle of the LFO's mixed waveform of channel `id`, with a marker at the running phase.
class WaveformDisplay : public CurveDisplay {
public:
    // One cycle drawn from this many phases plus the closing one; the noise's fixed seed.
    static constexpr int kCurvePoints = 128;
    static constexpr uint32_t kCurveSeed = 0x5eed1234u;
    WaveformDisplay(Manager* manager, int32_t id);
    // One cycle with the LFO's own wave code (BrelCorvaneLFO::PeriodicWaves).
    void ComputeCurve(const std::vector<float>& values) override;
    void DrawLive() override;
    int32_t id;
};

// The transfer curve of the Function's channel `id` over inputs -1 to 1, with a marker at the input.
class FunctionDisplay : public CurveDisplay {
public:
    FunctionDisplay(Manager* manager, int32_t id);
    void ComputeCurve(const std::vector<float>& values) override;
    void DrawLive() override;
    // The module's curve (0 linear, 1 logarithm, 2 exponential, 3 absolute) for one input.
    static float Transfer(int32_t function, float x, float inScale, float inOffset, float outScale,
                          float outOffset);
    int32_t id;
    float lowY = -1, highY = 1;
};

// The module's calibration table (properties 64016 and 64018): 128 notes across, values up.
class CalibrationDisplay : public ModuleDisplay {
public:
    explicit CalibrationDisplay(Manager* manager);
    // Nothing at all, not even the background, while the module keeps no table.
    void Draw() override;
    void DrawContent() override;
    // Reads the table's address and count; false when the module keeps none.
    bool ReadTable(const float*& pairs, int32_t& count) const;

private:
    std::vector<float> points;  // reused from frame to frame
};

// The row of a parameter by name, or -1.
int32_t FindRow(Manager* manager, const char* format, int32_t number, const char* suffix = "");

}  // namespace BR
