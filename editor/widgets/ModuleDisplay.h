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

    std::vector<int32_t> watched;
    std::vector<float> shownValues, newValues;
    std::vector<float> vertices;
    bool dirty = true;
    bool filled = false;
    float fillBase = 0.0f;
};

// The shape of envelope `id` (0 to 2): five stage times in proportion, their levels and curves.
class EnvDisplay : public CurveDisplay {
public:
    EnvDisplay(Manager* manager, int32_t id);
    void ComputeCurve(const std::vector<float>& values) override;
    int32_t id;
};

// One cycle of the LFO's mixed waveform of channel `id`, with a marker at the running phase.
class WaveformDisplay : public CurveDisplay {
public:
    WaveformDisplay(Manager* manager, int32_t id);
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
    void DrawContent() override;
    // Reads the table's address and count; false when the module keeps none.
    bool ReadTable(const float*& pairs, int32_t& count) const;

private:
    std::vector<float> points;  // reused from frame to frame
};

// The row of a parameter by name, or -1.
int32_t FindRow(Manager* manager, const char* format, int32_t number, const char* suffix = "");

}  // namespace BR
