// Knobs: the vertical-drag gesture with fine adjustment, defaults and whole steps, and the knobs drawn
// by the arc and textured renderers.
#pragma once

#include "Control.h"

namespace BR {

class ArcKnobRenderer;

class Knob : public Control {
public:
    Knob(Manager* manager, int32_t parameter) : Control(manager, parameter) {}
    void MouseDown(Point point, uint32_t modifiers, int32_t clickCount) override;
    void MouseDragged(Point point, uint32_t modifiers) override;

    Point pressPoint;
    float startValue = 0;
};

// A knob of a renderer: it takes a slot there, and the renderer draws it.
class ArcKnob : public Knob {
public:
    ArcKnob(Manager* manager, int32_t parameter, ArcKnobRenderer* renderer);
    void Animate() override;
    void CreateGLResources() override;

    ArcKnobRenderer* renderer;
    int32_t slot = -1;
    float highlight = 0;
    float colour[4] = {0.8f, 0.55f, 0.2f, 1.0f};
};

// The same gesture, drawn as one rotated atlas cell (spinKnobRenderer).
class ZephKnob : public ArcKnob {
public:
    using ArcKnob::ArcKnob;
};

}  // namespace BR
