// With "MIDI Out Output" at "Gates 5/8" and "MIDI Out Polyphony" at "4", all four ports use gate
// bit 39, which carries the OR of their four lines: the same notes with the ports on bits 36 to 39
// give four lines whose OR is that bit, sample for sample.
#include <gtest/gtest.h>

#include "tests/modules/hardware/FrameDecoder.h"
#include "tests/support/Render.h"

namespace {
std::vector<std::array<uint8_t, 6>> Render(float outputGate) {
    auto driver = BR::Test::MakeDriver("ardentcontroller", 44100.0f);
    driver->SetParameterByName("Ch 1 MIDI Channel", 0.0f);
    driver->SetParameterByName("MIDI Out MIDI Channel", 17.0f);  // "Omni"
    driver->SetParameterByName("MIDI Out Polyphony", 3.0f);      // "4": ports 1 to 4
    driver->SetParameterByName("MIDI Out Output", outputGate);
    // Four notes at once go to four ports; their note offs later.
    const std::vector<BR::Test::MidiAt> midi = {
        {5, {0x90, 60, 100}}, {5, {0x90, 64, 90}}, {5, {0x90, 67, 80}}, {5, {0x90, 71, 70}},
        {60, {0x80, 64, 0}},  {61, {0x80, 60, 1}}, {62, {0x80, 71, 2}}, {63, {0x80, 67, 3}}};
    const auto out = BR::Test::RenderFrames(*driver, 200, 32, {}, midi);
    return BR::Test::Frames(out[0], out[1], false);
}
}  // namespace

TEST(ArdentPorts, FourPortsOnGate39AreOred) {
    const auto shared = Render(39.0f);    // "Gates 5/8": min(39 + p, 39) for every port
    const auto separate = Render(36.0f);  // "Gates 5/5": ports on 36, 37, 38 and 39
    int busy = 0, differing = 0;
    for (size_t i = 0; i < shared.size(); ++i) {
        const bool lines[4] = {BR::Test::GateOf(separate[i], 36), BR::Test::GateOf(separate[i], 37),
                               BR::Test::GateOf(separate[i], 38), BR::Test::GateOf(separate[i], 39)};
        const bool any = lines[0] || lines[1] || lines[2] || lines[3];
        ASSERT_EQ(BR::Test::GateOf(shared[i], 39), any) << "sample " << i;
        for (int g = 36; g < 39; ++g)
            ASSERT_FALSE(BR::Test::GateOf(shared[i], g)) << i;
        busy += any;
        differing += (lines[0] != lines[1]) || (lines[1] != lines[2]) || (lines[2] != lines[3]);
    }
    // The lines do differ, so the OR is not any one of them.
    EXPECT_GT(busy, 40);
    EXPECT_GT(differing, 10);
    // Each separate line decodes to its own note on and note off.
    const auto port2 = BR::Test::ReceiveSerial(BR::Test::GateLine(separate, 37), 44100.0);
    ASSERT_EQ(port2.size(), 6u);
    EXPECT_EQ(port2[0], (BR::Test::ReceivedByte{5, 0x90}));
    EXPECT_EQ(port2[1].value, 64);
    EXPECT_EQ(port2[2].value, 90);
    EXPECT_EQ(port2[3], (BR::Test::ReceivedByte{60, 0x80}));
}
