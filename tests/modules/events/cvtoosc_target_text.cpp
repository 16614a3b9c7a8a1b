// Reading the target text: "osc.udp://" in front names the same target as without it; no ":" leaves
// the port at -1, and then the socket fails on each wake-up, silently, the values staying in the ring
// until a good target is set.
#include <gtest/gtest.h>

#include "CVToOSCRig.h"

using namespace BR::Test;
using BrelCorvaneCVToOSC::kPropertyTarget;
using BrelCorvaneCVToOSC::ParseTarget;

TEST(CVToOSCTarget, PrefixNamesTheSameTarget) {
    EXPECT_EQ(ParseTarget("osc.udp://127.0.0.1:17803").host, "127.0.0.1");
    EXPECT_EQ(ParseTarget("osc.udp://127.0.0.1:17803").port, 17803);
    EXPECT_EQ(ParseTarget("localhost").port, -1);
    EXPECT_EQ(ParseTarget("localhost").host, "localhost");
    OSCListener listener(17803);
    ASSERT_TRUE(listener.Bound());
    CVToOSCRig rig;
    rig.Set("Enable L", 1);
    const char* texts[] = {"osc.udp://127.0.0.1:17803", "127.0.0.1:17803", "osc.udp://localhost:17803"};
    float level = 0.125f;
    for (const char* text : texts) {
        rig.SetText(kPropertyTarget, text);
        EXPECT_TRUE(rig.Sender().TargetResolved()) << text;
        EXPECT_EQ(rig.Sender().TargetAddress(), 0x7F000001u) << text;
        EXPECT_EQ(rig.Sender().TargetPort(), 17803) << text;
        rig.Render(std::vector<float>(256, level), std::vector<float>(256, 0.0f));
        ASSERT_TRUE(rig.Drained());
        char expected[64];
        std::snprintf(expected, sizeof expected, "/1/foo %.9g", double(level));
        EXPECT_EQ(listener.ReceiveAll(), std::vector<std::string>{expected}) << text;
        level *= 2.0f;
    }
    // The text is kept as typed.
    const char* shown = nullptr;
    ASSERT_EQ(rig.Module().GetProperty(kPropertyTarget, &shown), 0);
    EXPECT_STREQ(shown, "osc.udp://localhost:17803");
}

TEST(CVToOSCTarget, NoPortFailsEachWakeUpSilently) {
    OSCListener listener(17805);
    ASSERT_TRUE(listener.Bound());
    CVToOSCRig rig;
    rig.Set("Enable L", 1);
    rig.SetText(kPropertyTarget, "127.0.0.1");
    EXPECT_EQ(rig.Sender().TargetPort(), -1);
    testing::internal::CaptureStderr();
    const uint32_t before = rig.Sender().FailedPasses();
    for (int k = 1; k <= 5; ++k) {
        rig.Render(std::vector<float>(64, 0.1f * float(k)), std::vector<float>(64, 0.0f), 64);
        // Each post wakes the thread, and each wake-up fails.
        ASSERT_TRUE(WaitUntil([&] { return rig.Sender().FailedPasses() >= before + uint32_t(k); })) << k;
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(rig.Sender().ReadIndex(), -1);  // nothing taken: all five wait in the ring
    EXPECT_EQ(rig.Sender().WriteIndex(), 5);
    EXPECT_EQ(rig.Sender().PacketsSent(), 0u);
    EXPECT_EQ(listener.Receive(200), "");
    // A good target: the values left in the ring go out, in order.
    rig.SetText(kPropertyTarget, "127.0.0.1:17805");
    ASSERT_TRUE(rig.Drained());
    EXPECT_EQ(listener.ReceiveAll(),
              (std::vector<std::string>{"/1/foo 0.100000001", "/1/foo 0.200000003", "/1/foo 0.300000012",
                                        "/1/foo 0.400000006", "/1/foo 0.5"}));
}

TEST(CVToOSCTarget, UnresolvableHostFailsSilently) {
    CVToOSCRig rig;
    rig.Set("Enable L", 1);
    rig.SetText(kPropertyTarget, "no-such-host.invalid:17806");
    EXPECT_FALSE(rig.Sender().TargetResolved());
    EXPECT_EQ(rig.Sender().TargetPort(), 17806);
    testing::internal::CaptureStderr();
    const uint32_t before = rig.Sender().FailedPasses();
    rig.Render(std::vector<float>(64, 0.5f), std::vector<float>(64, 0.0f), 64);
    ASSERT_TRUE(WaitUntil([&] { return rig.Sender().FailedPasses() > before; }));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(rig.Sender().PacketsSent(), 0u);
}
