// corvane render of the sequencing modules: a Step LFO lane locked to the simulated transport changes
// step every sixteenth note, and a Trigger pulse starts on the frame of its note.
#include <gtest/gtest.h>

#include "host/cli/WavFile.h"
#include "tests/support/RunCommand.h"

TEST(CliRenderSequencing, StepLFOFollowsTheTransport) {
    const std::string folder = BR::Test::MakeTempFolder();
    const std::string wav = folder + "/steplfo.wav";
    const auto result = BR::Test::RunCorvane(
        "render steplfo --set \"Sync L=Transport\" --set \"Beat Divisor L=1/16\" --set \"Step 2 L=0.5\" "
        "--set \"Step 3 L=-0.25\" --tempo 120 --frames 18000 --out " +
        wav);
    ASSERT_EQ(result.status, 0) << result.err;
    const BR::AudioData audio = BR::ReadWav(wav);
    ASSERT_EQ(audio.channels.size(), 2u);
    ASSERT_EQ(audio.Frames(), 18000u);
    // 120 BPM at 48 kHz: a sixteenth is 6000 frames.
    for (size_t i = 0; i < 18000; ++i) {
        const float expected = i < 6000 ? 0.0f : i < 12000 ? 0.5f : -0.25f;
        ASSERT_EQ(audio.channels[0][i], expected) << i;
    }
    std::system(("rm -rf '" + folder + "'").c_str());
}

TEST(CliRenderSequencing, TriggerPulseOnItsNote) {
    const std::string folder = BR::Test::MakeTempFolder();
    const std::string wav = folder + "/trigger.wav";
    const auto result = BR::Test::RunCorvane(
        "render trigger --set \"Output Mode=Trigger\" --set \"Trigger Length=1\" --event 1000:903C64 "
        "--frames 2000 --out " +
        wav);
    ASSERT_EQ(result.status, 0) << result.err;
    const BR::AudioData audio = BR::ReadWav(wav);
    ASSERT_EQ(audio.channels.size(), 1u);
    for (size_t i = 0; i < 2000; ++i)
        ASSERT_EQ(audio.channels[0][i], i >= 1000 && i < 1048 ? 1.0f : 0.0f) << i;
    std::system(("rm -rf '" + folder + "'").c_str());
}
