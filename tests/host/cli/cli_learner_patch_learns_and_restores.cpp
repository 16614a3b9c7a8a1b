// In one patch a controller arriving at one DC is learned onto a parameter of another and drives it,
// and every change reaches an OSC listener on loopback in the "Long" form. The states that the live
// run saves carry the mapping: an offline patch restored from them is driven without learning.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/cli/WavFile.h"
#include "tests/modules/events/LearnerRig.h"
#include "tests/support/RunCommand.h"

namespace {
constexpr int kPort = 7640;

std::string PatchText(const std::string& events, const std::string& learnerExtra) {
    return R"({
  "rate": 48000, "block": 256, "seconds": 0.5,
  "instances": [
    {"name": "dc", "module": "dc", "state": "dc.state"},
    {"name": "keys", "module": "dc", "state": "keys.state", "events": [)" +
           events + R"(]},
    {"name": "learn", "module": "learner", "state": "learn.state", "set": {"Send OSC": "Long"})" +
           learnerExtra + R"(}
  ]
})";
}
}  // namespace

TEST(CliLearner, PatchLearnsAndTheStateKeepsTheMapping) {
    const std::string f = BR::Test::MakeTempFolder();
    BR::Test::UdpListener listener(kPort);
    ASSERT_TRUE(listener.Bound());
    // The destination first, in the Learner's state, so that no message goes elsewhere.
    auto result = BR::Test::RunCorvane(
        "render learner --frames 256 --property 64110=127.0.0.1:" + std::to_string(kPort) + " --state-out " +
        f + "/learn.state --out " + f + "/l.wav");
    ASSERT_EQ(result.status, 0) << result.err;

    // Learning while the patch runs (live, paced by a clock): controller 7 at "keys" onto the first
    // DC's "Output Positive L", value 64 at once and 127 later.
    std::ofstream(f + "/learn.json") << PatchText(
        R"("0:B00740", "9600:B0077F")", R"(, "properties": ["64136=CRDC/1/OutputPositiveL", "64130=1"])");
    result = BR::Test::RunCorvane("live " + f + "/learn.json --driver clock --seconds 0.5");
    ASSERT_EQ(result.status, 0) << result.err;
    auto got = listener.Receive(10, 1000);
    // "Send OSC" itself, then the two values the controller gave.
    ASSERT_EQ(got.size(), 3u);
    EXPECT_EQ(got[0].path, "/brel/CRLearner/1/SendOSC");
    EXPECT_EQ(got[1].path, "/brel/CRDC/1/OutputPositiveL");
    EXPECT_FLOAT_EQ(got[1].value, 64 * 0.007874016f);
    EXPECT_EQ(got[2].path, "/brel/CRDC/1/OutputPositiveL");
    EXPECT_FLOAT_EQ(got[2].value, 1.0f);

    // Offline, from the saved states, with learning off: the controller still drives the parameter.
    std::ofstream(f + "/play.json") << PatchText(R"("12000:B00720")", "");
    result = BR::Test::RunCorvane("patch " + f + "/play.json");
    ASSERT_EQ(result.status, 0) << result.err;
    const BR::AudioData dc = BR::ReadWav(f + "/dc.wav");
    ASSERT_EQ(dc.Frames(), 24000u);
    // The state restored the last value (1.0); 32 arrives at 12000 and holds from the next block on.
    EXPECT_EQ(dc.channels[0][100], 1.0f);
    EXPECT_FLOAT_EQ(dc.channels[0][12288], 32 * 0.007874016f);
    EXPECT_FLOAT_EQ(dc.channels[0][23999], 32 * 0.007874016f);
    const BR::AudioData keys = BR::ReadWav(f + "/keys.wav");
    EXPECT_EQ(keys.channels[0][23999], 0.0f);  // the source itself is untouched
    got = listener.Receive(10, 1000);
    // "Send OSC" from the state, and again from "set"; then the one value the controller gave.
    ASSERT_EQ(got.size(), 3u);
    EXPECT_EQ(got[0].path, "/brel/CRLearner/1/SendOSC");
    EXPECT_EQ(got[1].path, "/brel/CRLearner/1/SendOSC");
    EXPECT_EQ(got[2].path, "/brel/CRDC/1/OutputPositiveL");
    EXPECT_FLOAT_EQ(got[2].value, 32 * 0.007874016f);
    std::filesystem::remove_all(f);
}
