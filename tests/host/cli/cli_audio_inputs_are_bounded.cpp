// An audio input whose header claims more than 2^28 samples, or more than 64 channels, is refused
// before anything is allocated; one whose header claims more than it holds is refused as truncated
// after reading what there is, block by block. Status 2, in a render and in a patch.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/cli/WavFile.h"
#include "tests/support/RunCommand.h"

namespace {
// A compressed file of no audio whose header claims `frames` frames of one channel at 48 kHz.
void WriteClaimingFile(const std::string& path, uint64_t frames) {
    const uint64_t packed = (uint64_t(48000) << 44) | (uint64_t(15) << 36) | frames;  // 16 bits, mono
    std::string info = {0x10, 0x00, 0x10, 0x00, 0, 0, 0, 0, 0, 0};  // block sizes 4096, frame sizes unknown
    for (int shift = 56; shift >= 0; shift -= 8)
        info += char((packed >> shift) & 0xFF);
    info += std::string(16, '\0');  // no checksum
    std::ofstream(path, std::ios::binary) << "fLaC" << std::string("\x80\x00\x00\x22", 4) << info;
}

void ExpectRefused(const std::string& arguments, const std::string& message, const std::string& written) {
    const auto result = BR::Test::RunCorvane(arguments);
    EXPECT_EQ(result.status, 2) << arguments;
    EXPECT_NE(result.err.find(message), std::string::npos) << arguments << "\n" << result.err;
    EXPECT_FALSE(std::filesystem::exists(written)) << arguments;
}
}  // namespace

TEST(CliAudioInputBounds, HugeClaimsAreRefusedUnread) {
    const std::string f = BR::Test::MakeTempFolder();
    WriteClaimingFile(f + "/huge.wav", uint64_t(1) << 30);
    ExpectRefused("render dc --frames 10 --in " + f + "/huge.wav --out " + f + "/a.wav",
                  "--in: cannot read \"" + f +
                      "/huge.wav\": it claims 1073741824 frames of 1 channels; audio "
                      "inputs may hold at most 268435456 samples (frames times channels)",
                  f + "/a.wav");
    std::ofstream(f + "/p.json")
        << R"({"frames": 10, "instances": [{"name": "a", "module": "dc", "inputs": ["huge.wav:0"]}]})";
    ExpectRefused("patch " + f + "/p.json",
                  "p.json: instances[0].inputs[0]: cannot read \"" + f + "/huge.wav\": it claims",
                  f + "/a.wav");

    WriteClaimingFile(f + "/lies.wav", uint64_t(1) << 27);
    ExpectRefused("render dc --frames 10 --in " + f + "/lies.wav --out " + f + "/a.wav",
                  "file is truncated (0 of the 134217728 frames its header claims)", f + "/a.wav");
    std::filesystem::remove_all(f);
}

TEST(CliAudioInputBounds, ChannelsAreLimitedTo64) {
    const std::string f = BR::Test::MakeTempFolder();
    BR::AudioData wide;
    wide.sampleRate = 48000;
    wide.channels.assign(65, std::vector<float>(10, 0.25f));
    BR::WriteWav(f + "/wide.wav", wide);
    ExpectRefused("render dc --frames 10 --in " + f + "/wide.wav --out " + f + "/a.wav",
                  "it claims 65 channels; audio inputs may have 1 to 64", f + "/a.wav");
    wide.channels.resize(64);
    BR::WriteWav(f + "/ok.wav", wide);
    const BR::AudioData back = BR::ReadWav(f + "/ok.wav");
    ASSERT_EQ(back.channels.size(), 64u);
    EXPECT_EQ(back.channels[63], std::vector<float>(10, 0.25f));
    std::filesystem::remove_all(f);
}

TEST(CliAudioInputBounds, LongInputsAreReadWholeInBlocks) {
    const std::string f = BR::Test::MakeTempFolder();
    BR::AudioData stereo;
    stereo.sampleRate = 48000;
    stereo.channels.assign(2, std::vector<float>(200000));
    for (size_t i = 0; i < 200000; ++i) {
        stereo.channels[0][i] = float(i) / 200000.0f;
        stereo.channels[1][i] = -float(i) / 200000.0f;
    }
    BR::WriteWav(f + "/long.wav", stereo);
    const BR::AudioData back = BR::ReadWav(f + "/long.wav");
    EXPECT_EQ(back.channels, stereo.channels);
    std::filesystem::remove_all(f);
}

TEST(CliAudioInputBounds, OutputsHeldInMemoryAreLimited) {
    const std::string f = BR::Test::MakeTempFolder();
    ExpectRefused(
        "render dc --frames 17179869184 --out " + f + "/a.wav",
        "17179869184 frames of 2 output channels exceed the limit of 268435456 samples held in memory",
        f + "/a.wav");
    ExpectRefused("render dc --rate 768000 --seconds 86400 --out " + f + "/a.wav", "exceed the limit",
                  f + "/a.wav");
    std::ofstream(f + "/p.json")
        << R"({"frames": 100000000, "instances": [{"name": "a", "module": "dc"}, {"name": "b", "module": "dc"}]})";
    ExpectRefused(
        "patch " + f + "/p.json",
        "p.json: frames: 100000000 frames of 4 output channels in all exceed the limit of 268435456",
        f + "/a.wav");
    std::filesystem::remove_all(f);
}
