// A signal at 0.0 with `lastSent` 0 never leaves the threshold, even a threshold of 0: a constant
// 0.0 is never reported.
#include <gtest/gtest.h>

#include "CVToOSCRig.h"

using namespace BR::Test;

TEST(CVToOSC, ConstantZeroIsNeverReported) {
    OSCListener listener(17801);
    ASSERT_TRUE(listener.Bound());
    CVToOSCRig rig;
    rig.Target(17801);
    rig.Set("Enable L", 1);
    rig.Set("Enable R", 1);
    rig.Set("Threshold R", 0);
    const std::vector<float> zero(10 * 48000, 0.0f);
    rig.Render(zero, zero, 512);
    EXPECT_EQ(rig.Sender().WriteIndex(), 0);
    EXPECT_EQ(rig.Module().Settings(1).threshold, 0.0f);
    EXPECT_EQ(listener.ReceiveAll(), std::vector<std::string>{});
    // The same module reports a value off zero at once: the listener and target did work.
    rig.Render(std::vector<float>(64, 0.25f), zero);
    ASSERT_TRUE(rig.Drained());
    EXPECT_EQ(listener.ReceiveAll(), std::vector<std::string>{"/1/foo 0.25"});
}
