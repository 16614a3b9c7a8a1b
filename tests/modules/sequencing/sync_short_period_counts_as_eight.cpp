// With a tick spacing below 8 samples the period counts as 8, so pulses merge at very high rates: at
// 96 PPQN, 999 BPM and 8 kHz a tick comes every 5 samples, yet the first pulse is 4 samples high and 2
// low; the tick at 5 finds the pulse still running and is not played, so the tick at 10 has two due and
// makes a double pulse (2 high, 2 low, 2 high, 1 low), and so on in pairs.
#include <gtest/gtest.h>

#include <string>

#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

TEST(SyncRate, PeriodBelowEightSamplesCountsAsEight) {
    auto driver = BR::Test::MakeDriver("sync", 8000.0f);
    auto& sync = static_cast<BrelCorvaneSync::BrelCorvane&>(driver->Module());
    driver->SetParameterByName("DINsync Type", 3.0f);
    driver->SetParameterByName("PPQN", 96.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(8000.0, 999.0, 0.0);
    const BR::Test::Channels out = BR::Test::RenderWithTransport(*driver, transport, 80, {32});
    EXPECT_EQ(sync.ClockPeriod(), 8);
    std::string line;
    for (float v : out[0])
        line += v > 0.5f ? '1' : '0';
    EXPECT_EQ(line.substr(0, 40), "1111000000110011000011001100001100110000");
    // 16 ticks in 80 samples, but only 15 rising edges: the pulses have merged.
    EXPECT_EQ(BR::Test::RisingEdges(out[0]).size(), 15u);
    EXPECT_EQ(sync.LastTick(), 14);  // the tick at 75 came during a pulse and is still owed
}
