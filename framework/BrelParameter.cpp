// The host-side parameter object.
#include "BrelParameter.h"

#include <algorithm>
#include <cstdio>

namespace BR {

Parameter::Parameter(std::string identifier_, std::string name_, Kind kind_, float minimum_, float maximum_,
                     float defaultValue_)
    : identifier(std::move(identifier_)),
      name(std::move(name_)),
      kind(kind_),
      minimum(minimum_),
      maximum(maximum_),
      defaultValue(defaultValue_),
      value(defaultValue_) {}

void Parameter::SetValue(float newValue) {
    if (kind == Kind::Boolean) {
        newValue = newValue != 0.0f ? 1.0f : 0.0f;
    } else if (!(newValue >= minimum)) {  // NaN lands on the minimum as well
        newValue = minimum;
    } else if (newValue > maximum) {
        newValue = maximum;
    }
    value.store(newValue, std::memory_order_relaxed);
}

double Parameter::GetNormalizedValue() const {
    return Normalize(GetValueAsFloat(), minimum, maximum);
}

float Parameter::ValueFromNormalized(double normalized) const {
    normalized = std::clamp(normalized, 0.0, 1.0);
    if (kind == Kind::Boolean) return normalized >= 0.5 ? 1.0f : 0.0f;
    return float(double(minimum) + (double(maximum) - double(minimum)) * normalized);
}

std::string Parameter::ValueString() const {
    if (kind == Kind::Boolean) return GetValueAsBool() ? "on" : "bypass";
    char text[64];
    std::snprintf(text, sizeof text, "%.2f", double(GetValueAsFloat()));
    return text;
}

}  // namespace BR
