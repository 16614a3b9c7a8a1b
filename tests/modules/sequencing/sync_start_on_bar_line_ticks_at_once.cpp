// Starting exactly on a bar line: barStart equals start, so the first tick is on that line, at the
// first sample of the render.
#include <gtest/gtest.h>

#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

TEST(SyncStart, OnBarLineTicksAtOnce) {
    for (double quarter : {0.0, 4.0, 12.0}) {
        auto driver = BR::Test::MakeDriver("sync", 48000.0f);
        auto& sync = static_cast<BrelCorvaneSync::BrelCorvane&>(driver->Module());
        driver->SetParameterByName("DINsync Type", 1.0f);
        BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, quarter);
        const BR::Test::Channels out = BR::Test::RenderWithTransport(*driver, transport, 3000, {512});
        EXPECT_EQ(BR::Test::RisingEdges(out[0]), (std::vector<uint32_t>{0, 1000, 2000})) << quarter;
        EXPECT_EQ(out[1][0], 1.0f) << quarter;
        EXPECT_EQ(sync.LastTick(), int32_t(quarter * 24) + 2) << quarter;
        EXPECT_FALSE(sync.FirstTick());
    }
}
