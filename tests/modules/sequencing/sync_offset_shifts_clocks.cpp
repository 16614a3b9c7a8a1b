// "Offset" shifts all clocks in time: 10 ms at 120 BPM is 0.02 quarter, 480 samples. Positive offsets
// move the clock earlier, so the first bar line after the start is the next one, ticked 480 samples
// before it; negative offsets move it later.
#include <gtest/gtest.h>

#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

namespace {
std::vector<uint32_t> EdgesWithOffset(float milliseconds) {
    auto driver = BR::Test::MakeDriver("sync", 48000.0f);
    driver->SetParameterByName("DINsync Type", 1.0f);
    driver->SetParameterByName("Offset", milliseconds);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    return BR::Test::RisingEdges(BR::Test::RenderWithTransport(*driver, transport, 100000, {256})[0]);
}
}  // namespace

TEST(SyncOffset, ShiftsAllClocks) {
    const auto early = EdgesWithOffset(10.0f);
    ASSERT_GE(early.size(), 2u);
    EXPECT_EQ(early[0], 96000u - 480u);
    EXPECT_EQ(early[1], 97000u - 480u);
    const auto late = EdgesWithOffset(-10.0f);
    ASSERT_GE(late.size(), 2u);
    EXPECT_EQ(late[0], 480u);
    EXPECT_EQ(late[1], 1480u);
}
