// Bad input: sample rates outside the six give frames without a MIDI line; a port queue at its
// limit drops whole messages and keeps what fits; absurd swing, tempo, offsets and positions give
// the specified behaviour and no crash.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/modules/hardware/GateRig.h"

TEST(GateBadInput, RatesOutsideTheSixHaveNoSerialLine) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (float rate : {0.0f, 22050.0f, 44099.0f, 48000.5f, 384000.0f, nan}) {
        for (const char* stem : {"ardentcontroller", "basaltcontroller"}) {
            auto driver = BR::Test::MakeGateDriver(stem, rate);
            driver->SetParameterByName("Send", 1.0f);
            driver->SetParameterByName("MIDI Out Clock", 1.0f);
            driver->SetParameterByName("Gates 1 MIDI Channel", 1.0f);
            driver->SetParameterByName("Trigger 1/2 Length", 3.0f);
            BR::DriverTransport transport =
                BR::Test::MakeTransport(std::isnan(rate) ? 48000.0 : rate, 120.0, 0.5);
            const auto r = BR::Test::RenderGatesWithTransport(
                *driver, transport, 3000, {256}, {}, {{100, {0x90, 48, 100}}, {200, {0x90, 49, 100}}});
            EXPECT_EQ(BR::Test::Controller(*driver).RateClass(), 0);
            // Gate 1/1 is the MIDI line's bit and follows only the note; gate 1/2's trigger lasts at
            // least one sample.
            EXPECT_EQ(r.Rises(0), (std::vector<uint32_t>{100})) << stem << " " << rate;
            EXPECT_EQ(r.Rises(1), (std::vector<uint32_t>{200})) << stem << " " << rate;
            EXPECT_GT(BR::Test::Controller(*driver).Port(0).queueLength, 0);
        }
    }
}

TEST(GateBadInput, PortQueueAtItsLimitDropsWholeMessages) {
    auto driver = BR::Test::MakeGateDriver("ardentcontroller", 48000.0f);
    auto& module = BR::Test::Controller(*driver);
    std::vector<uint8_t> bulk(0x100000 - 2, 0x42);
    ASSERT_TRUE(module.PortSend(0, bulk.data(), int32_t(bulk.size())));
    const uint8_t three[3] = {0x90, 60, 100};
    EXPECT_FALSE(module.PortSend(0, three, 3));
    EXPECT_EQ(module.Port(0).queueLength, 0x100000 - 2);
    EXPECT_TRUE(module.PortSend(0, three, 2));
    EXPECT_EQ(module.Port(0).queueLength, 0x100000);
    EXPECT_FALSE(module.PortSend(0, three, 1));
    EXPECT_FALSE(module.PortSend(8, three, 1));  // no such port
    // "Send" at the limit is dropped; the render goes on and drains four bytes in 64 samples.
    driver->SetParameterByName("Send", 1.0f);
    BR::Test::RenderGates(*driver, 64, 64);
    EXPECT_EQ(module.Port(0).queueLength, 0x100000 - 4);
}

TEST(GateBadInput, SystemExclusiveOverTheLimitIsDropped) {
    auto driver = BR::Test::MakeGateDriver("ardentcontroller", 48000.0f);
    auto& module = BR::Test::Controller(*driver);
    BR::MessageQueueItem item;
    item.kind = BR::kMessageByteBlock;
    item.bytes.assign(0x100000, 0x11);  // with its 0xF0 one byte too many
    module.HandleMidiItem(item);
    EXPECT_EQ(module.Port(0).queueLength, 0);
    item.bytes.resize(0x100000 - 1);
    module.HandleMidiItem(item);
    EXPECT_EQ(module.Port(0).queueLength, 0x100000);
}

TEST(GateBadInput, AbsurdSwingTempoOffsetAndPosition) {
    const double inf = std::numeric_limits<double>::infinity(),
                 nan = std::numeric_limits<double>::quiet_NaN();
    for (double tempo : {1.0e9, 1.0e-9, -120.0, inf, nan, 120.0}) {
        for (double position : {0.0, -7.25, 1.0e12}) {
            auto driver = BR::Test::MakeGateDriver("ardentcontroller", 48000.0f);
            driver->SetParameterByName("MIDI Out Clock", 1.0f);
            driver->SetParameterByName("Use MIDI SPP", 1.0f);
            driver->SetParameterByName("MIDI Clock Swing", 1000.0f);   // held by the row at 100
            driver->SetParameterByName("MIDI Clock Offset", -1.0e6f);  // held at -100 ms
            auto& module = BR::Test::Controller(*driver);
            BR::DriverTransport transport;
            transport.sampleRate = 48000.0;
            transport.tempo = std::isfinite(tempo) && tempo > 0 ? tempo : 120.0;
            BR::Test::PlaceTransport(transport, position);
            transport.tempo = tempo;
            const auto r = BR::Test::RenderGatesWithTransport(*driver, transport, 6000, {1, 7, 256});
            EXPECT_FLOAT_EQ(module.SwingAmount(), 0.95f);
            EXPECT_EQ(driver->Module().GetTableValue(56), -100.0f);
            const auto bytes = r.SerialBytes(0);
            if (!(tempo > 0.0) || !std::isfinite(tempo) || position == 1.0e12) {
                // No clock runs (a position past 32-bit clock numbers runs none either): nothing goes
                // out and the start waits.
                EXPECT_TRUE(bytes.empty()) << tempo << " " << position;
                EXPECT_TRUE(module.StartPending());
            } else if (position == 0.0 && tempo == 120.0) {
                // An offset of -100 ms puts clock 0 (the first bar line) 4800 samples on; song position 0
                // gives a plain start.
                const auto received = r.Serial(0);
                ASSERT_GE(received.size(), 2u) << tempo;
                EXPECT_EQ(received[0], (BR::Test::ReceivedByte{4800, 250})) << tempo;
                EXPECT_EQ(received[1].value, 248);
            }
        }
    }
}
