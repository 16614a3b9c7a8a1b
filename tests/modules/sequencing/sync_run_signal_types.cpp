// The four run signal types, with the transport started on a bar line at frame 0 and stopped at frame
// 50000: "Run" is high from the first tick until the stop; "Start" pulses at the first tick;
// "Start/Stop" pulses at the first tick and at the stop; "Stop" pulses at the stop. A pulse lasts
// "Run Trigger Length" (5 ms, 240 samples). With "Run Beats" set, the pulse types also pulse every
// runInterval ticks: at 24 PPQN, one beat of 1/4 is 24 ticks, a pulse each quarter (24000 frames).
#include <gtest/gtest.h>

#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

namespace {
std::vector<float> RunLine(float type, float runBeats = 0.0f) {
    auto driver = BR::Test::MakeDriver("sync", 48000.0f);
    driver->SetParameterByName("DINsync Type", 1.0f);
    driver->SetParameterByName("Run Signal Type", type);
    driver->SetParameterByName("Run Beats", runBeats);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    return BR::Test::RenderWithTransport(*driver, transport, 60000, {256}, {{50000, false}})[1];
}

// Frame ranges where the line is high, as [start, end) pairs.
std::vector<std::pair<uint32_t, uint32_t>> HighRanges(const std::vector<float>& line) {
    std::vector<std::pair<uint32_t, uint32_t>> ranges;
    for (uint32_t i = 0; i < line.size(); ++i) {
        if (line[i] > 0.5f && (i == 0 || line[i - 1] <= 0.5f)) ranges.push_back({i, uint32_t(line.size())});
        if (line[i] <= 0.5f && i > 0 && line[i - 1] > 0.5f) ranges.back().second = i;
    }
    return ranges;
}

using Ranges = std::vector<std::pair<uint32_t, uint32_t>>;
}  // namespace

TEST(SyncRun, SignalTypes) {
    EXPECT_EQ(HighRanges(RunLine(0.0f)), (Ranges{{0, 50000}}));
    EXPECT_EQ(HighRanges(RunLine(1.0f)), (Ranges{{0, 240}}));
    EXPECT_EQ(HighRanges(RunLine(2.0f)), (Ranges{{0, 240}, {50000, 50240}}));
    EXPECT_EQ(HighRanges(RunLine(3.0f)), (Ranges{{50000, 50240}}));
}

TEST(SyncRun, PulsesEveryRunInterval) {
    EXPECT_EQ(HighRanges(RunLine(1.0f, 1.0f)), (Ranges{{0, 240}, {24000, 24240}, {48000, 48240}}));
    EXPECT_EQ(HighRanges(RunLine(2.0f, 1.0f)),
              (Ranges{{0, 240}, {24000, 24240}, {48000, 48240}, {50000, 50240}}));
    EXPECT_EQ(HighRanges(RunLine(3.0f, 1.0f)), (Ranges{{24000, 24240}, {48000, 48240}, {50000, 50240}}));
    // "Run" is a level: the interval does not apply.
    EXPECT_EQ(HighRanges(RunLine(0.0f, 1.0f)), (Ranges{{0, 50000}}));
}

TEST(SyncRun, StopRestsTheClock) {
    auto driver = BR::Test::MakeDriver("sync", 48000.0f);
    auto& sync = static_cast<BrelCorvaneSync::BrelCorvane&>(driver->Module());
    driver->SetParameterByName("DINsync Type", 1.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    // Stopped 200 samples into a tick's high half: the pulse ends at once and no tick follows.
    const BR::Test::Channels out =
        BR::Test::RenderWithTransport(*driver, transport, 8000, {256}, {{3200, false}});
    EXPECT_EQ(BR::Test::RisingEdges(out[0]), (std::vector<uint32_t>{0, 1000, 2000, 3000}));
    EXPECT_EQ(out[0][3199], 1.0f);
    EXPECT_EQ(out[0][3200], 0.0f);
    EXPECT_FALSE(sync.RunHigh());
    EXPECT_EQ(sync.GetClockPhase(), 0);
}
