// "Reset By Note": a note-on sets the channel's phase to "Phase" / 360 at the note's own sample, since
// the block is cut at the note's time stamp. Channel, note and velocity do not matter; a note-off does
// not reset. In "Transport" mode the reset holds until the next block's start sets the phase again.
#include <gtest/gtest.h>

#include "tests/support/TransportRender.h"

namespace {
float SawAt(double phase) {
    return float(phase) * 2.0f - 1.0f;
}
}  // namespace

TEST(LFONoteReset, ResetLandsOnNoteSample) {
    auto driver = BR::Test::MakeDriver("lfo", 48000.0f);
    driver->SetParameterByName("Speed L", 1.0f);
    driver->SetParameterByName("Speed R", 1.0f);
    driver->SetParameterByName("Saw L", 1.0f);
    driver->SetParameterByName("Saw R", 1.0f);
    driver->SetParameterByName("Phase L", 90.0f);
    driver->SetParameterByName("Reset By Note L", 1.0f);
    const std::vector<BR::Test::MidiAt> midi = {{900, {0x80, 60, 0}},   // note-off: no reset
                                                {1000, {0x90, 60, 0}},  // velocity 0 is a note-off
                                                {1234, {0x9F, 12, 1}}};
    const BR::Test::Channels out = BR::Test::RenderFrames(*driver, 3000, 256, {}, midi);
    EXPECT_NEAR(out[0][1233], SawAt(1233.0 / 48000.0), 1e-5f);
    EXPECT_EQ(out[0][1234], -0.5f);  // phase 0.25 exactly
    EXPECT_NEAR(out[0][1235], SawAt(0.25 + 1.0 / 48000.0), 1e-5f);
    EXPECT_NEAR(out[0][2999], SawAt(0.25 + 1765.0 / 48000.0), 1e-5f);
    // R has no reset: it runs on.
    EXPECT_NEAR(out[1][1234], SawAt(1234.0 / 48000.0), 1e-5f);
    EXPECT_NEAR(out[1][2999], SawAt(2999.0 / 48000.0), 1e-5f);
}

TEST(LFONoteReset, TransportModeResetHoldsUntilNextBlock) {
    auto driver = BR::Test::MakeDriver("lfo", 48000.0f);
    driver->SetParameterByName("Sync L", 2.0f);
    driver->SetParameterByName("Saw L", 1.0f);  // a cycle of 4 beats, 96000 samples
    driver->SetParameterByName("Reset By Note L", 1.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 2.0);
    const BR::Test::Channels out =
        BR::Test::RenderWithTransport(*driver, transport, 1024, {512}, {}, {{100, {0x90, 64, 90}}});
    EXPECT_NEAR(out[0][99], SawAt(0.5 + 99.0 / 96000.0), 1e-5f);
    EXPECT_EQ(out[0][100], -1.0f);  // "Phase" 0
    EXPECT_NEAR(out[0][511], SawAt(411.0 / 96000.0), 1e-5f);
    EXPECT_NEAR(out[0][512], SawAt(0.5 + 512.0 / 96000.0), 1e-5f);  // the host position again
}
