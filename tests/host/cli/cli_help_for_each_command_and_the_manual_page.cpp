// Every command answers --help (and `corvane help COMMAND`) on standard output with its usage and the
// exit statuses, status 0; the manual page names every command and the exit statuses, and groff
// reads it without a warning.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "tests/support/RunCommand.h"

namespace {
const char* kCommands[] = {"list",  "params", "render", "edit",       "screenshot",
                           "patch", "live",   "plot",   "midi-ports", "bench"};
}

TEST(CliHelp, EveryCommandAnswersHelp) {
    for (const char* command : kCommands) {
        for (const std::string& form : {std::string(command) + " --help", std::string(command) + " -h",
                                        std::string("help ") + command}) {
            const auto result = BR::Test::RunCorvane(form);
            EXPECT_EQ(result.status, 0) << form;
            EXPECT_EQ(result.out.rfind(std::string("usage: corvane ") + command, 0), 0u)
                << form << ": " << result.out;
            EXPECT_NE(result.out.find("Exit status: 0 done; 1 failed while running"), std::string::npos)
                << form;
            EXPECT_EQ(result.err, "") << form;
        }
    }
    const auto unknown = BR::Test::RunCorvane("help nosuch");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err.rfind("corvane: help: no command \"nosuch\"\n", 0), 0u) << unknown.err;
}

TEST(CliHelp, TheManualPageNamesEveryCommand) {
    const std::string page = std::string(CORVANE_TEST_SOURCE_DIR) + "/docs/corvane.1";
    std::ifstream in(page);
    std::stringstream text;
    text << in.rdbuf();
    for (const char* command : kCommands)
        EXPECT_NE(text.str().find(std::string(".B corvane ") + command), std::string::npos) << command;
    EXPECT_NE(text.str().find(".SH EXIT STATUS"), std::string::npos);
    const std::string check = "groff -man -ww -z '" + page + "' 2>&1";
    FILE* pipe = popen(check.c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    char buffer[512];
    std::string warnings;
    while (fgets(buffer, sizeof buffer, pipe))
        warnings += buffer;
    EXPECT_EQ(pclose(pipe), 0);
    EXPECT_EQ(warnings, "");
}
