// Byte 0xF8 sent with "Send" on port 0 at 44100 Hz: the gate bit of "MIDI Out Output" carries the
// start bit, the data bits least significant first and the stop bit, sample by sample, in the uneven
// pattern of that rate, 15 samples in all; the line is clear before and after.
#include <gtest/gtest.h>

#include "tests/modules/hardware/FrameDecoder.h"
#include "tests/support/Render.h"

TEST(ArdentSerial, ByteF8At44100FollowsTheUnevenPattern) {
    auto driver = BR::Test::MakeDriver("ardentcontroller", 44100.0f);
    ASSERT_TRUE(driver);
    ASSERT_TRUE(driver->SetParameterByName("Send", 1.0f));  // "Byte 1" is 248 by default, "Bytes" 1
    driver->SetParameterByName("Ch 1 MIDI Channel", 0.0f);  // no resting pitch on byte 1
    const auto out = BR::Test::RenderFrames(*driver, 40, 64);
    const auto frames = BR::Test::Frames(out[0], out[1], false);
    const auto line = BR::Test::GateLine(frames, 0);  // "Gates 1/1"
    // high (start); high, high (bit 0); high (bit 1); high, high (bit 2); then bits 3 to 7 are 1: low.
    const std::vector<bool> expected = {true,  true,  true,  true,  true,  true,  false, false,
                                        false, false, false, false, false, false, false};
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(line[i], expected[i]) << "sample " << i;
    for (size_t i = expected.size(); i < line.size(); ++i)
        EXPECT_FALSE(line[i]) << "sample " << i;
    // Only that bit moves: every other bit of the frame stays 0.
    for (size_t i = 0; i < frames.size(); ++i) {
        auto rest = frames[i];
        rest[0] &= 0xFE;
        for (uint8_t b : rest)
            ASSERT_EQ(b, 0) << i;
    }
    const auto received = BR::Test::ReceiveSerial(line, 44100.0);
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0], (BR::Test::ReceivedByte{0, 0xF8}));
}

TEST(ArdentSerial, SendActsOnTheRisingEdgeOnly) {
    auto driver = BR::Test::MakeDriver("ardentcontroller", 44100.0f);
    driver->SetParameterByName("Send", 1.0f);
    driver->SetParameterByName("Byte 1", 0x90);
    driver->SetParameterByName("Byte 2", 60);
    driver->SetParameterByName("Byte 3", 100);
    driver->SetParameterByName("Bytes", 3);
    auto out = BR::Test::RenderFrames(*driver, 200, 16);
    auto received =
        BR::Test::ReceiveSerial(BR::Test::GateLine(BR::Test::Frames(out[0], out[1], false), 0), 44100.0);
    // Three bytes back to back, 15 samples apart, sent once although "Send" stays on.
    EXPECT_EQ(received, (std::vector<BR::Test::ReceivedByte>{{0, 0x90}, {15, 60}, {30, 100}}));
    driver->SetParameterByName("Send", 0.0f);
    BR::Test::RenderFrames(*driver, 10, 16);
    driver->SetParameterByName("Bytes", 1);
    driver->SetParameterByName("Send", 1.0f);
    out = BR::Test::RenderFrames(*driver, 40, 16);
    received =
        BR::Test::ReceiveSerial(BR::Test::GateLine(BR::Test::Frames(out[0], out[1], false), 0), 44100.0);
    EXPECT_EQ(received, (std::vector<BR::Test::ReceivedByte>{{0, 0x90}}));
}
