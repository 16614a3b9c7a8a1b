// A patch of two DC instances, the second fed by the first, renders what the two give one after the
// other: the same as rendering the first alone and the second with its output as input. The feeding
// instance is listed last, so only the dependency order puts it first.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/cli/WavFile.h"
#include "tests/support/RunCommand.h"

TEST(CliPatch, TwoDCInstancesInSeries) {
    const std::string f = BR::Test::MakeTempFolder();
    std::ofstream(f + "/series.json") << R"({
  "rate": 48000, "block": 256, "seconds": 0.5,
  "transport": {"tempo": 120, "position": 0, "playing": true},
  "instances": [
    {"name": "second", "module": "dc", "inputs": ["first:1", "first:0"],
     "set": {"Input Multiply L": 1, "Output Positive L": 0.8, "Input Add R": 1, "Multiplier R": -2,
             "Output Symmetric R": 0.1, "Smoothing R": 5},
     "out": "second.wav"},
    {"name": "first", "module": "dc", "events": ["100:903C64"],
     "set": {"Output Positive L": 0.5, "Smoothing L": 20, "Output Symmetric R": -0.3, "Smoothing R": -10},
     "out": "out/first.wav"}
  ]
})";
    std::filesystem::create_directories(f + "/out");
    auto result = BR::Test::RunCorvane("patch " + f + "/series.json");
    ASSERT_EQ(result.status, 0) << result.err;

    result = BR::Test::RunCorvane(
        "render dc --seconds 0.5 --block 256 --set \"Output Positive L=0.5\" --set \"Smoothing L=20\" "
        "--set \"Output Symmetric R=-0.3\" --set \"Smoothing R=-10\" --out " +
        f + "/a.wav");
    ASSERT_EQ(result.status, 0) << result.err;
    // The second takes the first's channels crossed over: make that input file.
    BR::AudioData a = BR::ReadWav(f + "/a.wav");
    std::swap(a.channels[0], a.channels[1]);
    BR::WriteWav(f + "/crossed.wav", a);
    result = BR::Test::RunCorvane(
        "render dc --seconds 0.5 --block 256 --in " + f +
        "/crossed.wav --set \"Input Multiply L=1\" "
        "--set \"Output Positive L=0.8\" --set \"Input Add R=1\" --set \"Multiplier R=-2\" "
        "--set \"Output Symmetric R=0.1\" --set \"Smoothing R=5\" --out " +
        f + "/b.wav");
    ASSERT_EQ(result.status, 0) << result.err;

    const BR::AudioData first = BR::ReadWav(f + "/out/first.wav");
    const BR::AudioData second = BR::ReadWav(f + "/second.wav");
    const BR::AudioData alone = BR::ReadWav(f + "/a.wav");
    const BR::AudioData after = BR::ReadWav(f + "/b.wav");
    ASSERT_EQ(first.Frames(), 24000u);
    ASSERT_EQ(second.Frames(), 24000u);
    EXPECT_EQ(first.channels, alone.channels);
    EXPECT_EQ(second.channels, after.channels);
    // Not trivially equal: the first rises, and the second follows it.
    EXPECT_NE(first.channels[0][10], first.channels[0][5000]);
    EXPECT_NE(second.channels[1][10], second.channels[1][5000]);
    EXPECT_FLOAT_EQ(second.channels[1][23999], first.channels[0][23999] + 0.1f * -2.0f);
    std::filesystem::remove_all(f);
}

TEST(CliPatch, InputsFromAWavFileAndSilence) {
    const std::string f = BR::Test::MakeTempFolder();
    BR::AudioData source;
    source.sampleRate = 44100;
    source.channels.assign(3, std::vector<float>(300));
    for (size_t i = 0; i < 300; ++i) {
        source.channels[2][i] = float(i) / 300.0f;
        source.channels[0][i] = 0.9f;
    }
    BR::WriteWav(f + "/source.wav", source);
    std::ofstream(f + "/p.json") << R"({"rate": 44100, "frames": 400, "block": 64, "transport": null,
      "instances": [{"name": "m", "module": "dc", "inputs": [null, "source.wav:2"],
                     "set": {"Input Add L": 1, "Input Add R": 1, "Output Positive R": 0.25}}]})";
    auto result = BR::Test::RunCorvane("patch " + f + "/p.json");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.err.find("wrote 400 frames to " + f + "/m.wav"), std::string::npos) << result.err;
    const BR::AudioData out = BR::ReadWav(f + "/m.wav");
    ASSERT_EQ(out.Frames(), 400u);
    EXPECT_EQ(out.sampleRate, 44100);
    for (size_t i = 0; i < 400; ++i) {
        ASSERT_EQ(out.channels[0][i], 0.0f) << i;  // silence in, nothing set
        ASSERT_EQ(out.channels[1][i], 0.25f + (i < 300 ? float(i) / 300.0f : 0.0f))
            << i;  // silent past its end
    }
    std::filesystem::remove_all(f);
}
