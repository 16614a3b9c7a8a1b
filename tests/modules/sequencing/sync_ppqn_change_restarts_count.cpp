// A change of "PPQN" while running makes the slice's rate differ from ticksPerQuarter: at the next
// tick of the new rate the count restarts there and the pulse in progress stops. At 1 PPQN the pulse
// from quarter 0 would stay high for 12000 samples; with 24 PPQN set at frame 4096 the next tick is at
// 5000 and the line falls at 5500.
#include <gtest/gtest.h>

#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

TEST(SyncRate, PPQNChangeStopsPulseAtNextTick) {
    auto driver = BR::Test::MakeDriver("sync", 48000.0f);
    auto& sync = static_cast<BrelCorvaneSync::BrelCorvane&>(driver->Module());
    driver->SetParameterByName("DINsync Type", 3.0f);  // Custom
    driver->SetParameterByName("PPQN", 1.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    BR::Test::Channels first = BR::Test::RenderWithTransport(*driver, transport, 4096, {256});
    EXPECT_EQ(sync.TicksPerQuarter(), 1.0);
    EXPECT_EQ(sync.ClockPeriod(), 24000);
    for (uint32_t i = 0; i < 4096; ++i)
        ASSERT_EQ(first[0][i], 1.0f) << i;

    driver->SetParameterByName("PPQN", 24.0f);
    BR::Test::Channels out = BR::Test::RenderWithTransport(*driver, transport, 10000, {256});
    // Frames from 4096 on: still high until the new tick at 5000, which starts a pulse of the new period.
    for (uint32_t i = 0; i < 5500 - 4096; ++i)
        ASSERT_EQ(out[0][i], 1.0f) << i + 4096;
    for (uint32_t i = 5500 - 4096; i < 6000 - 4096; ++i)
        ASSERT_EQ(out[0][i], 0.0f) << i + 4096;
    const auto edges = BR::Test::RisingEdges(out[0]);  // the first is the render's own start, high
    ASSERT_GE(edges.size(), 3u);
    EXPECT_EQ(edges[0], 0u);
    EXPECT_EQ(edges[1] + 4096, 6000u);
    EXPECT_EQ(edges[2] + 4096, 7000u);
    EXPECT_EQ(sync.TicksPerQuarter(), 24.0);
    EXPECT_EQ(sync.ClockPeriod(), 1000);
    EXPECT_EQ(sync.LastTick(), 14);  // ticks 5 to 14 of the new rate, up to frame 14096
}
