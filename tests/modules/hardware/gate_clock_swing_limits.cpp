// "MIDI Clock Swing" at 50, or within 0.1 of it, is off; 100 acts as 95 and 0 as 5; the period is
// 12 clocks for "16" and 24 for "8". Renders at the limits are those of the held values, clock for
// clock, and a real swing moves the clocks.
#include <gtest/gtest.h>

#include "tests/modules/hardware/GateRig.h"

namespace {
std::vector<BR::Test::ReceivedByte> Clocks(float swing, float type, BrelGateControllerBase** out = nullptr,
                                           std::unique_ptr<BR::HostDriver>* keep = nullptr) {
    auto driver = BR::Test::MakeGateDriver("ardentcontroller");
    driver->SetParameterByName("MIDI Out Clock", 1.0f);
    driver->SetParameterByName("MIDI Clock Swing", swing);
    driver->SetParameterByName("MIDI Clock Swing Type", type);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    const auto r = BR::Test::RenderGatesWithTransport(*driver, transport, 50000, {256});
    if (out) *out = &BR::Test::Controller(*driver);
    if (keep) *keep = std::move(driver);
    return r.Serial(0);
}
}  // namespace

TEST(GateClock, SwingWithinATenthOfFiftyIsOff) {
    std::unique_ptr<BR::HostDriver> keep;
    BrelGateControllerBase* module = nullptr;
    const auto straight = Clocks(50.0f, 0.0f, &module, &keep);
    EXPECT_FALSE(module->SwingOn());
    Clocks(50.09f, 0.0f, &module, &keep);
    EXPECT_FALSE(module->SwingOn());
    EXPECT_EQ(Clocks(49.95f, 0.0f), straight);
    Clocks(50.2f, 0.0f, &module, &keep);
    EXPECT_TRUE(module->SwingOn());
    EXPECT_NE(Clocks(60.0f, 0.0f), straight);
}

TEST(GateClock, SwingIsHeldWithinFiveAndNinetyFive) {
    std::unique_ptr<BR::HostDriver> keep;
    BrelGateControllerBase* module = nullptr;
    const auto full = Clocks(100.0f, 1.0f, &module, &keep);
    EXPECT_FLOAT_EQ(module->SwingAmount(), 0.95f);
    EXPECT_EQ(module->SwingPeriod(), 24.0);
    EXPECT_EQ(full, Clocks(95.0f, 1.0f));
    const auto none = Clocks(0.0f, 0.0f, &module, &keep);
    EXPECT_FLOAT_EQ(module->SwingAmount(), 0.05f);
    EXPECT_EQ(module->SwingPeriod(), 12.0);
    EXPECT_EQ(none, Clocks(5.0f, 0.0f));
}

TEST(GateClock, SwingFunctionsInvertEachOther) {
    std::unique_ptr<BR::HostDriver> keep;
    BrelGateControllerBase* module = nullptr;
    Clocks(70.0f, 0.0f, &module, &keep);
    // Period 12, amount 0.7: clock 6 (half the period) is placed at 0.7 of it.
    const double w = double(0.7f);  // the amount is held as a float
    EXPECT_DOUBLE_EQ(module->SwingInverse(6.0), w * 12.0);
    EXPECT_DOUBLE_EQ(module->SwingInverse(15.0), 12.0 + w * 2 * 0.25 * 12.0);
    for (double x : {0.0, 1.5, 6.0, 8.4, 11.9, 13.0, 100.25})
        EXPECT_NEAR(module->SwingForward(module->SwingInverse(x)), x, 1e-9) << x;
}
