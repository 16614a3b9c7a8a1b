// Strict parsing of numbers, hex bytes and options.
#include "CommandLine.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>

namespace BR {

double ParseNumber(const std::string& text, const std::string& what) {
    errno = 0;
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (text.empty() || end != text.c_str() + text.size() || errno == ERANGE || !std::isfinite(value))
        throw UsageError(what + ": \"" + text + "\" is not a number");
    return value;
}

int64_t ParseInteger(const std::string& text, const std::string& what, int64_t minimum, int64_t maximum) {
    errno = 0;
    char* end = nullptr;
    const long long value = std::strtoll(text.c_str(), &end, 10);
    if (text.empty() || end != text.c_str() + text.size() || errno == ERANGE)
        throw UsageError(what + ": \"" + text + "\" is not a whole number");
    if (value < minimum || value > maximum)
        throw UsageError(what + ": " + text + " is outside " + std::to_string(minimum) + ".." +
                         std::to_string(maximum));
    return value;
}

std::vector<uint8_t> ParseHexBytes(const std::string& text, const std::string& what) {
    if (text.empty() || text.size() % 2 != 0)
        throw UsageError(what + ": \"" + text + "\" is not an even number of hex digits");
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < text.size(); i += 2) {
        auto digit = [&](char c) -> int {
            if (c >= '0' && c <= '9') return c - '0';
            if (c >= 'a' && c <= 'f') return c - 'a' + 10;
            if (c >= 'A' && c <= 'F') return c - 'A' + 10;
            throw UsageError(what + ": \"" + text + "\" holds a character that is not a hex digit");
        };
        bytes.push_back(uint8_t(digit(text[i]) * 16 + digit(text[i + 1])));
    }
    return bytes;
}

bool ArgumentCursor::Next(std::string& option) {
    if (at >= args.size()) return false;
    option = args[at++];
    return true;
}

std::string ArgumentCursor::Value(const std::string& option) {
    if (at >= args.size()) throw UsageError(option + " needs a value");
    return args[at++];
}

}  // namespace BR
