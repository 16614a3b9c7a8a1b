// The five frame bytes: base values, the note channel's gate on a level output, the clip of the
// base at 255, level inputs that clamp at 0, input-to-gate bits, and the display's bytes.
#include <gtest/gtest.h>

#include "modules/hardware/ArdentController.h"
#include "tests/modules/hardware/FrameDecoder.h"
#include "tests/support/Render.h"

namespace {
std::vector<std::array<uint8_t, 6>> Render(BR::HostDriver& driver, uint32_t frames,
                                           const BR::Test::Channels& inputs = {},
                                           const std::vector<BR::Test::MidiAt>& midi = {}) {
    const auto out = BR::Test::RenderFrames(driver, frames, 64, inputs, midi);
    return BR::Test::Frames(out[0], out[1], false);
}
}  // namespace

TEST(ArdentFrame, OutputRowsAreTheBytesInTheirPlaces) {
    auto driver = BR::Test::MakeDriver("ardentcontroller");
    const float values[5] = {0x12, 0x34, 0x56, 0x78, 0x9A};
    for (int b = 0; b < 5; ++b)
        driver->SetParameterByName("Output " + std::to_string(b + 1), values[b]);
    driver->SetParameterByName("Ch 1 MIDI Channel", 0.0f);  // no note pitch on byte 1
    const auto out = BR::Test::RenderFrames(*driver, 8, 8);
    // Words by hand from the layout: left 12 34 9_, right 56 78 A_.
    EXPECT_EQ(BR::Test::WordOf(out[0][3], BR::Test::kCatA), 0x123490u);
    EXPECT_EQ(BR::Test::WordOf(out[1][3], BR::Test::kCatA), 0x5678A0u);
    const auto& display = driver->Module().GetStatusBlock()->As<BrelGateControllerStatus>();
    EXPECT_EQ(std::vector<int>(display.frameBytes, display.frameBytes + 5),
              (std::vector<int>{0x12, 0x34, 0x56, 0x78, 0x9A}));
}

TEST(ArdentFrame, GateOnOutputThreeGives255WhileOn) {
    auto driver = BR::Test::MakeDriver("ardentcontroller");
    ASSERT_EQ(driver->Module().GetTableValue(BrelCorvaneArdentController::kCh1MIDIChannel + 3), 3.0f);
    ASSERT_EQ(driver->Module().GetTableValue(2), 0.0f);  // "Output 3" at its default 0
    const auto frames = Render(*driver, 300, {}, {{100, {0x90, 60, 100}}, {200, {0x80, 60, 0}}});
    for (uint32_t i = 0; i < 300; ++i)
        ASSERT_EQ(frames[i][2], i >= 100 && i < 200 ? 255 : 0) << i;
    // The pitch of note 60 over "Ch 1 Range Min" 48 stands on byte 1 and stays after the release.
    EXPECT_EQ(frames[150][0], (60 - 48) * 4);
    EXPECT_EQ(frames[250][0], (60 - 48) * 4);
    // At rest the channel stands on note 0: (0 - 48) & 63 = 16, times 4.
    EXPECT_EQ(frames[50][0], 64);
}

TEST(ArdentFrame, BaseAbove255ClipsAndNegativeInputSumsGiveZero) {
    auto driver = BR::Test::MakeDriver("ardentcontroller");
    driver->SetParameterByName("Ch 1 MIDI Channel", 0.0f);
    driver->SetParameterByName("Ch 2 MIDI Channel", 1.0f);
    driver->SetParameterByName("Ch 2 Gate Output", 4.0f);  // "Output 4": +255 while the gate is on
    driver->SetParameterByName("Output 4", 45.0f);         // 45 + 255 = 300
    driver->SetParameterByName("Input 1", 1.0f);           // input 1 onto byte 1, unipolar
    driver->SetParameterByName("Input 3", 2.0f);           // input 2 onto byte 3, bipolar
    driver->SetParameterByName("Input Mode 3", 1.0f);
    driver->SetParameterByName("Input Thru", 0.0f);
    BR::Test::Channels in(8, std::vector<float>(20, -1.0f));
    in[1] = std::vector<float>(20, -0.5f);
    const auto frames = Render(*driver, 20, in, {{0, {0x90, 60, 1}}});
    EXPECT_EQ(frames[10][3], 255);
    EXPECT_EQ(frames[10][0], 0);   // trunc(-255 + 0.5) = -254, clamped
    EXPECT_EQ(frames[10][2], 65);  // trunc(127 * -0.5 + 128.5) = 65
}

TEST(ArdentFrame, LevelInputsScaleAndTruncate) {
    auto driver = BR::Test::MakeDriver("ardentcontroller");
    driver->SetParameterByName("Ch 1 MIDI Channel", 0.0f);
    driver->SetParameterByName("Input Thru", 0.0f);
    driver->SetParameterByName("Input 2", 4.0f);
    driver->SetParameterByName("Output 2", 10.0f);
    BR::Test::Channels in(8, std::vector<float>(4, 0.0f));
    in[3] = {0.0f, 0.5f, 1.0f, 2.0f};
    const auto frames = Render(*driver, 4, in);
    EXPECT_EQ(frames[0][1], 10);   // trunc(0.5) + 10
    EXPECT_EQ(frames[1][1], 138);  // trunc(128.0) + 10
    EXPECT_EQ(frames[2][1], 255);  // trunc(255.5) + 10, clamped
    EXPECT_EQ(frames[3][1], 255);
}

TEST(ArdentFrame, InputToGateSetsItsBitForPositiveSamplesOnly) {
    auto driver = BR::Test::MakeDriver("ardentcontroller");
    driver->SetParameterByName("Ch 1 MIDI Channel", 0.0f);
    driver->SetParameterByName("Input Thru", 0.0f);
    driver->SetParameterByName("Input 3 To Gate", 12.0f);  // "Gates 2/4"
    driver->SetParameterByName("Input 8 To Gate", 40.0f);  // "Gates 5/8"
    BR::Test::Channels in(8, std::vector<float>(4, 0.0f));
    in[2] = {0.0f, 1e-6f, -0.5f, 1.0f};
    in[7] = {0.25f, 0.0f, 0.0f, -0.0f};
    const auto frames = Render(*driver, 4, in);
    const std::vector<bool> gate11 = {false, true, false, true}, gate39 = {true, false, false, false};
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(BR::Test::GateOf(frames[i], 11), gate11[i]) << i;
        EXPECT_EQ(BR::Test::GateOf(frames[i], 39), gate39[i]) << i;
    }
    EXPECT_EQ(frames[0][4], 0x80);
    EXPECT_EQ(frames[1][1], 0x08);
}
