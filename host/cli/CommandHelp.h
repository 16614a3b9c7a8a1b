// The text of `corvane COMMAND --help` for each command.
#pragma once

#include <string>

namespace BR {

// Null for a command that has no help text of its own.
const char* CommandHelp(const std::string& command);

}  // namespace BR
