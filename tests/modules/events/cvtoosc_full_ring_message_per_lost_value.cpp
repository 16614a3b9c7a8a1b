// With the ring full, each value posted is lost with one diagnostic line, while `lastSent` and the
// countdown move all the same; a good target set afterwards takes out what the ring held.
#include <gtest/gtest.h>

#include "CVToOSCRig.h"

using namespace BR::Test;
using BrelCorvaneCVToOSC::kPropertyTarget;

namespace {
// One slice of 64 frames at `level`; "Max Rate" 1000 at 48000 waits 48 samples, so every slice whose
// level differs from the last one sent posts a value.
void Slice(CVToOSCRig& rig, float level) {
    rig.Render(std::vector<float>(64, level), std::vector<float>(64, 0.0f), 64);
}
}  // namespace

TEST(CVToOSC, FullRingPrintsOncePerLostValue) {
    OSCListener listener(17807);
    ASSERT_TRUE(listener.Bound());
    CVToOSCRig rig;
    rig.Set("Enable L", 1);
    rig.Target(17807);
    Slice(rig, 0.5f);
    ASSERT_TRUE(rig.Drained());
    EXPECT_EQ(rig.Sender().ReadIndex(), 0);
    EXPECT_EQ(listener.ReceiveAll(), std::vector<std::string>{"/1/foo 0.5"});

    // No port: the thread fails each wake-up and takes nothing, so the ring fills behind entry 0.
    rig.SetText(kPropertyTarget, "127.0.0.1");
    testing::internal::CaptureStderr();
    for (int k = 1; k <= 63; ++k)
        Slice(rig, k % 2 ? -0.25f : 0.25f);
    EXPECT_EQ(rig.Sender().WriteIndex(), 0);  // 63 more: full
    EXPECT_EQ(rig.Sender().Overflows(), 0u);
    Slice(rig, 0.75f);
    Slice(rig, -0.75f);
    Slice(rig, 0.125f);
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(err,
              "OSCSender::SetParamQueue::Write() overflow\n"
              "OSCSender::SetParamQueue::Write() overflow\n"
              "OSCSender::SetParamQueue::Write() overflow\n");
    EXPECT_EQ(rig.Sender().Overflows(), 3u);
    EXPECT_EQ(rig.Module().State(0).lastSent, 0.125f);  // the lost value still counts as sent
    EXPECT_EQ(rig.Module().State(0).countdown, 48);

    // Back to the listener: the 63 values held go out, the three lost ones never do.
    rig.Target(17807);
    ASSERT_TRUE(rig.Drained());
    const std::vector<std::string> got = listener.ReceiveAll();
    ASSERT_EQ(got.size(), 63u);
    EXPECT_EQ(got.front(), "/1/foo -0.25");
    EXPECT_EQ(got.back(), "/1/foo -0.25");
    for (const std::string& text : got)
        EXPECT_TRUE(text == "/1/foo 0.25" || text == "/1/foo -0.25") << text;
}
