// Property settings of the render and patch commands.
#include "PropertyOptions.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "CommandLine.h"

namespace BR {

namespace {

bool ReadsAsInt32(const std::string& text, int32_t& value) {
    if (text.empty()) return false;
    size_t first = text[0] == '-' || text[0] == '+' ? 1 : 0;
    if (first == text.size()) return false;
    for (size_t i = first; i < text.size(); ++i)
        if (text[i] < '0' || text[i] > '9') return false;
    errno = 0;
    const long long number = std::strtoll(text.c_str(), nullptr, 10);
    if (errno == ERANGE || number < INT32_MIN || number > INT32_MAX) return false;
    value = int32_t(number);
    return true;
}

}  // namespace

PropertySetting ParsePropertySetting(const std::string& text, const std::string& what) {
    PropertySetting setting;
    setting.source = text;
    const size_t eq = text.find('=');
    const std::string id = text.substr(0, eq);
    if (id.empty()) throw UsageError(what + " \"" + text + "\": expected ID or ID=VALUE, e.g. 64090");
    setting.id = uint32_t(ParseInteger(id, what + " \"" + text + "\": the id", 0, UINT32_MAX));
    if (eq == std::string::npos) return setting;
    const std::string value = text.substr(eq + 1);
    if (ReadsAsInt32(value, setting.integer)) {
        setting.payload = PropertySetting::Payload::Integer;
    } else {
        setting.payload = PropertySetting::Payload::Text;
        setting.text = value;
    }
    return setting;
}

std::vector<uint8_t> PropertyPayload(const PropertySetting& setting) {
    switch (setting.payload) {
        case PropertySetting::Payload::Integer: {
            const uint32_t bits = uint32_t(setting.integer);
            return {uint8_t(bits), uint8_t(bits >> 8), uint8_t(bits >> 16), uint8_t(bits >> 24)};
        }
        case PropertySetting::Payload::Text: {
            std::vector<uint8_t> bytes(setting.text.begin(), setting.text.end());
            bytes.push_back(0);
            return bytes;
        }
        case PropertySetting::Payload::None:
        default:
            return {};
    }
}

void ApplyPropertySetting(HostDriver& driver, const PropertySetting& setting, const std::string& what) {
    const std::vector<uint8_t> payload = PropertyPayload(setting);
    const int32_t result = driver.Module().SetPropertyAndNotify(
        setting.id, payload.empty() ? nullptr : payload.data(), uint32_t(payload.size()));
    if (result != kNoErr)
        throw InputError(what + ": module \"" + driver.Entry().stem + "\" refuses property " +
                         std::to_string(setting.id) + " (error " + std::to_string(result) + ")");
}

}  // namespace BR
