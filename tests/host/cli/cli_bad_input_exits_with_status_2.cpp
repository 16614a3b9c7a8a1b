// A bad module, option, name or value prints a clear message on standard error and exits with 2.
#include <gtest/gtest.h>

#include "tests/support/RunCommand.h"

namespace {
void ExpectUsageError(const std::string& arguments, const std::string& message) {
    const auto result = BR::Test::RunCorvane(arguments);
    EXPECT_EQ(result.status, 2) << arguments;
    EXPECT_NE(result.err.find(message), std::string::npos) << arguments << "\n" << result.err;
    EXPECT_TRUE(result.out.empty()) << arguments;
}
}  // namespace

TEST(CliBadInput, ExitsWithStatus2AndSaysWhy) {
    ExpectUsageError("render nosuchmodule --frames 10 --out /tmp/x.wav", "unknown module \"nosuchmodule\"");
    ExpectUsageError("render dc --frames 10 --bogus 3", "unknown option \"--bogus\"");
    ExpectUsageError("render dc --frames 10 --set \"No Such Row=1\"", "has no parameter \"No Such Row\"");
    ExpectUsageError("render dc --frames 10 --set \"Output Positive L=abc\"", "\"abc\" is not a number");
    ExpectUsageError("render dc --frames 10 --set \"Output Positive L=2\"", "2 is outside 0..1");
    ExpectUsageError("render dc --frames 10 --set \"Output Positive L\"", "expected \"NAME=VALUE\"");
    ExpectUsageError("render dc --frames -5", "--frames");
    ExpectUsageError("render dc --rate", "--rate needs a value");
    ExpectUsageError("render dc --event 10:9G", "not a hex digit");
    ExpectUsageError("render dc --event 10", "expected FRAME:HEXBYTES");
    ExpectUsageError("render dc --in /nonexistent/in.wav", "--in: cannot read \"/nonexistent/in.wav\"");
    ExpectUsageError("params nosuchmodule", "unknown module");
    ExpectUsageError("frobnicate", "unknown command \"frobnicate\"");
    ExpectUsageError("", "no command given");
    ExpectUsageError("bench --block 0", "--block");
    ExpectUsageError("bench --module nosuchmodule", "--module: no module \"nosuchmodule\"");
}

TEST(CliBadInput, UnbuiltModuleIsNotAvailable) {
    // A catalogue module whose factory does not exist yet in this build is refused, not crashed on.
    const auto result = BR::Test::RunCorvane("list");
    ASSERT_EQ(result.status, 0);
    if (result.out.find("\tcvinput\t") == std::string::npos) {
        ExpectUsageError("render cvinput --frames 10", "is not available in this build");
    }
}
