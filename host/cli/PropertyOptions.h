// Properties set from the command line and from patches before a render: "ID" with no payload (the
// command properties, such as 64090), "ID=INTEGER" with a 32-bit integer, "ID=TEXT" with a
// zero-terminated text.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/HostDriver.h"

namespace BR {

struct PropertySetting {
    enum class Payload { None, Integer, Text };
    uint32_t id = 0;
    Payload payload = Payload::None;
    int32_t integer = 0;
    std::string text;
    std::string source;  // as written on the command line, or the place in a patch file
};

// "64090", "64050=3", "64121=My grid": a value that reads as a whole number from -2^31 to 2^31 - 1 is
// an integer, any other value (the empty one too) a text. Throws UsageError led by `what`.
PropertySetting ParsePropertySetting(const std::string& text, const std::string& what);

// The bytes SetProperty receives: none, four (little-endian int32), or the text and its terminator.
std::vector<uint8_t> PropertyPayload(const PropertySetting& setting);

// Sets the property and notifies its listeners; throws InputError led by `what` when the module
// refuses it.
void ApplyPropertySetting(HostDriver& driver, const PropertySetting& setting, const std::string& what);

}  // namespace BR
