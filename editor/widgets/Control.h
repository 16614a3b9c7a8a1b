// The base of the controls: a parameter's copy of its range and unit, the value mapping, and the
// default press, release and hover behaviour.
#pragma once

#include "editor/Manager.h"
#include "editor/UIElement.h"

namespace BR {

class ControlBase : public UIElement {
public:
    explicit ControlBase(Manager* manager) : UIElement(manager) {}
    // Both edges belong to the control.
    UIElement* HitTest(Point point) override;
    uint8_t isInteger = 0;
};

// The value mapping of a parameter between its range and the 0-to-1 position of a control.
float ValueToNormalised(const ParameterUiInfo& info, float value);
float NormalisedToValue(const ParameterUiInfo& info, float normalised);
// Integer units: indexed, boolean, MIDI note, beats.
bool IsIntegerUnit(uint32_t unit);

class Control : public ControlBase {
public:
    Control(Manager* manager, int32_t parameter);
    void Animate() override;
    void MouseDown(Point point, uint32_t modifiers, int32_t clickCount) override;
    void MouseUp(Point point, uint32_t modifiers) override;
    void MouseEnter() override;
    void MouseExit() override;

    // Reads the parameter's value.
    float Value() const;
    // Writes a value, clamped to the range.
    void SetValue(float value);
    // Whole steps: (max - min) × n + min, plus a half, floored, and back.
    float Snap(float n) const;

    int32_t parameter;
    ParameterUiInfo info;
    float normalised = 0;
    bool hovered = false;
};

}  // namespace BR
