// Moving property values in and out of the untyped buffers of GetProperty, and handing out the
// counted value-name lists of indexed rows.
#pragma once

#include <cstring>

#include "BrelTypes.h"

namespace BR {

// Writes `value` into a property read's buffer.
template <class T>
int32_t PutProperty(void* data, T value) {
    if (!data) return kErrInvalidProperty;
    std::memcpy(data, &value, sizeof value);
    return kNoErr;
}

// Gives the caller one reference to a list a module built once.
inline int32_t HandOutValueStrings(CountedTextList* list, CountedTextList** out) {
    if (!list || !out) return kErrInvalidParameter;
    list->Retain();
    *out = list;
    return kNoErr;
}

}  // namespace BR
