// Basalt Controller: six bytes three to a word; a byte on a port lasts 32 samples at 96000 and 30 at
// 88200; "Input 1 To Gate" at "Gates 5/8" sets bit 7 of b5, the middle byte of the right word; thru
// "1/2" with a small positive sample sets low bits of b3 on the left word; controller 64 does
// nothing and 120 clears the groups of its channel.
#include <gtest/gtest.h>

#include "tests/modules/hardware/GateRig.h"

TEST(BasaltFrame, OutputsAndGroupsInTheirPlaces) {
    auto driver = BR::Test::MakeDriver("basaltcontroller");
    for (int b = 0; b < 6; ++b)
        driver->SetParameterByName("Output " + std::to_string(b + 1), float(0x11 * (b + 1)));
    driver->SetParameterByName("Gates 6 MIDI Channel", 2.0f);
    driver->SetParameterByName("Gates 6 Base Note", 70.0f);
    const auto out = BR::Test::RenderFrames(*driver, 20, 8, {}, {{10, {0x91, 77, 100}}});
    EXPECT_EQ(BR::Test::WordOf(out[0][5], BR::Test::kCatA), 0x112233u);
    EXPECT_EQ(BR::Test::WordOf(out[1][5], BR::Test::kCatA), 0x445566u);
    EXPECT_EQ(BR::Test::WordOf(out[1][15], BR::Test::kCatA), 0x4455E6u);  // gate 6/8 is bit 7 of b6
    const auto& display = driver->Module().GetStatusBlock()->As<BrelGateControllerStatus>();
    EXPECT_EQ(std::vector<int>(display.frameBytes, display.frameBytes + 6),
              (std::vector<int>{0x11, 0x22, 0x33, 0x44, 0x55, 0xE6}));
}

TEST(BasaltSerial, ByteLengthsAt96000And88200) {
    for (float rate : {96000.0f, 88200.0f}) {
        auto driver = BR::Test::MakeDriver("basaltcontroller", rate);
        driver->SetParameterByName("Send", 1.0f);
        driver->SetParameterByName("Bytes", 2.0f);
        driver->SetParameterByName("Byte 2", 0.0f);  // all data bits "0": the gate is set for 9 bits
        const auto r = BR::Test::RenderGates(*driver, 200, 64);
        const uint32_t length = rate == 96000.0f ? 32 : 30;
        const auto received = r.Serial(0);
        EXPECT_EQ(received, (std::vector<BR::Test::ReceivedByte>{{0, 0xF8}, {length, 0}})) << rate;
        // The second byte: start and eight "0" bits set the gate, then stop and end of byte are
        // clear: 9 / 11 of the base pattern, held two samples each.
        const auto line = r.Line(0);
        const uint32_t set = rate == 96000.0f ? 28 : 26;
        for (uint32_t i = length; i < 2 * length + 5; ++i)
            ASSERT_EQ(line[i], i < length + set) << rate << " " << i;
    }
}

TEST(BasaltFrame, InputToGateFiveEightIsTheMiddleByteOfTheRightWord) {
    auto driver = BR::Test::MakeDriver("basaltcontroller");
    driver->SetParameterByName("Input Thru", 0.0f);
    driver->SetParameterByName("Input 1 To Gate", 40.0f);
    BR::Test::Channels in(8, std::vector<float>(4, 0.0f));
    in[0] = {0.0f, 0.5f, -0.5f, 0.0f};
    const auto out = BR::Test::RenderFrames(*driver, 4, 4, in);
    EXPECT_EQ(BR::Test::WordOf(out[1][0], BR::Test::kCatA), 0u);
    EXPECT_EQ(BR::Test::WordOf(out[1][1], BR::Test::kCatA), 0x008000u);
    EXPECT_EQ(BR::Test::WordOf(out[0][1], BR::Test::kCatA), 0u);
    EXPECT_EQ(BR::Test::WordOf(out[1][2], BR::Test::kCatA), 0u);
}

TEST(BasaltFrame, SmallThruSampleSetsLowBitsOfB3) {
    auto driver = BR::Test::MakeDriver("basaltcontroller");  // "Input Thru" is "1/2" by default
    BR::Test::Channels in(8, std::vector<float>(4, 0.0f));
    in[0].assign(4, 5.0f / 8388608.0f);
    const auto out = BR::Test::RenderFrames(*driver, 4, 4, in);
    const uint32_t left = BR::Test::WordOf(out[0][0], BR::Test::kCatA);
    EXPECT_EQ(left, 5u);
    EXPECT_EQ(BR::Test::SixBytes(left, 0)[2], 5);
}

TEST(BasaltMidi, PedalDoesNothingAndAllSoundOffClearsGroups) {
    auto driver = BR::Test::MakeDriver("basaltcontroller");
    driver->SetParameterByName("Gates 1 MIDI Channel", 1.0f);
    driver->SetParameterByName("Gates 2 MIDI Channel", 2.0f);
    const auto r = BR::Test::RenderGates(*driver, 40, 8,
                                         {{0, {0x90, 48, 100}},
                                          {0, {0x91, 49, 100}},
                                          {10, {0xB0, 64, 127}},
                                          {15, {0x80, 48, 0}},
                                          {20, {0xB1, 123, 0}}});
    EXPECT_EQ(r.frames[12][0], 0x01);
    EXPECT_EQ(r.frames[16][0], 0x00);  // the pedal held nothing
    EXPECT_EQ(r.frames[19][1], 0x02);
    EXPECT_EQ(r.frames[20][1], 0x00);
}
