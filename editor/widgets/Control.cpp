// Value mapping between a parameter's range and a control's position, and the default control gestures.
#include "Control.h"

#include <cmath>

#include "framework/ParameterDefinition.h"

namespace BR {

bool IsIntegerUnit(uint32_t unit) {
    return unit == 1 || unit == 2 || unit == 11 || unit == 23;
}

float ValueToNormalised(const ParameterUiInfo& info, float value) {
    if (info.maximum == info.minimum) return info.minimum;
    if (info.unit == kUnitFrequency)
        return float(std::log(double(value) / info.minimum) / std::log(double(info.maximum) / info.minimum));
    return (value - info.minimum) / (info.maximum - info.minimum);
}

float NormalisedToValue(const ParameterUiInfo& info, float n) {
    if (info.unit == kUnitIndexed || info.unit == kUnitBeats)
        return std::floor((info.maximum - info.minimum) * n + info.minimum + 0.5f);
    if (info.unit == kUnitFrequency)
        return float(info.minimum * std::exp(std::log(double(info.maximum) / info.minimum) * n));
    return (info.maximum - info.minimum) * n + info.minimum;
}

UIElement* ControlBase::HitTest(Point point) {
    if (!visible) return nullptr;
    return point.x >= rect[0] && point.x <= rect[3] && point.y >= rect[1] && point.y <= rect[4] ? this
                                                                                                : nullptr;
}

Control::Control(Manager* manager, int32_t parameter_) : ControlBase(manager), parameter(parameter_), info{} {
    if (manager && parameter >= 0 && parameter < manager->NumParameters())
        info = manager->ParameterInfo(parameter);
    isInteger = IsIntegerUnit(info.unit) ? 1 : 0;
}

float Control::Value() const {
    return manager->GetParameterValue(parameter);
}

void Control::SetValue(float value) {
    manager->SetParameterValue(parameter, value);
}

float Control::Snap(float n) const {
    const float range = info.maximum - info.minimum;
    if (range == 0) return n;
    const float whole = std::floor(range * n + info.minimum + 0.5f);
    return (whole - info.minimum) / range;
}

void Control::Animate() {
    normalised = ValueToNormalised(info, Value());
}

void Control::MouseDown(Point, uint32_t, int32_t) {
    manager->BeginParameterEdit(parameter);
}

void Control::MouseUp(Point, uint32_t) {
    if (manager->editedParameter == parameter) manager->EndParameterEdit(parameter);
}

void Control::MouseEnter() {
    hovered = true;
    manager->hoveredParameter = parameter;
    manager->tooltipElement = this;
}

void Control::MouseExit() {
    hovered = false;
    if (manager->hoveredParameter == parameter) manager->hoveredParameter = -1;
}

}  // namespace BR
