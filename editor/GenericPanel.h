// A plain panel for a module that has no panel script yet: every parameter of its table in a grid, as a
// knob with its value field, a drop-down for rows with value names, or a button for a boolean.
#pragma once

#include "Manager.h"

namespace BR {

// Sets the design size, banner and colours, and adds the controls to the root group.
void BuildGenericPanel(Manager& manager);

}  // namespace BR
