// render reads module inputs from a WAV (silence where it has fewer channels), honours "Master
// Bypass", takes timed MIDI, and refuses an input at another rate.
#include <gtest/gtest.h>

#include "host/cli/WavFile.h"
#include "tests/support/RunCommand.h"

TEST(CliRenderInput, InputMultiplyUsesTheWavAndMissingChannelsAreSilent) {
    const std::string folder = BR::Test::MakeTempFolder();
    BR::AudioData in;
    in.sampleRate = 48000;
    in.channels.assign(1, std::vector<float>(500));
    for (size_t i = 0; i < 500; ++i)
        in.channels[0][i] = float(i) / 500.0f;
    BR::WriteWav(folder + "/in.wav", in);

    auto result =
        BR::Test::RunCorvane("render dc --in " + folder +
                             "/in.wav --set \"Output Positive L=0.5\" "
                             "--set \"Input Multiply L=1\" --set \"Input Add R=1\" --block 64 --out " +
                             folder + "/out.wav --event 0:903C64 --event 100:F0010203F7");
    ASSERT_EQ(result.status, 0) << result.err;
    BR::AudioData out = BR::ReadWav(folder + "/out.wav");
    ASSERT_EQ(out.Frames(), 500u);  // the input's length
    for (size_t i = 0; i < 500; ++i) {
        ASSERT_FLOAT_EQ(out.channels[0][i], in.channels[0][i] * 0.5f) << i;
        ASSERT_EQ(out.channels[1][i], 0.0f) << i;  // no second input channel: silence
    }

    result = BR::Test::RunCorvane("render dc --in " + folder +
                                  "/in.wav --set \"Output Positive L=0.5\" "
                                  "--set \"Master Bypass=1\" --out " +
                                  folder + "/bypass.wav");
    ASSERT_EQ(result.status, 0) << result.err;
    out = BR::ReadWav(folder + "/bypass.wav");
    for (size_t i = 0; i < 500; ++i)
        ASSERT_EQ(out.channels[0][i], in.channels[0][i]) << i;

    result =
        BR::Test::RunCorvane("render dc --rate 44100 --in " + folder + "/in.wav --out " + folder + "/x.wav");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("pass --rate 48000"), std::string::npos) << result.err;
    std::system(("rm -rf '" + folder + "'").c_str());
}

TEST(CliRenderInput, FramesAndRateSetTheLength) {
    const std::string folder = BR::Test::MakeTempFolder();
    auto result = BR::Test::RunCorvane("render dc --rate 44100 --frames 1234 --out " + folder + "/a.wav");
    ASSERT_EQ(result.status, 0) << result.err;
    BR::AudioData out = BR::ReadWav(folder + "/a.wav");
    EXPECT_EQ(out.sampleRate, 44100);
    EXPECT_EQ(out.Frames(), 1234u);
    result = BR::Test::RunCorvane("render dc --seconds 0.5 --block 2048 --out " + folder + "/b.wav");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(BR::ReadWav(folder + "/b.wav").Frames(), 24000u);
    std::system(("rm -rf '" + folder + "'").c_str());
}
