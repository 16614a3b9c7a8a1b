// "Max Rate" 10 at 48000 lets one value out per 4800 samples at most: a ramp whose samples encode
// their own frame shows, on the wire, that sends lie at least 4800 frames apart, and where.
#include <gtest/gtest.h>

#include "CVToOSCRig.h"

using namespace BR::Test;

TEST(CVToOSC, MaxRateTenAt48000SendsOncePer4800Samples) {
    OSCListener listener(17802);
    ASSERT_TRUE(listener.Bound());
    CVToOSCRig rig(48000.0f);
    rig.Target(17802);
    rig.Set("Enable L", 1);
    rig.Set("Max Rate L", 10);
    std::vector<float> ramp(48000);
    for (size_t i = 0; i < ramp.size(); ++i)
        ramp[i] = float(i) / 65536.0f;  // exact: the frame is the value times 65536
    rig.Render(ramp, std::vector<float>(ramp.size(), 0.0f), 256);
    EXPECT_EQ(rig.Module().Settings(0).minInterval, 4800);
    ASSERT_TRUE(rig.Drained());
    const std::vector<std::string> got = listener.ReceiveAll();
    // One value at the end of the first slice; then the countdown of 4800 runs out inside the 19th
    // slice after it, which sends its last sample: every 19 slices of 256, 4864 frames.
    std::vector<std::string> expected;
    for (int k = 0; 256 * k + 255 < 48000; k += 19) {
        char text[64];
        std::snprintf(text, sizeof text, "/1/foo %.9g", double(float(256 * k + 255) / 65536.0f));
        expected.push_back(text);
    }
    EXPECT_EQ(got, expected);
    ASSERT_EQ(got.size(), 10u);
    for (size_t i = 1; i < got.size(); ++i) {
        const double a = std::stod(got[i - 1].substr(7)) * 65536.0, b = std::stod(got[i].substr(7)) * 65536.0;
        EXPECT_GE(b - a, 4800.0) << i;
    }
}
