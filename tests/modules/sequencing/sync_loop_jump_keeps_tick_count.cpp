// When the host jumps back round its loop, the tick count goes back by the loop's length in ticks, so
// that the next tick compares with nextTick as one ordinary tick: no double pulse, no skipped tick.
#include <gtest/gtest.h>

#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

TEST(SyncLoop, JumpBackKeepsTickCountContinuous) {
    auto driver = BR::Test::MakeDriver("sync", 48000.0f);
    auto& sync = static_cast<BrelCorvaneSync::BrelCorvane&>(driver->Module());
    driver->SetParameterByName("DINsync Type", 1.0f);  // 24 ticks a quarter, 1000 samples each
    BR::DriverTransport transport;
    transport.sampleRate = 48000.0;
    transport.tempo = 120.0;
    transport.looping = true;
    transport.loopStart = 4.0;
    transport.loopEnd = 8.0;
    BR::Test::PlaceTransport(transport, 4.0);

    // Up to just before the wrap: ticks 96 to 191 played, 192 (quarter 8) expected next.
    BR::Test::Channels out = BR::Test::RenderWithTransport(*driver, transport, 96000, {256});
    EXPECT_EQ(sync.LastTick(), 191);
    EXPECT_EQ(sync.NextTick(), 192);
    EXPECT_EQ(BR::Test::RisingEdges(out[0]).size(), 96u);

    // The next block starts at quarter 4 again: the count has gone back by 96 ticks.
    out = BR::Test::RenderWithTransport(*driver, transport, 3000, {256});
    EXPECT_EQ(sync.TicksPerQuarter(), 24.0);
    EXPECT_EQ(BR::Test::RisingEdges(out[0]), (std::vector<uint32_t>{0, 1000, 2000}));
    // The tick at the loop start is an ordinary single pulse of half a period, not a double tick.
    for (uint32_t i = 0; i < 500; ++i)
        ASSERT_EQ(out[0][i], 1.0f) << i;
    for (uint32_t i = 500; i < 1000; ++i)
        ASSERT_EQ(out[0][i], 0.0f) << i;
    EXPECT_EQ(sync.LastTick(), 98);
    EXPECT_EQ(sync.NextTick(), 99);
    EXPECT_EQ(sync.ClockPeriod(), 1000);
}
