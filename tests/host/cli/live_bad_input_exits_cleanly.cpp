// `corvane live` refuses bad input with one clear line and status 2, before anything runs: a patch
// that is missing, malformed, names an unknown module or a bad mode, and an --edit that names no
// instance. A state file already there is left as it was.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/support/RunCommand.h"

using BR::Test::RunCorvane;

namespace {
std::string Read(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}
}  // namespace

TEST(LiveBadInput, MissingPatch) {
    const std::string f = BR::Test::MakeTempFolder();
    const auto result = RunCorvane("live " + f + "/nothing.json --driver clock --seconds 1");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find(f + "/nothing.json"), std::string::npos) << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    std::filesystem::remove_all(f);
}

TEST(LiveBadInput, MalformedPatchLeavesTheStateAlone) {
    const std::string f = BR::Test::MakeTempFolder();
    ASSERT_EQ(RunCorvane("render dc --frames 256 --set \"Output Positive L=0.5\" --state-out " + f +
                         "/d.state --out " + f + "/d.wav")
                  .status,
              0);
    const std::string before = Read(f + "/d.state");
    std::ofstream(f + "/p.json") << R"({"instances": [{"name": "d", "module": "dc", "state": "d.state"},)";
    auto result = RunCorvane("live " + f + "/p.json --driver clock --seconds 1");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err.rfind("corvane: " + f + "/p.json: ", 0), 0u) << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    std::ofstream(f + "/p.json")
        << R"({"instances": [{"name": "d", "module": "nosuch", "state": "d.state"}]})";
    result = RunCorvane("live " + f + "/p.json --driver clock --seconds 1");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "corvane: " + f +
                  "/p.json: instances[0].module: unknown module \"nosuch\"; \"corvane list\" shows the "
                  "modules\n");
    EXPECT_EQ(Read(f + "/d.state"), before);
    std::filesystem::remove_all(f);
}

TEST(LiveBadInput, EditNamesNoInstance) {
    const std::string f = BR::Test::MakeTempFolder();
    std::ofstream(f + "/p.json") << R"({"instances": [{"name": "d", "module": "dc"}]})";
    const auto result = RunCorvane("live " + f + "/p.json --driver clock --seconds 1 --edit e");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err.rfind("corvane: --edit: the patch has no instance \"e\"\n", 0), 0u) << result.err;
    std::filesystem::remove_all(f);
}
