// Shell runner for command-line tests.
#include "RunCommand.h"

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace BR::Test {

namespace {
std::string Slurp(const std::string& path) {
    std::ifstream in(path);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}
}  // namespace

std::string MakeTempFolder() {
    char pattern[] = "/tmp/corvane-test-XXXXXX";
    const char* folder = mkdtemp(pattern);
    if (!folder) throw std::runtime_error("mkdtemp failed");
    return folder;
}

CommandResult RunCorvane(const std::string& arguments) {
    const char* binary = std::getenv("CORVANE_BINARY");
    if (!binary) throw std::runtime_error("CORVANE_BINARY is not set");
    const std::string folder = MakeTempFolder();
    const std::string command =
        std::string("'") + binary + "' " + arguments + " >" + folder + "/out 2>" + folder + "/err";
    const int raw = std::system(command.c_str());
    CommandResult result;
    result.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    result.out = Slurp(folder + "/out");
    result.err = Slurp(folder + "/err");
    std::system(("rm -rf '" + folder + "'").c_str());
    return result;
}

}  // namespace BR::Test
