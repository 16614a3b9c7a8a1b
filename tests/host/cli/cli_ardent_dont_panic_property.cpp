// "corvane render ardentcontroller --property 64094": Don't Panic posted before the render reaches the
// module's first block, which sends controller 120 on all sixteen channels through the MIDI logic: with
// "MIDI Out MIDI Channel" at "Omni" they leave on the serial line of "Gates 1/1", back to back.
#include <gtest/gtest.h>

#include <filesystem>

#include "host/cli/WavFile.h"
#include "tests/modules/hardware/FrameDecoder.h"
#include "tests/support/RunCommand.h"

TEST(CliArdent, DontPanicPropertySendsAllSoundOff) {
    const std::string folder = BR::Test::MakeTempFolder();
    const auto result = BR::Test::RunCorvane(
        "render ardentcontroller --rate 44100 --frames 1000 --set 'MIDI Out MIDI Channel=Omni'"
        " --property 64094 --out " +
        folder + "/panic.wav");
    ASSERT_EQ(result.status, 0) << result.err;
    const BR::AudioData audio = BR::ReadWav(folder + "/panic.wav");
    const auto frames = BR::Test::Frames(audio.channels[0], audio.channels[1], false);
    const auto received = BR::Test::ReceiveSerial(BR::Test::GateLine(frames, 0), 44100.0);
    std::vector<BR::Test::ReceivedByte> expected;
    for (uint32_t c = 0; c < 16; ++c)
        for (uint32_t k = 0; k < 3; ++k)
            expected.push_back({(3 * c + k) * 15, uint8_t(k == 0 ? 0xB0 | c : k == 1 ? 120 : 0)});
    EXPECT_EQ(received, expected);
    // Without the property the line stays idle.
    const auto quiet = BR::Test::RunCorvane(
        "render ardentcontroller --rate 44100 --frames 1000 --set 'MIDI Out MIDI Channel=Omni'"
        " --out " +
        folder + "/quiet.wav");
    ASSERT_EQ(quiet.status, 0) << quiet.err;
    const BR::AudioData idle = BR::ReadWav(folder + "/quiet.wav");
    EXPECT_TRUE(
        BR::Test::ReceiveSerial(
            BR::Test::GateLine(BR::Test::Frames(idle.channels[0], idle.channels[1], false), 0), 44100.0)
            .empty());
    std::filesystem::remove_all(folder);
}
