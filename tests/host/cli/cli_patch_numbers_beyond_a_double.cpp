// A patch number that no double holds (1e400, a 400-digit integer) is refused at its place with
// status 2, as is an output that names no file; so is an empty --out on the command line.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/support/RunCommand.h"

namespace {
void ExpectRefused(const std::string& folder, const std::string& json, const std::string& message) {
    std::ofstream(folder + "/p.json") << json;
    const auto result = BR::Test::RunCorvane("patch " + folder + "/p.json");
    EXPECT_EQ(result.status, 2) << json;
    EXPECT_NE(result.err.find("corvane: " + folder + "/p.json: " + message), std::string::npos)
        << json << "\n"
        << result.err;
    EXPECT_EQ(result.err.find("json.exception"), std::string::npos) << result.err;
    EXPECT_FALSE(std::filesystem::exists(folder + "/a.wav")) << json;
}
}  // namespace

TEST(CliPatchNumbers, BeyondADoubleAreRefusedAtTheirPlace) {
    const std::string f = BR::Test::MakeTempFolder();
    const std::string digits(400, '7');
    const std::string shown = std::string(40, '7') + "...";
    const std::string a = R"("instances": [{"name": "a", "module": "dc"}])";
    for (const std::string& number : {std::string("1e400"), std::string("-1e400"), digits}) {
        const std::string text = number.size() > 40 ? shown : number;
        const std::string why = "the number " + text + " lies beyond the range of a double";
        ExpectRefused(f, "{\"rate\": " + number + ", " + a + "}", "rate: " + why);
        ExpectRefused(f, "{\"block\": " + number + ", " + a + "}", "block: " + why);
        ExpectRefused(f, "{\"frames\": " + number + ", " + a + "}", "frames: " + why);
        ExpectRefused(f, "{\"transport\": {\"tempo\": " + number + "}, " + a + "}",
                      "transport.tempo: " + why);
        ExpectRefused(f, "{\"transport\": {\"position\": " + number + "}, " + a + "}",
                      "transport.position: " + why);
        ExpectRefused(f, "{\"transport\": {\"loop\": [0, " + number + "]}, " + a + "}",
                      "transport.loop[1]: " + why);
        ExpectRefused(
            f,
            R"({"instances": [{"name": "a", "module": "dc", "set": {"Output Positive L": )" + number + "}}]}",
            "instances[0].set.Output Positive L: " + why);
    }
    std::filesystem::remove_all(f);
}

TEST(CliPatchNumbers, OutputsMustNameAFile) {
    const std::string f = BR::Test::MakeTempFolder();
    ExpectRefused(f, R"({"frames": 10, "instances": [{"name": "a", "module": "dc", "out": ""}]})",
                  "instances[0].out: must name a file");
    std::filesystem::create_directory(f + "/folder");
    ExpectRefused(f, R"({"frames": 10, "instances": [{"name": "a", "module": "dc", "out": "folder"}]})",
                  "instances[0].out: \"" + f + "/folder\" is a folder, not a file to write");

    auto result = BR::Test::RunCorvane("render dc --frames 10 --out ''");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("--out: must name a file"), std::string::npos) << result.err;
    result = BR::Test::RunCorvane("render dc --frames 10 --out " + f + "/folder");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("--out: \"" + f + "/folder\" is a folder"), std::string::npos) << result.err;
    result = BR::Test::RunCorvane("render dc --frames 10 --out " + f + "/a.wav --state-out " + f +
                                  "/none/s.state");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("--state-out: there is no folder \"" + f + "/none\""), std::string::npos)
        << result.err;
    EXPECT_FALSE(std::filesystem::exists(f + "/a.wav"));
    std::filesystem::remove_all(f);
}
