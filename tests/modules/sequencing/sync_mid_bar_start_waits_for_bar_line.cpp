// Starting the host in the middle of a bar gives no clock until the next bar line, and the run line
// goes high with that first tick: a start at quarter 1.5 in 4/4 waits for quarter 4; a transport
// started within the render at 5.3 waits for 8; in 3/4 and 6/8 the bar is three quarters long.
#include <gtest/gtest.h>

#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

namespace {
BR::Test::Channels RenderSync(BR::DriverTransport& transport, uint32_t frames,
                              const std::vector<BR::Test::TransportChangeAt>& changes = {}) {
    auto driver = BR::Test::MakeDriver("sync", 48000.0f);
    driver->SetParameterByName("DINsync Type", 1.0f);  // 24ppqn: 1000 samples a tick at 120 BPM
    return BR::Test::RenderWithTransport(*driver, transport, frames, {256}, changes);
}

void ExpectFirstTickAt(const BR::Test::Channels& out, uint32_t frame) {
    const auto edges = BR::Test::RisingEdges(out[0]);
    ASSERT_FALSE(edges.empty());
    EXPECT_EQ(edges.front(), frame);
    EXPECT_EQ(edges[1], frame + 1000);
    // The run line ("Run" on the second output) is low until that tick and high from it.
    EXPECT_EQ(BR::Test::RisingEdges(out[1]), (std::vector<uint32_t>{frame}));
    for (uint32_t i = 0; i < frame; ++i)
        ASSERT_EQ(out[0][i], 0.0f) << i;
}
}  // namespace

TEST(SyncStart, MidBarWaitsForNextBarLine) {
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 1.5);
    ExpectFirstTickAt(RenderSync(transport, 70000), 60000);  // (4 - 1.5) * 24000
}

TEST(SyncStart, TransportStartedWithinTheRenderWaitsForNextBarLine) {
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 5.3);
    transport.playing = false;
    // Stopped for 10000 frames at quarter 5.3, then playing: the bar line at 8 is 64800 frames on.
    ExpectFirstTickAt(RenderSync(transport, 80000, {{10000, true}}), 74800);
}

TEST(SyncStart, BarLengthFollowsTheMeter) {
    for (int denominator : {4, 8}) {
        BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 1.5);
        transport.meterNumerator = denominator == 4 ? 3 : 6;
        transport.meterDenominator = denominator;
        ExpectFirstTickAt(RenderSync(transport, 40000), 36000);  // the bar line at quarter 3
    }
    // In 6/8, a start at 4.5 (second bar, fourth eighth) waits for the third bar at quarter 6.
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 4.5);
    transport.meterNumerator = 6;
    transport.meterDenominator = 8;
    ExpectFirstTickAt(RenderSync(transport, 40000), 36000);
}
