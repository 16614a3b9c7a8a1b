// Unit texts, value formatting and normalized conversions of the parameter model.
#include "ParameterModel.h"

#include <cmath>
#include <cstdio>

namespace BR {

const char* UnitText(uint32_t unit) {
    switch (unit) {
        case kUnitPercent:
            return "%";
        case kUnitSeconds:
            return "seconds";
        case kUnitFrequency:
            return "Hz";
        case kUnitCents:
            return "cents";
        case kUnitDecibels:
            return "dB";
        case kUnitPan:
            return "L/R";
        case kUnitTempo:
            return "BPM";
        case kUnitBeats:
            return "beats";
        case kUnitMilliseconds:
            return "ms";
        default:
            return "";
    }
}

float NormalizedToValue(const ParameterDefinition& row, float normalized) {
    const float lo = row.minimum, hi = row.maximum;
    if (lo == hi) return lo;
    switch (row.unit) {
        case kUnitFrequency:
            return lo * std::exp(std::log(hi / lo) * normalized);
        case kUnitIndexed:
        case kUnitBeats:
            return std::floor((hi - lo) * normalized + lo + 0.5f);
        default:
            return (hi - lo) * normalized + lo;
    }
}

float ValueToNormalized(const ParameterDefinition& row, float value) {
    const float lo = row.minimum, hi = row.maximum;
    if (lo == hi) return 0.0f;
    if (row.unit == kUnitFrequency) return std::log(value / lo) / std::log(hi / lo);
    return (value - lo) / (hi - lo);
}

void FormatValueNumber(float value, char* out, size_t outSize) {
    if (outSize == 0) return;
    const char* sign = value < 0.0f ? "-" : "";
    const float a = std::fabs(value);
    const char* format = a < 10.0f ? "%s%.3f" : a < 100.0f ? "%s%.2f" : a < 1000.0f ? "%s%.1f" : "%s%.0f";
    std::snprintf(out, outSize, format, sign, double(a));
}

}  // namespace BR
