// In "BR Hardware Mode" "Off", "Output 1" feeds the first output and "Output 2" to "Output 6" all land on
// the second; the "Gates" choices feed neither. Clock and run on the same output add up, on top of
// the passing input.
#include <gtest/gtest.h>

#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

namespace {
BR::Test::Channels RenderRouted(float clockOutput, float runOutput) {
    auto driver = BR::Test::MakeDriver("sync", 48000.0f);
    driver->SetParameterByName("DINsync Type", 1.0f);
    driver->SetParameterByName("Clock Output", clockOutput);
    driver->SetParameterByName("Run Output", runOutput);
    driver->SetParameterByName("Run High", 0.25f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    const BR::Test::Channels in = {std::vector<float>(2000, 0.125f), std::vector<float>(2000, -0.0625f)};
    return BR::Test::RenderWithTransport(*driver, transport, 2000, {256}, {}, {}, nullptr, in);
}
}  // namespace

TEST(SyncOutputs, OutputsThreeToSixLandOnSecondOutput) {
    for (float choice : {2.0f, 3.0f, 4.0f, 5.0f, 6.0f}) {
        const BR::Test::Channels out = RenderRouted(choice, 0.0f);
        EXPECT_EQ(out[0][100], 0.125f) << choice;  // input only
        EXPECT_EQ(out[1][100], 1.0f - 0.0625f) << choice;
        EXPECT_EQ(out[1][700], -0.0625f) << choice;
        EXPECT_EQ(BR::Test::RisingEdges(out[1]), (std::vector<uint32_t>{0, 1000})) << choice;
    }
    const BR::Test::Channels first = RenderRouted(1.0f, 0.0f);
    EXPECT_EQ(first[0][100], 1.125f);
    EXPECT_EQ(first[1][100], -0.0625f);
}

TEST(SyncOutputs, GateChoicesHaveNoEffectWithoutHardware) {
    for (float choice : {7.0f, 30.0f, 54.0f}) {
        const BR::Test::Channels out = RenderRouted(choice, choice);
        for (uint32_t i = 0; i < 2000; ++i) {
            ASSERT_EQ(out[0][i], 0.125f) << choice;
            ASSERT_EQ(out[1][i], -0.0625f) << choice;
        }
    }
}

TEST(SyncOutputs, ClockAndRunOnOneOutputAdd) {
    const BR::Test::Channels out = RenderRouted(2.0f, 6.0f);
    EXPECT_EQ(out[1][100], 1.0f + 0.25f - 0.0625f);  // clock high + run high + input
    EXPECT_EQ(out[1][700], 0.25f - 0.0625f);         // clock low (0) + run high + input
    EXPECT_EQ(out[0][100], 0.125f);
}
