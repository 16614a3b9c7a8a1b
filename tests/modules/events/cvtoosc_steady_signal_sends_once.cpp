// A steady signal sends one value, the first that left the threshold around 0, and nothing after;
// the value sent is the slice's last sample, though the whole slice is tested; a channel that is off
// passes its audio and sends nothing.
#include <gtest/gtest.h>

#include "CVToOSCRig.h"

using namespace BR::Test;

TEST(CVToOSC, SteadySignalSendsOnlyTheFirstValue) {
    OSCListener listener(17800);
    ASSERT_TRUE(listener.Bound());
    CVToOSCRig rig;
    rig.Target(17800);
    rig.Set("Enable L", 1);
    const std::vector<float> left(48000, 0.5f), right(48000, 0.75f);
    const Channels out = rig.Render(left, right);
    EXPECT_EQ(out[0], left);
    EXPECT_EQ(out[1], right);  // R is off: passed through, and silent on the wire
    ASSERT_TRUE(rig.Drained());
    EXPECT_EQ(listener.ReceiveAll(), std::vector<std::string>{"/1/foo 0.5"});
    EXPECT_EQ(rig.Sender().WriteIndex(), 1);
    EXPECT_EQ(rig.Module().State(0).lastSent, 0.5f);
}

TEST(CVToOSC, SpikeInsideASliceSendsTheSlicesLastSample) {
    OSCListener listener(17809);
    ASSERT_TRUE(listener.Bound());
    CVToOSCRig rig;
    rig.Target(17809);
    rig.Set("Enable R", 1);
    rig.SetText(BrelCorvaneCVToOSC::kPropertyPathR, "/cv/right");
    std::vector<float> right(256, 0.0f);
    right[100] = 0.9f;     // leaves the threshold of 0.001 around 0
    right[255] = 0.0005f;  // inside it, but it is the value sent
    rig.Render(std::vector<float>(256, 0.0f), right);
    ASSERT_TRUE(rig.Drained());
    EXPECT_EQ(listener.ReceiveAll(), std::vector<std::string>{"/cv/right 0.000500000024"});
}
