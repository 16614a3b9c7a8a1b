// At a sample rate outside the six (32000 Hz) the frame still works: bytes, gate groups and inputs
// behave, a port's counter keeps rising and its queue never drains, and no MIDI reaches a gate bit.
#include <gtest/gtest.h>

#include "modules/hardware/ArdentController.h"
#include "tests/modules/hardware/FrameDecoder.h"
#include "tests/support/Render.h"

TEST(ArdentRate, ThirtyTwoKilohertzGivesFramesWithoutMidiLine) {
    auto driver = BR::Test::MakeDriver("ardentcontroller", 32000.0f);
    auto& module = static_cast<BrelGateControllerBase&>(driver->Module());
    driver->SetParameterByName("Ch 1 MIDI Channel", 0.0f);
    driver->SetParameterByName("Output 2", 0x21);
    driver->SetParameterByName("Gates 3 MIDI Channel", 1.0f);
    driver->SetParameterByName("MIDI Out MIDI Channel", 17.0f);
    driver->SetParameterByName("MIDI Out Clock", 1.0f);
    driver->SetParameterByName("Send", 1.0f);
    const auto out = BR::Test::RenderFrames(*driver, 500, 128, {}, {{100, {0x90, 50, 100}}});
    const auto frames = BR::Test::Frames(out[0], out[1], false);
    EXPECT_EQ(module.RateClass(), 0);
    for (size_t i = 0; i < frames.size(); ++i) {
        ASSERT_EQ(frames[i][0], 0) << i;  // "MIDI Out Output" "Gates 1/1" stays clear
        ASSERT_EQ(frames[i][1], 0x21) << i;
        ASSERT_EQ(frames[i][2], i >= 100 ? 0x04 : 0) << i;  // note 50 is gate 3 of group 3
    }
    // "Send" queued one byte at sample 0, the note on three more at 100: nothing drained, and the
    // counter has risen by one a sample since the port woke.
    EXPECT_EQ(module.Port(0).queueLength, 4);
    EXPECT_EQ(module.Port(0).symbolCounter, 501);
    BR::Test::RenderFrames(*driver, 300, 128);
    EXPECT_EQ(module.Port(0).symbolCounter, 801);
    EXPECT_EQ(module.Port(0).queueLength, 4);
}
