// Runs the built corvane command in a shell and captures its exit status and both streams.
#pragma once

#include <string>

namespace BR::Test {

struct CommandResult {
    int status = -1;
    std::string out;
    std::string err;
};

// `arguments` is appended to the corvane binary's path as shell words.
CommandResult RunCorvane(const std::string& arguments);
// A fresh empty folder under the system's temporary folder.
std::string MakeTempFolder();

}  // namespace BR::Test
