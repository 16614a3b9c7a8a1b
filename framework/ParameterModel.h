// Unit texts, value texts and the editor's normalized conversions of parameter rows.
#pragma once

#include <cstddef>

#include "ParameterDefinition.h"

namespace BR {

// Text shown behind a value of the unit, or "" for units that show none.
const char* UnitText(uint32_t unit);

// Editor-side mapping between 0..1 and a row's range: logarithmic for frequency, rounded for
// indexed rows and beats, linear otherwise. A row with minimum == maximum always gives the minimum.
float NormalizedToValue(const ParameterDefinition& row, float normalized);
float ValueToNormalized(const ParameterDefinition& row, float value);

// Formats a plain number for a value text: sign first, then "%.3f" below 10, "%.2f" below 100,
// "%.1f" below 1000, "%.0f" above. Writes at most outSize bytes including the terminator.
void FormatValueNumber(float value, char* out, size_t outSize);

// Longest text a value text may copy from a list or display string; longer texts fall back.
constexpr size_t kMaxValueTextLength = 23;
constexpr size_t kValueTextBytes = 25;

}  // namespace BR
