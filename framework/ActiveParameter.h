// The parameter last touched in any editor, process-wide: what MIDI learn maps the next controller to.
#pragma once

#include <cstdint>

class BrelCorvaneBase;

namespace BR {

// Instance and table index; null and -1 before any. Kept under the instance registry's lock.
void SetActiveParameter(BrelCorvaneBase* instance, int32_t tableIndex);
void GetActiveParameter(BrelCorvaneBase*& instance, int32_t& tableIndex);

}  // namespace BR
