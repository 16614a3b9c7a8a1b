// The Step LFO's editors: a row of step values, the DAC bit weights, and the random register. A drag
// paints values into every step it crosses; each step stays an ordinary host parameter.
#pragma once

#include <string>
#include <vector>

#include "ModuleDisplay.h"
#include "editor/widgets/Control.h"

namespace BR {

// A row of parameters edited by one gesture, drawn as a stepped outline filled to its baseline.
class RowEditor : public ControlBase {
public:
    RowEditor(Manager* manager, std::vector<int32_t> parameters, bool bipolar);
    void Animate() override;
    void Draw() override;
    void MouseDown(Point point, uint32_t modifiers, int32_t clickCount) override;
    void MouseDragged(Point point, uint32_t modifiers) override;
    void MouseUp(Point point, uint32_t modifiers) override;

    // The step under x and the value for y (panel space), both clamped to the row.
    void PointToStep(Point point, int32_t& step, float& value) const;
    // The step playing now, or -1.
    virtual int32_t CurrentStep() const { return -1; }

    std::vector<int32_t> parameters;
    std::vector<float> shownValues, newValues;
    bool bipolar;
    bool dirty = true;
    Point pressPoint;
    float startValue = 0;
    int32_t pressStep = -1, lastStep = -1, shownStep = -1;
    std::vector<int32_t> editedSteps;
    float backgroundColour[4] = {0.5f, 0.5f, 0.5f, 1.0f};
    float fillColour[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    float lineColour[4] = {1.0f, 1.0f, 1.0f, 1.0f};

protected:
    std::vector<float> outline;
};

// Steps `first` to `first` + `count` - 1 (counted from 1) of lane `id`: "Step n L" or "Step n R".
class StepEditor : public RowEditor {
public:
    StepEditor(Manager* manager, int32_t id, int32_t first = 1, int32_t count = 96);
    int32_t CurrentStep() const override;
    int32_t id;
    int32_t first;
};

// The 24 bit weights of lane `id`: "DAC Bit n L" or "DAC Bit n R".
class DACEditor : public RowEditor {
public:
    DACEditor(Manager* manager, int32_t id);
    int32_t id;
};

// One random register of the Step LFO as 48 cells (the module keeps the register itself in
// BR::RandomRegister), edited through property 64152 with payloads of
// {registerId, step, operation}: 3 set by a drag, 2 with Shift, 1 with Control, 0 at the release.
class RandomRegisterEditor : public ControlBase {
public:
    RandomRegisterEditor(Manager* manager, int32_t id);
    void Draw() override;
    void MouseDown(Point point, uint32_t modifiers, int32_t clickCount) override;
    void MouseDragged(Point point, uint32_t modifiers) override;
    void MouseUp(Point point, uint32_t modifiers) override;
    int32_t StepAt(Point point) const;
    void Write(int32_t step, int32_t operation);

    int32_t id;
    int32_t pressStep = -1, lastStep = -1;
    float backgroundColour[4] = {0.5f, 0.5f, 0.5f, 1.0f};
    float fillColour[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    float lineColour[4] = {1.0f, 1.0f, 1.0f, 1.0f};
};

}  // namespace BR
