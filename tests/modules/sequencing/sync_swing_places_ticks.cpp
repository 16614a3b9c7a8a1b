// Swing moves ticks within each swing unit: straight tick j of a unit sits at 2s * j/U of the unit in the
// first half and at 1 - 2(1 - s)(1 - j/U) in the second. At 24 PPQN, 120 BPM, "Swing" 60 and type "16"
// (U = 12 ticks = 12000 samples) the ticks fall at 0, 1200, ... 6000, then 7200, 8000, ... 11200. A
// "Swing" within 0.1 of 50 is off.
#include <gtest/gtest.h>

#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

namespace {
struct Swung {
    std::unique_ptr<BR::HostDriver> driver;
    std::vector<uint32_t> edges;
    BrelCorvaneSync::BrelCorvane& Sync() {
        return static_cast<BrelCorvaneSync::BrelCorvane&>(driver->Module());
    }
};

Swung RenderSwung(float swing, float type, const std::vector<uint32_t>& blocks) {
    Swung result{BR::Test::MakeDriver("sync", 48000.0f), {}};
    result.driver->SetParameterByName("DINsync Type", 1.0f);
    result.driver->SetParameterByName("Swing", swing);
    result.driver->SetParameterByName("Swing Type", type);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    result.edges =
        BR::Test::RisingEdges(BR::Test::RenderWithTransport(*result.driver, transport, 36000, blocks)[0]);
    return result;
}
}  // namespace

TEST(SyncSwing, SixteenthSwingPlacesTicks) {
    std::vector<uint32_t> expected;
    for (uint32_t unit = 0; unit < 36000; unit += 12000) {
        for (uint32_t j = 0; j < 6; ++j)
            expected.push_back(unit + 1200 * j);
        for (uint32_t j = 6; j < 12; ++j)
            expected.push_back(unit + 2400 + 800 * j);
    }
    for (const auto& blocks : std::vector<std::vector<uint32_t>>{{256}, {1000}, {37, 999}}) {
        Swung run = RenderSwung(60.0f, 0.0f, blocks);
        EXPECT_EQ(run.edges, expected) << blocks.front();
        EXPECT_TRUE(run.Sync().SwingOn());
        EXPECT_FLOAT_EQ(run.Sync().SwingAmount(), 0.6f);
        EXPECT_EQ(run.Sync().SwingUnit(), 12.0);
    }
}

TEST(SyncSwing, EighthSwingUsesWholeBeat) {
    // Type "8": U = 24 ticks; tick 1 of the unit at 2 * 0.6 * 1/24 of 24000 samples = 1200.
    const auto edges = RenderSwung(60.0f, 1.0f, {256}).edges;
    ASSERT_GE(edges.size(), 14u);
    EXPECT_EQ(edges[1], 1200u);
    EXPECT_EQ(edges[12], 14400u);  // the middle of the unit, 0.6 of it
    EXPECT_EQ(edges[13], 14400u + 800u);
}

TEST(SyncSwing, WithinATenthOfFiftyIsOff) {
    std::vector<uint32_t> straight;
    for (uint32_t i = 0; i < 36000; i += 1000)
        straight.push_back(i);
    Swung fifty = RenderSwung(50.0f, 0.0f, {256});
    EXPECT_EQ(fifty.edges, straight);
    EXPECT_FALSE(fifty.Sync().SwingOn());
    Swung tenth = RenderSwung(50.1f, 0.0f, {256});
    EXPECT_EQ(tenth.edges, straight);
    EXPECT_FALSE(tenth.Sync().SwingOn());
    Swung swung = RenderSwung(50.2f, 0.0f, {256});
    EXPECT_TRUE(swung.Sync().SwingOn());
    EXPECT_EQ(swung.edges[1], 1004u);  // 2 * 0.502 * 1/12 of 12000
}
