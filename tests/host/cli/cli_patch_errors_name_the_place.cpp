// A patch with an unknown module or name, a loop of instances, a missing file or a bad value is
// refused with status 2 and a message that names the file and the place in it.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/cli/WavFile.h"
#include "tests/support/RunCommand.h"

namespace {
void ExpectRefused(const std::string& folder, const std::string& json, const std::string& message) {
    std::ofstream(folder + "/bad.json") << json;
    const auto result = BR::Test::RunCorvane("patch " + folder + "/bad.json");
    EXPECT_EQ(result.status, 2) << json;
    EXPECT_NE(result.err.find("corvane: " + folder + "/bad.json: " + message), std::string::npos)
        << json << "\n"
        << result.err;
    EXPECT_EQ(result.err.find("usage:"), std::string::npos) << result.err;
    EXPECT_FALSE(std::filesystem::exists(folder + "/a.wav")) << json;
}
}  // namespace

TEST(CliPatchErrors, NameThePlace) {
    const std::string f = BR::Test::MakeTempFolder();
    BR::AudioData mono;
    mono.sampleRate = 48000;
    mono.channels.assign(1, std::vector<float>(10, 0.5f));
    BR::WriteWav(f + "/mono.wav", mono);
    mono.sampleRate = 44100;
    BR::WriteWav(f + "/slow.wav", mono);
    std::ofstream(f + "/junk.state") << "junk";

    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc"}, {"name": "b", "module": "nosuch"}]})",
                  "instances[1].module: unknown module \"nosuch\"");
    ExpectRefused(
        f, R"({"instances": [{"name": "a", "module": "dc", "inputs": [null, "c:0"]}]})",
        "instances[0].inputs[1]: \"c:0\": no instance is named \"c\", and there is no file \"" + f + "/c\"");
    ExpectRefused(f,
                  R"({"instances": [{"name": "a", "module": "dc", "inputs": ["b:0"]},
                                    {"name": "b", "module": "dc", "inputs": [null, "c:1"]},
                                    {"name": "c", "module": "dc", "inputs": ["a:0"]}]})",
                  "instances[2].inputs[0]: \"a:0\" closes a loop: a <- b <- c <- a");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc", "inputs": ["a:1"]}]})",
                  "instances[0].inputs[0]: \"a:1\" closes a loop: a <- a");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc", "midi": "none.mid"}]})",
                  "instances[0].midi: cannot read \"" + f + "/none.mid\": no such file");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc", "state": "none.state"}]})",
                  "instances[0].state: cannot read \"" + f + "/none.state\"");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc", "state": "junk.state"}]})",
                  "instances[0].state: \"" + f + "/junk.state\" is refused: not a Corvane state file");
    ExpectRefused(
        f,
        R"({"instances": [{"name": "a", "module": "dc"}, {"name": "b", "module": "dc", "inputs": ["a:2"]}]})",
        "instances[1].inputs[0]: \"a:2\": instance \"a\" (DC) has 2 outputs, numbered from 0");
    ExpectRefused(
        f, R"({"instances": [{"name": "a", "module": "dc", "inputs": ["mono.wav:1"]}]})",
        "instances[0].inputs[0]: \"mono.wav:1\": \"" + f + "/mono.wav\" has 1 channels, numbered from 0");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc", "inputs": ["slow.wav:0"]}]})",
                  "instances[0].inputs[0]: \"" + f + "/slow.wav\" runs at 44100 Hz, the patch at 48000 Hz");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc", "inputs": [null, null, null]}]})",
                  "instances[0].inputs: lists 3 sources, but DC has 2 inputs");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc", "inputs": ["mono.wav"]}]})",
                  "instances[0].inputs[0]: \"mono.wav\": expected \"INSTANCE:CHANNEL\"");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc", "inputs": [3]}]})",
                  "instances[0].inputs[0]: expected a string");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc"}, {"name": "a", "module": "dc"}]})",
                  "instances[1].name: \"a\" names another instance already");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc", "sett": {}}]})",
                  "instances[0].sett: unknown key; expected one of name, module, set, properties, midi, "
                  "events, inputs, state, calibration, scripts, out");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc", "set": {"Output Positive L": 2}}]})",
                  "instances[0].set.\"Output Positive L\": 2 is outside 0..1");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc", "set": {"Volume": 1}}]})",
                  "instances[0].set.\"Volume\": module \"dc\" has no parameter \"Volume\"");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc", "events": ["10:9G"]}]})",
                  "instances[0].events[0]: event bytes: \"9G\"");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc"}], "rate": "fast"})",
                  "rate: expected a number");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc"}], "block": 0})",
                  "block: 0 is outside 1..");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc"}], "transport": {"tempo": 0}})",
                  "transport.tempo: 0 is outside 1..999");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc"}], "transport": {"meter": "6-8"}})",
                  "transport.meter: \"6-8\": expected N/D");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc"}], "transport": {"loop": [2, 1]}})",
                  "transport.loop: the end must lie after the start");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc"},)",
                  "not valid JSON: parse error at line 1");
    ExpectRefused(f, R"({"instances": []})", "instances: expected a non-empty array");
    ExpectRefused(f, R"({"rate": 48000})", "instances: missing");
    ExpectRefused(f, R"([1, 2])", "expected an object");
    ExpectRefused(
        f, R"({"instances": [{"name": "a", "module": "dc"}, {"name": "b", "module": "dc", "out": "a.wav"}]})",
        "instances[1].out: \"" + f + "/a.wav\" is written by instances[0] already");
    ExpectRefused(f, R"({"instances": [{"name": "a", "module": "dc", "out": "no/such/a.wav"}]})",
                  "instances[0].out: there is no folder \"" + f + "/no/such\"");

    const auto result = BR::Test::RunCorvane("patch " + f + "/none.json");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find(f + "/none.json: cannot read the file"), std::string::npos) << result.err;
    std::filesystem::remove_all(f);
}
