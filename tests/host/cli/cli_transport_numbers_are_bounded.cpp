// Transport numbers are checked where they enter: tempo from 1 to 999 BPM, positions and loop points
// within -1e9..1e9 quarter notes, on the command line and in a patch, refused with status 2.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/support/RunCommand.h"

namespace {
void ExpectRefused(const std::string& arguments, const std::string& message, const std::string& written) {
    const auto result = BR::Test::RunCorvane(arguments);
    EXPECT_EQ(result.status, 2) << arguments;
    EXPECT_NE(result.err.find(message), std::string::npos) << arguments << "\n" << result.err;
    EXPECT_FALSE(std::filesystem::exists(written)) << arguments;
}
}  // namespace

TEST(CliTransportBounds, RenderOptions) {
    const std::string f = BR::Test::MakeTempFolder();
    const std::string out = " --frames 100 --out " + f + "/a.wav";
    ExpectRefused("render dc --loop -1e300:1e300" + out,
                  "--loop start: -1e300 is outside -1e9..1e9 quarter notes", f + "/a.wav");
    ExpectRefused("render dc --loop 0:2e9" + out, "--loop end: 2e9 is outside -1e9..1e9", f + "/a.wav");
    ExpectRefused("render dc --position 1e300" + out, "--position: 1e300 is outside", f + "/a.wav");
    ExpectRefused("render dc --tempo 1e-300 --loop 0:1" + out, "--tempo: must lie from 1 to 999 BPM",
                  f + "/a.wav");
    ExpectRefused("render dc --tempo 1000" + out, "--tempo: must lie from 1 to 999 BPM", f + "/a.wav");
    const auto edge = BR::Test::RunCorvane("render dc --tempo 1 --position -1e9 --loop -1e9:1e9" + out);
    EXPECT_EQ(edge.status, 0) << edge.err;
    std::filesystem::remove_all(f);
}

TEST(CliTransportBounds, PatchTransport) {
    const std::string f = BR::Test::MakeTempFolder();
    auto patch = [&](const std::string& transport) {
        std::ofstream(f + "/p.json") << R"({"frames": 100, "transport": )" << transport
                                     << R"(, "instances": [{"name": "a", "module": "dc"}]})";
        return "patch " + f + "/p.json";
    };
    ExpectRefused(patch(R"({"tempo": 1e-300, "loop": [0, 1]})"),
                  "p.json: transport.tempo: 1e-300 is outside 1..999", f + "/a.wav");
    ExpectRefused(patch(R"({"loop": [-1e300, 1e300]})"),
                  "p.json: transport.loop[0]: -1e+300 is outside -1e+09..1e+09", f + "/a.wav");
    ExpectRefused(patch(R"({"position": 1e10})"),
                  "p.json: transport.position: 1e+10 is outside -1e+09..1e+09", f + "/a.wav");
    const auto edge = BR::Test::RunCorvane(patch(R"({"tempo": 1, "position": 1e9, "loop": [-1e9, 1e9]})"));
    EXPECT_EQ(edge.status, 0) << edge.err;
    std::filesystem::remove_all(f);
}
