// The tick rate: base 24 for "24ppqn", 48 for "48ppqn" and max(1, "PPQN") for "Custom", times
// 2^-"Divisor", divided by "Multiplier". The swing unit is half (type "16") or all (type "8") of a
// quarter's ticks, the run interval is rate * 2^-"Run Beat Divisor" * 4 * "Run Beats", and the
// trigger length is in whole samples.
#include <gtest/gtest.h>

#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

namespace {
std::unique_ptr<BR::HostDriver> Started(const std::vector<std::pair<std::string, float>>& settings) {
    auto driver = BR::Test::MakeDriver("sync", 48000.0f);
    for (const auto& [name, value] : settings)
        EXPECT_TRUE(driver->SetParameterByName(name, value)) << name;
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    BR::Test::RenderWithTransport(*driver, transport, 64, {64});
    driver->SetTransport(nullptr);
    return driver;
}
BrelCorvaneSync::BrelCorvane& SyncOf(BR::HostDriver& driver) {
    return static_cast<BrelCorvaneSync::BrelCorvane&>(driver.Module());
}
}  // namespace

TEST(SyncRate, TickRateRule) {
    EXPECT_EQ(SyncOf(*Started({{"DINsync Type", 1}})).TicksPerQuarter(), 24.0);
    EXPECT_EQ(SyncOf(*Started({{"DINsync Type", 2}})).TicksPerQuarter(), 48.0);
    EXPECT_EQ(SyncOf(*Started({{"DINsync Type", 3}})).TicksPerQuarter(), 1.0);  // the default PPQN
    EXPECT_EQ(SyncOf(*Started({{"DINsync Type", 3}, {"PPQN", 96}, {"Divisor", 2}, {"Multiplier", 3}}))
                  .TicksPerQuarter(),
              8.0);
    // "Multiplier" divides, on the fixed types too.
    EXPECT_EQ(SyncOf(*Started({{"DINsync Type", 2}, {"Multiplier", 4}})).TicksPerQuarter(), 12.0);
    EXPECT_EQ(SyncOf(*Started({{"DINsync Type", 1}, {"Divisor", 6}})).TicksPerQuarter(), 24.0 / 64.0);
    // "Off" places no ticks and keeps no rate.
    EXPECT_EQ(SyncOf(*Started({{"DINsync Type", 0}})).TicksPerQuarter(), 0.0);
}

TEST(SyncRate, SwingUnitRunIntervalAndTriggerSamples) {
    auto driver = Started({{"DINsync Type", 3},
                           {"PPQN", 24},
                           {"Divisor", 1},
                           {"Swing Type", 1},
                           {"Run Signal Type", 1},
                           {"Run Beat Divisor", 1},
                           {"Run Beats", 3},
                           {"Trigger Length", 7}});
    BrelCorvaneSync::BrelCorvane& sync = SyncOf(*driver);
    EXPECT_EQ(sync.SwingUnit(), 12.0);
    EXPECT_EQ(sync.RunInterval(), 72);  // 12 * 1/2 * 4 * 3
    EXPECT_EQ(sync.TriggerSamples(), 336);
    // "Run" has no interval; nor has a "Run Beats" of 0.
    EXPECT_EQ(SyncOf(*Started({{"Run Signal Type", 0}, {"Run Beats", 3}})).RunInterval(), 0);
    EXPECT_EQ(SyncOf(*Started({{"Run Signal Type", 2}, {"Run Beats", 0}})).RunInterval(), 0);
    EXPECT_EQ(SyncOf(*Started({{"Swing Type", 0}})).SwingUnit(), 0.5);
}
