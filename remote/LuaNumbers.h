// Numbers from scripts and packets turned into 32-bit integers without undefined behaviour.
#pragma once

#include <cstdint>

namespace BR {

// Truncated toward zero and held at the ends of the range; NaN gives 0. A plain conversion of a value
// outside the range, which any script or sender can pass, is undefined.
inline int32_t SaturatedInt32(double value) {
    if (!(value == value)) return 0;
    if (value >= 2147483647.0) return INT32_MAX;
    if (value <= -2147483648.0) return INT32_MIN;
    return int32_t(value);
}

}  // namespace BR
