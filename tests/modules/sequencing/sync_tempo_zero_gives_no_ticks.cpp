// A tempo of 0 places no ticks: the clock line rests at "Clock Low" and the run line never rises,
// with a playing transport at tempo 0 and with no transport at all.
#include <gtest/gtest.h>

#include <limits>

#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

namespace {
void ExpectNoTicks(BR::HostDriver& driver, const BR::Test::Channels& out) {
    auto& sync = static_cast<BrelCorvaneSync::BrelCorvane&>(driver.Module());
    for (size_t i = 0; i < out[0].size(); ++i) {
        ASSERT_EQ(out[0][i], 0.25f) << i;  // "Clock Low"
        ASSERT_EQ(out[1][i], -0.5f) << i;  // "Run Low"
    }
    EXPECT_TRUE(sync.FirstTick());  // started, still waiting for a first tick
    EXPECT_EQ(sync.GetClockPhase(), 0);
}
}  // namespace

TEST(SyncTempo, ZeroTempoGivesNoTicks) {
    // On a bar line and in the middle of a bar, where a tick of the count would be overdue.
    for (double quarter : {0.0, 1.5}) {
        auto driver = BR::Test::MakeDriver("sync", 48000.0f);
        driver->SetParameterByName("DINsync Type", 2.0f);
        driver->SetParameterByName("Clock Low", 0.25f);
        driver->SetParameterByName("Run Low", -0.5f);
        BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 0.0, quarter);
        ExpectNoTicks(*driver, BR::Test::RenderWithTransport(*driver, transport, 48000, {256}));
    }
}

TEST(SyncTempo, NoTransportCountsAsPlayingAtTempoZero) {
    auto driver = BR::Test::MakeDriver("sync", 48000.0f);
    driver->SetParameterByName("DINsync Type", 2.0f);
    driver->SetParameterByName("Clock Low", 0.25f);
    driver->SetParameterByName("Run Low", -0.5f);
    ExpectNoTicks(*driver, BR::Test::RenderFrames(*driver, 48000, 256));
}

TEST(SyncTempo, TempoThatIsNotANumberGivesNoTicks) {
    for (double tempo :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), -120.0}) {
        auto driver = BR::Test::MakeDriver("sync", 48000.0f);
        driver->SetParameterByName("DINsync Type", 2.0f);
        driver->SetParameterByName("Clock Low", 0.25f);
        driver->SetParameterByName("Run Low", -0.5f);
        BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
        transport.tempo = tempo;
        ExpectNoTicks(*driver, BR::Test::RenderWithTransport(*driver, transport, 4800, {256}));
    }
}
