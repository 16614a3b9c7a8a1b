// The Step LFO's editors: a row of step values, the DAC bit weights, and the random register. A drag
// paints values into every step it crosses; each step stays an ordinary host parameter.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "ModuleDisplay.h"
#include "editor/widgets/Control.h"

namespace BR {

// A row of parameters edited by one gesture, drawn as a stepped outline filled to its baseline.
class RowEditor : public ControlBase {
public:
    // One cell of the row as an element of its own, so that the manager's hover logic names the step's
    // parameter in the status line; presses and drags go on to the editor.
    class RegionReceiver : public UIElement {
    public:
        RegionReceiver(Manager* manager, RowEditor* editor, int32_t step);
        void GetBounds(Box& bounds) override;
        void MouseDown(Point point, uint32_t modifiers, int32_t clickCount) override;
        void MouseDragged(Point point, uint32_t modifiers) override;
        void MouseUp(Point point, uint32_t modifiers) override;
        void MouseEnter() override;
        void MouseExit() override;
        RowEditor* editor;
        int32_t step;
    };

    RowEditor(Manager* manager, std::vector<int32_t> parameters, std::vector<int32_t> controlParameters,
              bool bipolar);
    void Animate() override;
    void Draw() override;
    // The cell under the point, or null outside the rectangle.
    UIElement* HitTest(Point point) override;
    void MouseDown(Point point, uint32_t modifiers, int32_t clickCount) override;
    void MouseDragged(Point point, uint32_t modifiers) override;
    void MouseUp(Point point, uint32_t modifiers) override;

    // The step under x and the value for y (panel space), both clamped to the row.
    void PointToStep(Point point, int32_t& step, float& value) const;
    // The step playing now (an index into `parameters`), or -1.
    virtual int32_t CurrentStep() const { return -1; }
    // How many of the row's steps are in use and fill the width, from the control parameters.
    virtual int32_t ShownSteps() const { return int32_t(parameters.size()); }

    std::vector<int32_t> parameters;         // the step rows, one per cell
    std::vector<int32_t> controlParameters;  // rows that change the layout, watched for redraw
    std::vector<float> shownValues, newValues;
    std::vector<float> shownControls;
    std::vector<RegionReceiver*> regions;  // one per step, owned by the manager as elements are
    bool bipolar;
    bool dirty = true;
    Point pressPoint;
    float startValue = 0;
    int32_t pressStep = -1, lastStep = -1, shownStep = -1;
    float backgroundColour[4] = {0.5f, 0.5f, 0.5f, 1.0f};
    float fillColour[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    float lineColour[4] = {1.0f, 1.0f, 1.0f, 1.0f};

    // Vertex data of the last recomputation, in unit space; for the tests.
    const std::vector<float>& Outline() const { return outline; }
    int32_t Recomputations() const { return recomputations; }

protected:
    std::vector<float> outline;
    int32_t recomputations = 0;
};

// Steps `first` to `first` + `count` - 1 (counted from 1) of lane `id`: "Step n L" or "Step n R".
class StepEditor : public RowEditor {
public:
    StepEditor(Manager* manager, int32_t id, int32_t first = 1, int32_t count = 96);
    int32_t CurrentStep() const override;
    // The whole row shows steps 1 to the last one the lane plays; a page of the row (a panel may split
    // the 96 steps in two) keeps its fixed steps, so that each page stays where the panel puts it.
    int32_t ShownSteps() const override;
    int32_t id;
    int32_t first;
};

// The 24 bit weights of lane `id`: "DAC Bit n L" or "DAC Bit n R"; the bits in use ("DAC Bits")
// fill the width.
class DACEditor : public RowEditor {
public:
    DACEditor(Manager* manager, int32_t id);
    int32_t ShownSteps() const override;
    int32_t id;
};

// One random register of the Step LFO as 48 cells (the module keeps the register itself in
// BR::RandomRegister), edited through property 64152 with payloads of
// {registerId, step, operation}: 3 toggle by a drag, 2 set with Shift, 1 clear with Control, 0 at the
// release.
class RandomRegisterEditor : public ControlBase {
public:
    RandomRegisterEditor(Manager* manager, int32_t id);
    void Draw() override;
    void MouseDown(Point point, uint32_t modifiers, int32_t clickCount) override;
    void MouseDragged(Point point, uint32_t modifiers) override;
    void MouseUp(Point point, uint32_t modifiers) override;
    int32_t StepAt(Point point) const;
    void Write(int32_t step, int32_t operation);
    // A cell's level, 0 to 255: a set bit of the register stands at full height.
    static int32_t CellLevel(uint64_t bits, int32_t cell);
    // The row's stepped outline in the box (x, y, width, height): two vertices per cell, at the
    // cell's level scaled from 0 to 255 over the height, kMaxRowVertices at most. Returns the count.
    static constexpr int32_t kCells = 48;
    static constexpr int32_t kMaxRowVertices = 96;
    static int32_t BuildRow(uint64_t bits, float x, float y, float width, float height,
                            std::array<float, 2 * kMaxRowVertices>& out);

    int32_t id;
    int32_t pressStep = -1, lastStep = -1;
    float backgroundColour[4] = {0.5f, 0.5f, 0.5f, 1.0f};
    float fillColour[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    float lineColour[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    std::array<float, 2 * kMaxRowVertices> rowVertices{};
};

}  // namespace BR
