// A transport started in the middle of a 4/4 bar at quarter 1.5, with no offset: the first clock is
// number 96, nothing goes out before the bar line at quarter 4, and there 250 and then 248 go out,
// followed by a clock every 1000 samples (120 BPM at 48000 Hz). With "Use MIDI SPP" the start is
// 0xF2 16 0 and then 251 instead, since the song position is 96 / 6 = 16.
#include <gtest/gtest.h>

#include "tests/modules/hardware/GateRig.h"

namespace {
BR::Test::GateRender Render(bool spp, uint32_t block) {
    auto driver = BR::Test::MakeGateDriver("ardentcontroller");
    driver->SetParameterByName("MIDI Out Clock", 1.0f);
    driver->SetParameterByName("Use MIDI SPP", spp ? 1.0f : 0.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 1.5);
    auto r = BR::Test::RenderGatesWithTransport(*driver, transport, 63100, {block});
    EXPECT_EQ(BR::Test::Controller(*driver).FirstTick(), 96);
    return r;
}
}  // namespace

TEST(GateClock, MidBarStartSendsStartThenClockAtTheBarLine) {
    for (uint32_t block : {1u, 7u, 256u, 1024u}) {
        const auto r = Render(false, block);
        const auto bytes = r.Serial(0);
        ASSERT_GE(bytes.size(), 5u) << block;
        EXPECT_EQ(bytes[0], (BR::Test::ReceivedByte{60000, 250})) << block;
        EXPECT_EQ(bytes[1], (BR::Test::ReceivedByte{60016, 248})) << block;
        EXPECT_EQ(bytes[2], (BR::Test::ReceivedByte{61000, 248})) << block;
        EXPECT_EQ(bytes[3], (BR::Test::ReceivedByte{62000, 248})) << block;
        EXPECT_EQ(bytes[4], (BR::Test::ReceivedByte{63000, 248})) << block;
        EXPECT_EQ(bytes.size(), 5u) << block;
    }
}

TEST(GateClock, SongPositionAtTheBarLine) {
    for (uint32_t block : {7u, 256u}) {
        const auto r = Render(true, block);
        const auto bytes = r.Serial(0);
        ASSERT_GE(bytes.size(), 5u);
        const std::vector<BR::Test::ReceivedByte> expected = {
            {60000, 0xF2}, {60016, 16}, {60032, 0}, {60048, 251}, {60064, 248}};
        EXPECT_EQ(std::vector<BR::Test::ReceivedByte>(bytes.begin(), bytes.begin() + 5), expected) << block;
    }
}
