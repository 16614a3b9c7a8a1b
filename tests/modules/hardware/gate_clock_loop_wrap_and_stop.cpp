// A loop wrap with the clock on subtracts the loop's length from the tick count, so the clock goes
// on every 1000 samples with no second 250; a stop sends 252; "Delay Start Slice" and "Delay Stop
// Slice" hold the serial lines still for the block in which the transport starts or stops.
#include <gtest/gtest.h>

#include "tests/modules/hardware/GateRig.h"

TEST(GateClock, LoopWrapKeepsTheClockWithoutAStart) {
    for (uint32_t block : {7u, 256u}) {
        auto driver = BR::Test::MakeGateDriver("ardentcontroller");
        driver->SetParameterByName("MIDI Out Clock", 1.0f);
        BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
        transport.looping = true;
        transport.loopStart = 0.0;
        transport.loopEnd = 2.0;  // 48 clocks, 48000 samples
        const auto bytes = BR::Test::RenderGatesWithTransport(*driver, transport, 120500, {block}).Serial(0);
        ASSERT_EQ(bytes.size(), 122u) << block;
        EXPECT_EQ(bytes[0], (BR::Test::ReceivedByte{0, 250}));
        for (size_t k = 1; k < bytes.size(); ++k) {
            const uint32_t clock = uint32_t(k - 1);
            EXPECT_EQ(bytes[k], (BR::Test::ReceivedByte{clock * 1000 + (clock == 0 ? 16 : 0), 248}))
                << block << " " << k;
        }
        // Three passes of the loop: the count went back by 48 twice.
        EXPECT_EQ(BR::Test::Controller(*driver).LastTick(), 120 - 96);
    }
}

TEST(GateClock, StopSendsStopByte) {
    auto driver = BR::Test::MakeGateDriver("ardentcontroller");
    driver->SetParameterByName("MIDI Out Clock", 1.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    const auto bytes =
        BR::Test::RenderGatesWithTransport(*driver, transport, 6000, {256}, {{2500, false}}).Serial(0);
    ASSERT_EQ(bytes.size(), 5u);
    EXPECT_EQ(bytes[3], (BR::Test::ReceivedByte{2000, 248}));
    EXPECT_EQ(bytes[4], (BR::Test::ReceivedByte{2500, 252}));
}

TEST(GateClock, DelayFlagsHoldTheLineForTheBlock) {
    for (bool delay : {false, true}) {
        auto driver = BR::Test::MakeGateDriver("ardentcontroller");
        driver->SetParameterByName("MIDI Out Clock", 1.0f);
        driver->SetParameterByName("Delay Start Slice", delay ? 1.0f : 0.0f);
        driver->SetParameterByName("Delay Stop Slice", delay ? 1.0f : 0.0f);
        BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
        const auto bytes =
            BR::Test::RenderGatesWithTransport(*driver, transport, 4000, {256}, {{2500, false}}).Serial(0);
        ASSERT_EQ(bytes.size(), 5u) << delay;
        // The start block (0 to 255) stands still with the flag: the start and clock go out at 256.
        EXPECT_EQ(bytes[0].startSample, delay ? 256u : 0u);
        EXPECT_EQ(bytes[0].value, 250);
        EXPECT_EQ(bytes[1].value, 248);
        // The stop block begins at 2500 (blocks are cut there) and is 256 long.
        EXPECT_EQ(bytes[4].startSample, delay ? 2756u : 2500u);
        EXPECT_EQ(bytes[4].value, 252);
    }
}
