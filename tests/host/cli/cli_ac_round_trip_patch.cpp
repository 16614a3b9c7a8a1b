// An AC-coupled round trip in a patch: AC Encoder into CV Input "Decoder" recovers a DC step and a
// slow ramp within 1e-6, with no delay, rectified (left) and synchronously demodulated (right), at a
// block size that is odd so the parity must run across blocks.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include "host/cli/WavFile.h"
#include "tests/support/RunCommand.h"

TEST(CliPatch, ACEncoderIntoCVInputDecoderRecoversStepAndRamp) {
    const std::string f = BR::Test::MakeTempFolder();
    const uint32_t frames = 48000;
    BR::AudioData source;
    source.sampleRate = 48000;
    source.channels.assign(2, std::vector<float>(frames));
    for (uint32_t i = 0; i < frames; ++i) {
        source.channels[0][i] = i < 12000 ? 0.2f : 0.7f;   // a step
        source.channels[1][i] = float(i) / float(frames);  // a ramp over one second
    }
    BR::WriteWav(f + "/cv.wav", source);
    std::ofstream(f + "/trip.json") << R"({"rate": 48000, "frames": 48000, "block": 255, "transport": null,
      "instances": [
        {"name": "dec", "module": "cvinput", "inputs": ["enc:0", "enc:1"], "set": {"Bipolar R": true}},
        {"name": "enc", "module": "acencoder", "inputs": ["cv.wav:0", "cv.wav:1"],
         "set": {"Enable L": true, "Enable R": true, "Input Polarity L": "Unipolar",
                 "Input Polarity R": "Unipolar"}}]})";
    const auto result = BR::Test::RunCorvane("patch " + f + "/trip.json");
    ASSERT_EQ(result.status, 0) << result.err;
    const BR::AudioData enc = BR::ReadWav(f + "/enc.wav");
    const BR::AudioData dec = BR::ReadWav(f + "/dec.wav");
    ASSERT_EQ(dec.Frames(), frames);
    // What travels is a carrier with no DC: pairs of samples sum to zero.
    double sum = 0.0;
    for (uint32_t i = 0; i < frames; ++i)
        sum += enc.channels[0][i];
    EXPECT_NEAR(sum, 0.0, 1e-3);
    EXPECT_EQ(enc.channels[0][12001], -0.7f);
    for (int c = 0; c < 2; ++c)
        for (uint32_t i = 0; i < frames; ++i)
            ASSERT_NEAR(dec.channels[size_t(c)][i], source.channels[size_t(c)][i], 1e-6f) << c << " " << i;
    std::filesystem::remove_all(f);
}
