// Sync on a playing transport in "BR Hardware Mode" "Ardent" and "Basalt": the clock and run lines
// land as gate bits and level bytes of the frame on exactly the samples where the plain render of
// the same transport has them high, with the levels of the stated formulas; the FSK tone becomes a
// level byte on "Ardent" and a gate bit that is set for half of each tone period.
#include <gtest/gtest.h>

#include <filesystem>

#include "host/cli/WavFile.h"
#include "tests/modules/hardware/FrameDecoder.h"
#include "tests/support/RunCommand.h"

namespace {

const char* kTransport =
    " --set \"DINsync Type=24ppqn\" --set \"Run Signal Type=Run\" --block 100 --stopped --position 0"
    " --transport 2000:play --transport 40000:stop --frames 48000"
    " --set \"Clock High=0.8\" --set \"Clock Low=0.1\" --set \"Run High=0.6\" --set \"Run Low=0.2\"";

BR::AudioData Render(const std::string& f, const std::string& name, const std::string& sets) {
    const auto result = BR::Test::RunCorvane("render sync" + std::string(kTransport) + " " + sets +
                                             " --out " + f + "/" + name + ".wav");
    EXPECT_EQ(result.status, 0) << result.err;
    return BR::ReadWav(f + "/" + name + ".wav");
}

int LevelByte(float level) {
    const int v = int(level * 255.0f + 0.5f);
    return v < 0 ? 0 : (v > 255 ? 255 : v);
}

}  // namespace

TEST(CliSyncHardware, LinesLandOnTheirBitsAndBytes) {
    const std::string f = BR::Test::MakeTempFolder();
    // Plain: the clock adds its levels to output 1, the run line to output 2.
    const BR::AudioData plain =
        Render(f, "plain", "--set \"Clock Output=Output 1\" --set \"Run Output=Output 2\"");
    const size_t n = plain.Frames();
    ASSERT_EQ(n, 48000u);
    std::vector<bool> clock(n), run(n);
    size_t clockHigh = 0, runHighCount = 0;
    for (size_t i = 0; i < n; ++i) {
        clock[i] = plain.channels[0][i] == 0.8f;
        run[i] = plain.channels[1][i] == 0.6f;
        ASSERT_TRUE(clock[i] || plain.channels[0][i] == 0.1f) << i;
        clockHigh += clock[i];
        runHighCount += run[i];
    }
    ASSERT_GT(clockHigh, 100u);
    ASSERT_GT(runHighCount, 30000u);
    ASSERT_FALSE(run[1000]);

    // "Ardent": clock on gate 2/3 (byte 1, bit 2), run as a level in byte min(3 - 1, 4) = 2.
    const BR::AudioData ardent = Render(f, "ardent",
                                        "--set \"BR Hardware Mode=Ardent\" --set \"Clock Output=Gates 2/3\" "
                                        "--set \"Run Output=Output 3\"");
    for (size_t i = 0; i < n; ++i) {
        const auto b = BR::Test::FiveBytes(BR::Test::WordOf(ardent.channels[0][i], BR::Test::kCatA),
                                           BR::Test::WordOf(ardent.channels[1][i], BR::Test::kCatA));
        ASSERT_EQ(b[1], clock[i] ? 4 : 0) << i;
        ASSERT_EQ(b[2], LevelByte(run[i] ? 0.6f : 0.2f)) << i;
        ASSERT_TRUE(b[0] == 0 && b[3] == 0 && b[4] == 0) << i;
    }

    // "Basalt", category B: clock as a level in byte min(6 - 1, 4) = 4, run on gate 6/8 (byte 5, bit 7),
    // and "Clock High" below "Clock Low" turns the gate logic round for a clock on a gate.
    const BR::AudioData basalt =
        Render(f, "basalt",
               "--set \"BR Hardware Mode=Basalt\" --set \"Interface Category=Cat B\" "
               "--set \"Clock Output=Output 6\" --set \"Run Output=Gates 6/8\"");
    for (size_t i = 0; i < n; ++i) {
        const auto b = BR::Test::SixBytes(BR::Test::WordOf(basalt.channels[0][i], BR::Test::kCatB),
                                          BR::Test::WordOf(basalt.channels[1][i], BR::Test::kCatB));
        ASSERT_EQ(b[4], LevelByte(clock[i] ? 0.8f : 0.1f)) << i;
        ASSERT_EQ(b[5], run[i] ? 0x80 : 0) << i;
        ASSERT_TRUE(b[0] == 0 && b[1] == 0 && b[2] == 0 && b[3] == 0) << i;
    }
    const BR::AudioData inverted =
        Render(f, "inverted",
               "--set \"BR Hardware Mode=Basalt\" --set \"Clock Output=Gates 1/1\" "
               "--set \"Clock High=0.1\" --set \"Clock Low=0.8\"");
    for (size_t i = 0; i < n; ++i) {
        const auto b = BR::Test::SixBytes(BR::Test::WordOf(inverted.channels[0][i], BR::Test::kCatA),
                                          BR::Test::WordOf(inverted.channels[1][i], BR::Test::kCatA));
        ASSERT_EQ(b[0] & 1, clock[i] ? 0 : 1) << i;
    }
    std::filesystem::remove_all(f);
}

TEST(CliSyncHardware, FSKToneAsALevelByteAndAsAGateBit) {
    const std::string f = BR::Test::MakeTempFolder();
    const BR::AudioData plain = Render(f, "plain", "--set \"Enable FSK=1\" --set \"Clock Output=Output 1\"");
    const BR::AudioData ardent = Render(f, "ardent",
                                        "--set \"Enable FSK=1\" --set \"BR Hardware Mode=Ardent\" "
                                        "--set \"Clock Output=Output 1\"");
    const size_t n = plain.Frames();
    for (size_t i = 0; i < n; ++i) {
        // The plain tone is sine * (high - low) / 2 + (high + low) / 2 on silence.
        const int want = int(plain.channels[0][i] * 127.0f + 127.5f);
        const auto b = BR::Test::FiveBytes(BR::Test::WordOf(ardent.channels[0][i], BR::Test::kCatA),
                                           BR::Test::WordOf(ardent.channels[1][i], BR::Test::kCatA));
        ASSERT_EQ(int(b[0]), want) << i;
    }
    // On a gate the tone is a square: set while the phase is below one half. At 1200 Hz (clock low)
    // and 48 kHz a period is 40 samples, about 20 of them set.
    const BR::AudioData gate = Render(f, "gate",
                                      "--set \"Enable FSK=1\" --set \"BR Hardware Mode=Basalt\" "
                                      "--set \"Clock Output=Gates 3/2\"");
    size_t set = 0, edges = 0;
    for (size_t i = 0; i < 1000; ++i) {  // before the transport plays, the clock is low
        const auto b = BR::Test::SixBytes(BR::Test::WordOf(gate.channels[0][i], BR::Test::kCatA),
                                          BR::Test::WordOf(gate.channels[1][i], BR::Test::kCatA));
        set += (b[2] >> 1) & 1;
        if (i > 0) {
            const auto p = BR::Test::SixBytes(BR::Test::WordOf(gate.channels[0][i - 1], BR::Test::kCatA),
                                              BR::Test::WordOf(gate.channels[1][i - 1], BR::Test::kCatA));
            edges += ((b[2] >> 1) & 1) != ((p[2] >> 1) & 1);
        }
    }
    // The phase sums 0.025 a sample in floats, so an edge may fall a sample early or late.
    EXPECT_NEAR(double(set), 500.0, 3.0);
    EXPECT_EQ(edges, 49u);  // 25 periods of 40 samples in 1000: two edges each, bar the first
    // "Basalt" has no level byte for the form Output k: the frame stays empty.
    const BR::AudioData none = Render(f, "none",
                                      "--set \"Enable FSK=1\" --set \"BR Hardware Mode=Basalt\" "
                                      "--set \"Clock Output=Output 2\" --set \"Run Output=Off\"");
    for (size_t i = 0; i < n; ++i)
        ASSERT_TRUE(none.channels[0][i] == 0.0f && none.channels[1][i] == 0.0f) << i;
    std::filesystem::remove_all(f);
}
