// MIDI out: messages of the chosen channel (or "Omni") go out on the serial line, renamed by
// "MIDI Out Channelise"; program change and pressure are two bytes; with "MIDI Out Polyphony" at
// "2" three held notes make the third take over a port, its old note gets a note off with velocity
// 127, and that note's own note off later still goes out on that port and frees it.
#include <gtest/gtest.h>

#include "tests/modules/hardware/GateRig.h"

namespace {
std::unique_ptr<BR::HostDriver> MidiOut(float channel, float poly = 0.0f, float channelise = 0.0f) {
    auto driver = BR::Test::MakeGateDriver("ardentcontroller", 44100.0f);
    driver->SetParameterByName("MIDI Out MIDI Channel", channel);
    driver->SetParameterByName("MIDI Out Polyphony", poly);
    driver->SetParameterByName("MIDI Out Channelise", channelise);
    driver->SetParameterByName("MIDI Out Output", 8.0f);  // "Gates 2/1": port p on bit 8 + p
    return driver;
}
}  // namespace

TEST(GateMidiOut, ChannelFilterAndChannelise) {
    auto driver = MidiOut(3.0f, 0.0f, 10.0f);
    const auto r = BR::Test::RenderGates(*driver, 400, 64,
                                         {{0, {0x92, 60, 100}},
                                          {0, {0x93, 61, 100}},
                                          {100, {0xC2, 5}},
                                          {150, {0xD2, 33}},
                                          {200, {0xE2, 0, 64}}});
    EXPECT_EQ(r.SerialBytes(8), (std::vector<uint8_t>{0x99, 60, 100, 0xC9, 5, 0xD9, 33, 0xE9, 0, 64}));
}

TEST(GateMidiOut, PolyphonyTwoTakesOverAPort) {
    auto driver = MidiOut(17.0f, 1.0f);
    auto& module = BR::Test::Controller(*driver);
    const auto r = BR::Test::RenderGates(*driver, 600, 64,
                                         {{0, {0x90, 60, 100}},
                                          {100, {0x90, 62, 100}},
                                          {200, {0x90, 64, 100}},
                                          {300, {0x80, 60, 30}},
                                          {400, {0x80, 62, 40}}});
    // Port 1 (bit 8): 60 on; 60 off (velocity 127) as 64 takes over; 64 on; 60's own note off.
    EXPECT_EQ(r.SerialBytes(8),
              (std::vector<uint8_t>{0x90, 60, 100, 0x80, 60, 127, 0x90, 64, 100, 0x80, 60, 30}));
    // Port 2 (bit 9): 62 on, 62 off.
    EXPECT_EQ(r.SerialBytes(9), (std::vector<uint8_t>{0x90, 62, 100, 0x80, 62, 40}));
    // Port 1 is marked free although 64 is still down there.
    EXPECT_EQ(module.PortNote(1), -1);
    EXPECT_EQ(module.NotePort(64), 1);
    EXPECT_EQ(module.NotePort(60), 0);
}

TEST(GateMidiOut, PedalHoldsPortsUntilReleased) {
    auto driver = MidiOut(1.0f, 1.0f);
    const auto r = BR::Test::RenderGates(
        *driver, 600, 64,
        {{0, {0xB0, 64, 127}}, {10, {0x90, 60, 100}}, {100, {0x80, 60, 0}}, {200, {0xB0, 64, 0}}});
    // The pedal itself is taken; the note off waits for the pedal and goes out with velocity 127.
    EXPECT_EQ(r.SerialBytes(8), (std::vector<uint8_t>{0x90, 60, 100, 0x80, 60, 127}));
    EXPECT_EQ(r.Serial(8)[3].startSample, 200u);
}

TEST(GateMidiOut, SystemMessagesAndExclusive) {
    auto driver = MidiOut(0.0f);
    const auto r = BR::Test::RenderGates(*driver, 800, 64,
                                         {{0, {0xF2, 5, 1}},
                                          {0, {0xF1, 0x23}},
                                          {0, {0xF8}},
                                          {0, {0xF4}},  // undefined: dropped
                                          {0, {0xFE}},
                                          {100, {0xF0, 0x7D, 0x01, 0x02, 0x03, 0x04, 0xF7}}});
    EXPECT_EQ(r.SerialBytes(8),
              (std::vector<uint8_t>{0xF2, 5, 1, 0xF1, 0x23, 0xF8, 0xFE, 0xF0, 0x7D, 1, 2, 3, 4, 0xF7}));
}

TEST(GateMidiOut, MatchNoteOffsAtStop) {
    auto driver = MidiOut(17.0f, 0.0f, 0.0f);
    driver->SetParameterByName("Match Note Offs", 1.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(44100.0, 120.0, 0.0);
    const auto r = BR::Test::RenderGatesWithTransport(
        *driver, transport, 1200, {256}, {{600, false}},
        {{0, {0x90, 60, 100}}, {0, {0x91, 61, 100}}, {50, {0x81, 61, 0}}, {100, {0xB2, 7, 99}}});
    // 60 on channel 1 is still down, and controller 7 on channel 3 counts as a held note: both get a
    // note off with velocity 64 at the stop.
    const std::vector<uint8_t> expected = {0x90, 60, 100, 0x91, 61, 100, 0x81, 61, 0,
                                           0xB2, 7,  99,  0x80, 60, 64,  0x82, 7,  64};
    EXPECT_EQ(r.SerialBytes(8), expected);
    EXPECT_EQ(r.Serial(8)[12].startSample, 600u);
    EXPECT_EQ(BR::Test::Controller(*driver).TrackedCount(0), 0);
}
