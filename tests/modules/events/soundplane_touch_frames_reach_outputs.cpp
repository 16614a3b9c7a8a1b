// Touch frames sent over UDP to one instance's OSC server drive every instance with that "Voice ID":
// two instances on voice 3 show the same touch on all six outputs (calibrated note, gate, x, y, z and
// the default-less sixth), and an instance on another voice shows its own.
#include <gtest/gtest.h>

#include "SoundplaneRig.h"
#include "remote/OSCHelper.h"

using namespace BR::Test;

TEST(SoundplaneTouch, TwoInstancesWithOneVoiceShowTheSameTouch) {
    ClearTouches();
    BR::SetOSCBasePortOverride(17830);
    BR::InstallRemoteServices();
    SoundplaneRig a, b, c;
    BR::SetModuleServicesFactory(nullptr);
    a.Set("OSC Port Offset", 1);
    for (SoundplaneRig* rig : {&a, &b})
        rig->Set("Voice ID", 3);
    c.Set("Voice ID", 4);
    for (SoundplaneRig* rig : {&a, &b, &c}) {
        rig->Module().Calibration().notes[62].value = 0.5f;
        rig->Module().Calibration().notes[63].value = 0.625f;
        rig->Set("Output 6 Offset", 0.125f);
        rig->Set("Output 6 X", -1);
    }
    a.Render(64);  // the port row reaches the server
    ASSERT_TRUE(WaitFor([&] { return BR::OSCHelperOf(a.Module())->ActivePort() == 17831; }));
    SendTouchFrame(17831, {{3, 0.25f, -0.5f, 0.75f, 62.5f}, {4, 0.5f, 0.25f, 0.0f, 63.0f}});
    ASSERT_TRUE(WaitFor([] { return BR::touchTable[3].values[BR::kTouchNote].load() == 63.0f; }));
    const Channels outA = a.Render(128), outB = b.Render(128), outC = c.Render(128);
    const float expectedA[6] = {0.5625f, 1.0f, 0.25f, -0.5f, 0.75f, 0.125f - 0.25f};
    const float expectedC[6] = {0.625f, 0.0f, 0.5f, 0.25f, 0.0f, 0.125f - 0.5f};
    for (int k = 0; k < 6; ++k) {
        EXPECT_EQ(outA[k], std::vector<float>(128, expectedA[k])) << k;
        EXPECT_EQ(outB[k], outA[k]) << k;
        EXPECT_EQ(outC[k], std::vector<float>(128, expectedC[k])) << k;
    }
    BR::SetOSCBasePortOverride(0);
}
