// The transport options of "render" reach the module: tempo, start position and meter, a standing
// transport, starts and stops at frames (each cutting the block there), a loop that wraps the
// position, and no transport at all.
#include <gtest/gtest.h>

#include <filesystem>

#include "host/cli/RenderJob.h"
#include "tests/support/RunCommand.h"
#include "tests/support/TransportRecorder.h"

namespace {
std::vector<BR::Test::TransportSeen> Render(std::vector<std::string> arguments, const std::string& folder) {
    arguments.insert(arguments.begin(), {"corvane", "render", "probe"});
    arguments.insert(arguments.end(), {"--out", folder + "/out.wav"});
    std::vector<char*> argv;
    for (std::string& a : arguments)
        argv.push_back(a.data());
    const BR::RenderJob job = BR::ParseRenderJob(int(argv.size()), argv.data(), 2);
    auto owned = std::make_unique<BR::Test::TransportRecorder>();
    BR::Test::TransportRecorder& module = *owned;
    BR::HostDriver driver(std::move(owned), BR::Test::ProbeEntry(), float(job.sampleRate),
                          std::min<uint32_t>(job.blockSize, 1024));
    BR::RenderWithDriver(driver, job);
    return module.seen;
}
}  // namespace

TEST(RenderTransportOptions, TempoPositionAndStops) {
    const std::string f = BR::Test::MakeTempFolder();
    auto seen = Render({"--frames", "3000", "--block", "1000", "--tempo", "90", "--position", "8",
                        "--transport", "1500:stop", "--transport", "2500:play"},
                       f);
    // 32000 frames a quarter note at 90 BPM.
    ASSERT_EQ(seen.size(), 4u);
    const uint32_t frames[] = {1000, 500, 1000, 500};
    const bool playing[] = {true, true, false, true};
    const double beats[] = {8.0, 8.0 + 1000 / 32000.0, 8.0 + 1500 / 32000.0, 8.0 + 1500 / 32000.0};
    for (size_t b = 0; b < 4; ++b) {
        EXPECT_EQ(seen[b].frames, frames[b]) << b;
        EXPECT_EQ(seen[b].reading.playing, playing[b]) << b;
        EXPECT_DOUBLE_EQ(seen[b].reading.beats, beats[b]) << b;
        EXPECT_EQ(seen[b].reading.tempo, 90.0);
    }
    std::filesystem::remove_all(f);
}

TEST(RenderTransportOptions, StoppedLoopAndNone) {
    const std::string f = BR::Test::MakeTempFolder();
    auto seen = Render({"--frames", "600", "--block", "256", "--stopped", "--position", "3"}, f);
    ASSERT_EQ(seen.size(), 3u);
    for (const auto& s : seen) {
        EXPECT_FALSE(s.reading.playing);
        EXPECT_EQ(s.reading.beats, 3.0);
    }

    // 120 BPM: 24000 frames a quarter; the loop 1..1.5 is 12000 frames long, its end 6000 away.
    seen = Render({"--frames", "20000", "--block", "1024", "--position", "1.25", "--loop", "1:1.5"}, f);
    size_t wraps = 0;
    uint32_t before = 0;
    for (size_t b = 1; b < seen.size(); ++b) {
        before += seen[b - 1].frames;
        if (seen[b].reading.beats < seen[b - 1].reading.beats) {
            ++wraps;
            EXPECT_DOUBLE_EQ(seen[b].reading.beats, 1.0);
            EXPECT_EQ(before, wraps == 1 ? 6000u : 18000u);
        }
    }
    EXPECT_EQ(wraps, 2u);

    seen = Render({"--frames", "100", "--no-transport", "--tempo", "140"}, f);
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_FALSE(seen[0].present);
    EXPECT_TRUE(seen[0].reading.playing);
    EXPECT_EQ(seen[0].reading.tempo, 0.0);
    EXPECT_EQ(seen[0].reading.beats, 0.0);
    std::filesystem::remove_all(f);
}

TEST(RenderTransportOptions, MeterReachesTheModule) {
    std::vector<std::string> arguments = {"corvane", "render", "probe", "--meter", "7/8", "--frames", "10"};
    std::vector<char*> argv;
    for (std::string& a : arguments)
        argv.push_back(a.data());
    const BR::RenderJob job = BR::ParseRenderJob(int(argv.size()), argv.data(), 2);
    EXPECT_EQ(job.transport.meterNumerator, 7);
    EXPECT_EQ(job.transport.meterDenominator, 8);
    BR::BlockClock clock(job.transport, job.sampleRate);
    int32_t numerator = 0, denominator = 0;
    clock.Transport()->GetCurrentMeter(numerator, denominator);
    EXPECT_EQ(numerator, 7);
    EXPECT_EQ(denominator, 8);
}
