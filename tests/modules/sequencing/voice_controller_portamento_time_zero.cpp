// "Auto" portamento with time 0 has the coefficient exp(-infinity), 0, so the pitch jumps; "CT Auto"
// with time 0 switches portamento off for that block.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

using BR::Test::Midi;

TEST(VoiceControllerPortamento, AutoWithTimeZeroJumps) {
    BR::Test::VoiceRig rig;
    rig.LinearCalibration();
    rig.Set("Portamento Mode", 1);
    rig.Set("Portamento Time", 0.0f);
    const auto out = rig.Render(512, 256, {{0, Midi(0x90, 60, 100)}, {300, Midi(0x90, 72, 100)}});
    EXPECT_TRUE(rig.vc.PortamentoActive());
    EXPECT_FLOAT_EQ(out[0][299], 60 / 128.0f);
    EXPECT_FLOAT_EQ(out[0][300], 72 / 128.0f);
}

TEST(VoiceControllerPortamento, ConstantTimeWithTimeZeroIsOff) {
    BR::Test::VoiceRig rig;
    rig.LinearCalibration();
    rig.Set("Portamento Mode", 3);
    rig.Set("Portamento Time", 0.0f);
    const auto out = rig.Render(512, 256, {{0, Midi(0x90, 60, 100)}, {300, Midi(0x90, 72, 100)}});
    EXPECT_FALSE(rig.vc.PortamentoActive());
    EXPECT_FLOAT_EQ(out[0][299], 60 / 128.0f);
    EXPECT_FLOAT_EQ(out[0][300], 72 / 128.0f);
    // A time that gives no whole sample is 0 too.
    rig.Set("Portamento Time", 0.00001f);
    rig.Render(64);
    EXPECT_FALSE(rig.vc.PortamentoActive());
    rig.Set("Portamento Time", 0.01f);
    rig.Render(64);
    EXPECT_TRUE(rig.vc.PortamentoActive());
}
