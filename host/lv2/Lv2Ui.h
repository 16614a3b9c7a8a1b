// The bundle's editor as an LV2 UI: an X11 window under the host's parent, driven by the host's idle
// calls, reaching the module through instance-access, and reporting the editor's parameter changes
// through port writes so that the host records them as automation.
#pragma once

#include <lv2/ui/ui.h>

#include <cstdint>

namespace BR {

// The UI descriptor for lv2ui_descriptor: index 0, null past it.
const LV2UI_Descriptor* CorvaneUiDescriptor(uint32_t index);

}  // namespace BR
