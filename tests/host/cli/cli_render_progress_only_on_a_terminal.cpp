// A render longer than five seconds shows its progress on standard error when that is a terminal
// (a pseudo-terminal here), ending at 100 %; with standard error in a file, or for a short render,
// there is none.
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/support/RunCommand.h"

namespace {

// Runs the command with its standard error (and output) on a pseudo-terminal; returns what it wrote.
std::string OnATerminal(const std::vector<std::string>& arguments, int& status) {
    int master = -1;
    const pid_t child = forkpty(&master, nullptr, nullptr, nullptr);
    if (child == 0) {
        std::vector<char*> argv;
        for (const std::string& a : arguments)
            argv.push_back(const_cast<char*>(a.c_str()));
        argv.push_back(nullptr);
        execv(argv[0], argv.data());
        _exit(127);
    }
    std::string text;
    char buffer[4096];
    for (;;) {
        const ssize_t n = read(master, buffer, sizeof buffer);
        if (n <= 0) break;  // EIO once the child has closed the terminal
        text.append(buffer, size_t(n));
    }
    close(master);
    waitpid(child, &status, 0);
    return text;
}

}  // namespace

TEST(CliProgress, OnlyOnATerminalAndOnlyForLongRenders) {
    const char* binary = std::getenv("CORVANE_BINARY");
    ASSERT_NE(binary, nullptr);
    const std::string f = BR::Test::MakeTempFolder();
    int status = -1;
    std::string text =
        OnATerminal({binary, "render", "dc", "--seconds", "12", "--out", f + "/long.wav"}, status);
    EXPECT_EQ(status, 0) << text;
    EXPECT_NE(text.find("\rcorvane: rendering 100% (12.0 of 12.0 s)\r\n"), std::string::npos) << text;

    text = OnATerminal({binary, "patch", f + "/p.json"}, status);  // no file yet: an error, no progress
    EXPECT_EQ(text.find("rendering"), std::string::npos) << text;
    std::ofstream(f + "/p.json")
        << R"({"seconds": 6, "instances": [{"name": "d", "module": "dc", "out": "d.wav"}]})";
    text = OnATerminal({binary, "patch", f + "/p.json"}, status);
    EXPECT_EQ(status, 0) << text;
    EXPECT_NE(text.find("\rcorvane: rendering 100% (6.0 of 6.0 s)\r\n"), std::string::npos) << text;

    text = OnATerminal({binary, "render", "dc", "--seconds", "5", "--out", f + "/short.wav"}, status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(text.find("rendering"), std::string::npos) << text;

    const auto piped = BR::Test::RunCorvane("render dc --seconds 12 --out " + f + "/piped.wav");
    EXPECT_EQ(piped.status, 0);
    EXPECT_EQ(piped.err, "corvane: wrote 576000 frames to " + f + "/piped.wav\n");
    std::filesystem::remove_all(f);
}
