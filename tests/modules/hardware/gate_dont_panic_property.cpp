// Property 64094 ("Don't Panic") is writable, one byte; setting it only posts to the audio thread,
// and the next block sends controller 120 through the MIDI logic on all 16 channels: every gate
// drops, and a MIDI out that passes the channels sends the controller on.
#include <gtest/gtest.h>

#include "tests/modules/hardware/GateRig.h"

TEST(GateDontPanic, PropertyDropsAllGatesAndSendsAllSoundOff) {
    for (const char* stem : {"ardentcontroller", "basaltcontroller"}) {
        auto driver = BR::Test::MakeGateDriver(stem, 44100.0f);
        BrelCorvaneBase& module = driver->Module();
        uint32_t size = 0;
        bool writable = false;
        ASSERT_EQ(module.GetPropertyInfo(64094, &size, &writable), BR::kNoErr);
        EXPECT_EQ(size, 1u);
        EXPECT_TRUE(writable);
        driver->SetParameterByName("Gates 1 MIDI Channel", 1.0f);
        driver->SetParameterByName("Gates 2 MIDI Channel", 16.0f);
        driver->SetParameterByName("MIDI Out MIDI Channel", 17.0f);
        driver->SetParameterByName("MIDI Out Output", 32.0f);  // "Gates 5/1"
        auto r = BR::Test::RenderGates(*driver, 100, 64, {{0, {0x90, 48, 100}}, {0, {0x9F, 50, 100}}});
        EXPECT_EQ(r.frames[99][0], 0x01) << stem;
        EXPECT_EQ(r.frames[99][1], 0x04) << stem;
        const uint8_t one = 1;
        ASSERT_EQ(module.SetProperty(64094, &one, 1), BR::kNoErr);
        EXPECT_EQ(module.ToAudioQueue().IsFull(), false);
        r = BR::Test::RenderGates(*driver, 16 * 3 * 15 + 10, 256);
        EXPECT_EQ(r.frames[0][0], 0) << stem;
        EXPECT_EQ(r.frames[0][1], 0) << stem;
        std::vector<uint8_t> expected;
        for (uint8_t c = 0; c < 16; ++c)
            expected.insert(expected.end(), {uint8_t(0xB0 | c), 120, 0});
        EXPECT_EQ(r.SerialBytes(32), expected) << stem;
    }
}
