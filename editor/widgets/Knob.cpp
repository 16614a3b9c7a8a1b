// The knob gesture: vertical drags at 0.005 per pixel (0.0005 with Shift), double and Control clicks to
// the default or zero, two-state knobs that flip on a click, and whole steps for integer parameters.
#include "Knob.h"

#include <algorithm>
#include <cmath>

#include "ArcKnobRenderer.h"

namespace BR {

void Knob::MouseDown(Point point, uint32_t modifiers, int32_t clickCount) {
    const bool control = (modifiers & kModControl) != 0;
    if (control && clickCount == 2) {
        SetValue(0.0f);
    } else if (control || clickCount == 2) {
        SetValue(info.defaultValue);
    } else if (isInteger && info.minimum == 0 && info.maximum == 1) {
        SetValue(1.0f - Value());
    }
    normalised = ValueToNormalised(info, Value());
    pressPoint = point;
    startValue = normalised;
    manager->BeginParameterEdit(parameter);
}

void Knob::MouseDragged(Point point, uint32_t modifiers) {
    const float sensitivity = (modifiers & kModShift) ? 0.0005f : 0.005f;
    float n = std::clamp(startValue + (point.y - pressPoint.y) * sensitivity, 0.0f, 1.0f);
    if ((modifiers & kModControl) || isInteger) n = Snap(n);
    normalised = n;
    SetValue(NormalisedToValue(info, n));
}

ArcKnob::ArcKnob(Manager* manager, int32_t parameter, ArcKnobRenderer* renderer_)
    : Knob(manager, parameter), renderer(renderer_) {
    if (renderer) slot = renderer->AddKnob(this);
}

void ArcKnob::Animate() {
    Knob::Animate();
    const float target = hovered ? 1.0f : 0.0f;
    highlight += (target - highlight) * 0.3f;
    if (std::fabs(target - highlight) < 0.003921569f) highlight = target;
}

void ArcKnob::CreateGLResources() {
    if (!renderer || slot < 0) return;
    const Point offset = ParentOffset();
    ArcKnobRenderer::Slot& s = renderer->slots[size_t(slot)];
    s.x = rect[0] + offset.x;
    s.y = rect[1] + offset.y;
    s.size = std::min(Width(), Height());
}

}  // namespace BR
