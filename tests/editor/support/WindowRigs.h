// Editor windows around real modules for the tests that run under Xvfb.
#pragma once

#include <memory>
#include <string>

#include "EditorRig.h"
#include "tests/support/ProbeModule.h"
#include "tests/support/Render.h"

namespace BR::Test {

inline int32_t TableIndex(BrelCorvaneBase& module, const std::string& name) {
    for (int32_t i = 0; i < module.NumTableParameters(); ++i)
        if (name == module.ParameterTable()[i].name) return i;
    return -1;
}

// DC in a window: the knob and field on "Output Positive L", the second knob on "Multiplier L".
struct DCWindow {
    DCWindow()
        : driver(MakeDriver("dc")),
          level(TableIndex(driver->Module(), "Output Positive L")),
          multiplier(TableIndex(driver->Module(), "Multiplier L")),
          rig(std::make_unique<EditorWindowRig>(driver->Module(), level, multiplier, -1)) {}
    float Value(int32_t parameter) const { return driver->Module().GetTableValue(parameter); }
    void Centre(UIElement* element, int& x, int& y) { WindowCentre(*rig->manager, element, x, y); }

    std::unique_ptr<HostDriver> driver;
    int32_t level, multiplier;
    std::unique_ptr<EditorWindowRig> rig;
};

}  // namespace BR::Test
