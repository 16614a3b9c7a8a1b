// A manager with the test panel and no window: the platform's input calls are made directly, as the
// window thread would make them, and the module's parameters are read back.
#pragma once

#include <memory>

#include "EditorRig.h"
#include "tests/support/ProbeModule.h"
#include "tests/support/Render.h"

namespace BR::Test {

// DC: the knob on "Output Positive L" (0 to 1), the second knob on "Multiplier L" (-2 to 2, default 1).
struct DCRig {
    DCRig() : driver(MakeDriver("dc")), manager(&driver->Module()) {
        level = manager.FindParameter("Output Positive L");
        multiplier = manager.FindParameter("Multiplier L");
        panel = BuildTestPanel(manager, level, multiplier, -1);
        manager.Animate();
    }
    float Value(int32_t parameter) const { return driver->Module().GetTableValue(parameter); }
    // A press at a control's centre in y-up window space.
    Point Centre(UIElement* element) const {
        const Point offset = element->ParentOffset();
        return Point{(element->rect[0] + element->rect[3]) * 0.5f + offset.x,
                     (element->rect[1] + element->rect[4]) * 0.5f + offset.y};
    }
    void Drag(UIElement* element, float dy, uint32_t modifiers = 0) {
        const Point p = Centre(element);
        manager.MouseDown(p, modifiers, 1, false);
        manager.MouseDragged(Point{p.x, p.y + dy}, modifiers);
        manager.MouseUp(Point{p.x, p.y + dy}, modifiers);
    }

    std::unique_ptr<HostDriver> driver;
    ZPmanager manager;
    int32_t level = -1, multiplier = -1;
    TestPanel panel;
};

// The probe module: "Mode" with three value names, "Switch" boolean, "OSC Port Offset" 0 to 100.
struct ProbeRig {
    ProbeRig() : host(module), manager(&module) {
        panel = BuildTestPanel(manager, kGain, kMode, kMode);
        manager.Animate();
    }
    float Value(int32_t parameter) const { return module.GetTableValue(parameter); }

    ProbeModule module;
    ManualHost host;
    ZPmanager manager;
    TestPanel panel;
};

}  // namespace BR::Test
