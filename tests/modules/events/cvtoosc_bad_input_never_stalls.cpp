// Bad input: a listener that goes away leaves sends failing or vanishing silently while rendering goes
// on, and a new listener on the port gets values again; NaN input sends nothing and does not stop the
// channel from reporting later values.
#include <gtest/gtest.h>

#include <limits>

#include "CVToOSCRig.h"

using namespace BR::Test;

TEST(CVToOSCBadInput, VanishedListenerIsSilent) {
    CVToOSCRig rig;
    rig.Target(17806);
    rig.Set("Enable L", 1);
    auto listener = std::make_unique<OSCListener>(17806);
    ASSERT_TRUE(listener->Bound());
    rig.Render(std::vector<float>(64, 0.5f), std::vector<float>(64, 0.0f), 64);
    ASSERT_TRUE(rig.Drained());
    EXPECT_EQ(listener->ReceiveAll(), std::vector<std::string>{"/1/foo 0.5"});
    listener.reset();
    testing::internal::CaptureStderr();
    for (int k = 0; k < 40; ++k) {
        rig.Render(std::vector<float>(64, k % 2 ? 0.25f : -0.25f), std::vector<float>(64, 0.0f), 64);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    ASSERT_TRUE(rig.Drained());  // the thread takes every value, whether the send fails or not
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    OSCListener again(17806);
    ASSERT_TRUE(again.Bound());
    rig.Render(std::vector<float>(64, 0.875f), std::vector<float>(64, 0.0f), 64);
    ASSERT_TRUE(rig.Drained());
    EXPECT_EQ(again.ReceiveAll(), std::vector<std::string>{"/1/foo 0.875"});
}

TEST(CVToOSCBadInput, NaNIsNotSentAndDoesNotStopTheChannel) {
    OSCListener listener(17804);
    ASSERT_TRUE(listener.Bound());
    CVToOSCRig rig;
    rig.Target(17804);
    rig.Set("Enable L", 1);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    std::vector<float> left(64, 0.5f);
    left[63] = nan;  // moved, but the value to send is NaN
    const Channels out = rig.Render(left, std::vector<float>(64, 0.0f), 64);
    EXPECT_TRUE(std::isnan(out[0][63]));  // the audio passes as it came
    rig.Render(std::vector<float>(64, nan), std::vector<float>(64, 0.0f), 64);
    EXPECT_EQ(rig.Sender().WriteIndex(), 0);
    EXPECT_EQ(rig.Module().State(0).lastSent, 0.0f);
    rig.Render(std::vector<float>(64, 0.25f), std::vector<float>(64, 0.0f), 64);
    ASSERT_TRUE(rig.Drained());
    EXPECT_EQ(listener.ReceiveAll(), std::vector<std::string>{"/1/foo 0.25"});
}
