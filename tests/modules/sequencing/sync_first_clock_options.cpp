// What happens at and after the first tick: "Skip First Clock" counts the tick but makes no pulse;
// "1st Delay" holds the first pulse back by a quarter period (low 250, high 250, then low);
// "Mute Clocks" stops the clock signal while the count goes on; "Skip First Clock" with run pulses
// drops the clock pulse of each tick that carries a run pulse.
#include <gtest/gtest.h>

#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

namespace {
struct Rig {
    std::unique_ptr<BR::HostDriver> driver = BR::Test::MakeDriver("sync", 48000.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    Rig() { driver->SetParameterByName("DINsync Type", 1.0f); }
    BR::Test::Channels Render(uint32_t frames) {
        return BR::Test::RenderWithTransport(*driver, transport, frames, {256});
    }
    BrelCorvaneSync::BrelCorvane& Sync() {
        return static_cast<BrelCorvaneSync::BrelCorvane&>(driver->Module());
    }
};
}  // namespace

TEST(SyncFirstClock, SkipFirstClockCountsWithoutPulse) {
    Rig rig;
    rig.driver->SetParameterByName("Skip First Clock", 1.0f);
    const BR::Test::Channels out = rig.Render(3500);
    EXPECT_EQ(BR::Test::RisingEdges(out[0]), (std::vector<uint32_t>{1000, 2000, 3000}));
    EXPECT_EQ(out[1][0], 1.0f);  // the run line still rises with the first tick
    EXPECT_EQ(rig.Sync().LastTick(), 3);
}

TEST(SyncFirstClock, FirstDelayHoldsBackFirstPulse) {
    Rig rig;
    rig.driver->SetParameterByName("1st Delay", 1.0f);
    const BR::Test::Channels out = rig.Render(2000);
    EXPECT_EQ(BR::Test::RisingEdges(out[0]), (std::vector<uint32_t>{250, 1000}));
    EXPECT_EQ(out[0][249], 0.0f);
    EXPECT_EQ(out[0][499], 1.0f);
    EXPECT_EQ(out[0][500], 0.0f);
    EXPECT_EQ(out[0][1499], 1.0f);  // the second tick is a normal half-period pulse
    EXPECT_EQ(out[0][1500], 0.0f);
}

TEST(SyncFirstClock, FirstDelayPulseObeysTriggerLength) {
    Rig rig;
    rig.driver->SetParameterByName("1st Delay", 1.0f);
    rig.driver->SetParameterByName("Trigger Length", 2.0f);  // 96 samples
    const BR::Test::Channels out = rig.Render(2000);
    EXPECT_EQ(out[0][250 + 95], 1.0f);
    EXPECT_EQ(out[0][250 + 96], 0.0f);
    EXPECT_EQ(out[0][1095], 1.0f);
    EXPECT_EQ(out[0][1096], 0.0f);
}

TEST(SyncFirstClock, MuteClocksKeepsCounting) {
    Rig rig;
    rig.driver->SetParameterByName("Mute Clocks", 1.0f);
    rig.driver->SetParameterByName("Clock Low", -0.5f);
    const BR::Test::Channels muted = rig.Render(5120);
    for (uint32_t i = 0; i < 5120; ++i)
        ASSERT_EQ(muted[0][i], -0.5f) << i;
    EXPECT_EQ(muted[1][0], 1.0f);  // run is not muted
    EXPECT_EQ(rig.Sync().LastTick(), 5);
    rig.driver->SetParameterByName("Mute Clocks", 0.0f);
    const BR::Test::Channels open = rig.Render(2000);
    // The count went on: the pulse of tick 5 is still running (until 5500), the next edge is at 6000.
    EXPECT_EQ(open[0][0], 1.0f);
    EXPECT_EQ(open[0][5500 - 5120], -0.5f);
    EXPECT_EQ(BR::Test::RisingEdges(open[0], 0.25f), (std::vector<uint32_t>{0, 6000 - 5120, 7000 - 5120}));
}

TEST(SyncFirstClock, SkipFirstClockDropsClockAtRunPulses) {
    Rig rig;
    rig.driver->SetParameterByName("Skip First Clock", 1.0f);
    rig.driver->SetParameterByName("Run Signal Type", 1.0f);  // Start
    rig.driver->SetParameterByName("Run Beats", 1.0f);        // every quarter: 24 ticks
    const BR::Test::Channels out = rig.Render(50000);
    const auto edges = BR::Test::RisingEdges(out[0]);
    EXPECT_EQ(edges.size(), 50u - 3u);  // ticks 0, 24 and 48 carry run pulses and no clock
    EXPECT_EQ(std::count(edges.begin(), edges.end(), 0u), 0);
    EXPECT_EQ(std::count(edges.begin(), edges.end(), 24000u), 0);
    EXPECT_EQ(std::count(edges.begin(), edges.end(), 48000u), 0);
    EXPECT_EQ(std::count(edges.begin(), edges.end(), 25000u), 1);
    EXPECT_EQ(BR::Test::RisingEdges(out[1]), (std::vector<uint32_t>{0, 24000, 48000}));
}

TEST(SyncFirstClock, RunPulseTicksKeepTheirClockWithoutSkip) {
    // Without "Skip First Clock" a tick that carries a run pulse still makes its clock pulse: a tick
    // every 1000 samples, none missing, and a run pulse on each quarter.
    Rig rig;
    rig.driver->SetParameterByName("Run Signal Type", 1.0f);  // Start
    rig.driver->SetParameterByName("Run Beats", 1.0f);        // every quarter: 24 ticks
    const BR::Test::Channels out = rig.Render(50000);
    std::vector<uint32_t> expected;
    for (uint32_t k = 0; k < 50; ++k)
        expected.push_back(1000 * k);
    EXPECT_EQ(BR::Test::RisingEdges(out[0]), expected);
    for (uint32_t tick : {24000u, 48000u}) {
        EXPECT_EQ(out[0][tick + 499], 1.0f) << tick;  // an ordinary half-period pulse
        EXPECT_EQ(out[0][tick + 500], 0.0f) << tick;
    }
    EXPECT_EQ(BR::Test::RisingEdges(out[1]), (std::vector<uint32_t>{0, 24000, 48000}));
    EXPECT_EQ(rig.Sync().LastTick(), 49);
}
