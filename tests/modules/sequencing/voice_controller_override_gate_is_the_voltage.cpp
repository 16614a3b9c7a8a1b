// "Override Gate" puts the value of "Gate" out as the gate voltage itself: 0.5 gives 0.5, not a place
// between "Gate Closed Voltage" and "Gate Open Voltage".
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

TEST(VoiceControllerGate, OverrideGivesTheVoltageItself) {
    BR::Test::VoiceRig rig;
    rig.Set("Gate Closed Voltage", -1.0f);
    rig.Set("Gate Open Voltage", 0.8f);
    auto out = rig.Render(128, 64, {{64, BR::Test::Midi(0x90, 60, 100)}});
    EXPECT_EQ(out[1][63], -1.0f);
    EXPECT_EQ(out[1][64], 0.8f);
    rig.Set("Override Gate", 1);
    rig.Set("Gate", 0.5f);
    out = rig.Render(128, 64, {{64, BR::Test::Midi(0x80, 60, 0)}});
    for (float v : out[1])
        ASSERT_EQ(v, 0.5f);
    EXPECT_FALSE(rig.vc.GateOpen());
    EXPECT_EQ(rig.vc.GateVoltage(), 0.5f);
}
