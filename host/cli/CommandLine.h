// Argument parsing shared by the corvane subcommands; a UsageError ends the command with status 2.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace BR {

struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Bad contents of a file the command was given (a patch, a state, a MIDI file): status 2 as well, but
// the message says all, without the usage text.
struct InputError : UsageError {
    using UsageError::UsageError;
};

// Strict number parsing: the whole text must be the number.
double ParseNumber(const std::string& text, const std::string& what);
int64_t ParseInteger(const std::string& text, const std::string& what, int64_t minimum, int64_t maximum);
// "903C64" -> {0x90, 0x3C, 0x64}; at least one byte.
std::vector<uint8_t> ParseHexBytes(const std::string& text, const std::string& what);

// Walks "--name value" pairs; Next() returns false at the end.
class ArgumentCursor {
public:
    ArgumentCursor(int argc, char** argv, int first) : args(argv + first, argv + argc) {}
    bool Next(std::string& option);
    std::string Value(const std::string& option);

private:
    std::vector<std::string> args;
    size_t at = 0;
};

}  // namespace BR
