// At tempo 0 no clock and no start byte go out; the pending start waits for the first block with a
// tick, where 250 goes out ahead of the clock. No transport at all plays at tempo 0 as well.
#include <gtest/gtest.h>

#include "tests/modules/hardware/GateRig.h"

TEST(GateClock, TempoZeroSendsNothingAndKeepsTheStart) {
    auto driver = BR::Test::MakeGateDriver("ardentcontroller");
    auto& module = BR::Test::Controller(*driver);
    driver->SetParameterByName("MIDI Out Clock", 1.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 0.0, 0.0);
    auto r = BR::Test::RenderGatesWithTransport(*driver, transport, 5000, {256});
    EXPECT_TRUE(r.Serial(0).empty());
    EXPECT_TRUE(module.StartPending());
    // The host now reports a tempo: the first tick carries the start.
    transport.tempo = 120.0;
    r = BR::Test::RenderGatesWithTransport(*driver, transport, 3000, {256});
    const auto bytes = r.Serial(0);
    ASSERT_GE(bytes.size(), 2u);
    EXPECT_EQ(bytes[0].value, 250);
    EXPECT_EQ(bytes[1].value, 248);
    // The start left the tick count at 0, so clock 0 (at sample 0) is no step forward; clock 1 is.
    EXPECT_EQ(bytes[0].startSample, 1000u);
    EXPECT_FALSE(module.StartPending());
}

TEST(GateClock, NoTransportRunsNoClock) {
    auto driver = BR::Test::MakeGateDriver("ardentcontroller");
    driver->SetParameterByName("MIDI Out Clock", 1.0f);
    const auto r = BR::Test::RenderGates(*driver, 20000, 512);
    EXPECT_TRUE(r.Serial(0).empty());
    EXPECT_TRUE(BR::Test::Controller(*driver).StartPending());
}
