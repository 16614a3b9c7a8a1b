// The shared gate scan: a closed gate opens above the upper threshold, an open one closes below the
// lower one; a single threshold counts a value exactly on it as low.
#include <gtest/gtest.h>

#include "modules/sequencing/EdgeScan.h"

TEST(EdgeScan, HysteresisBetweenTheThresholds) {
    const BR::GateThresholds t{0.21f, 0.19f};
    const float x[10] = {0.0f, 0.21f, 0.22f, 0.2f, 0.19f, 0.18f, 0.2f, 0.215f, 0.1f, 0.5f};
    bool open = false;
    EXPECT_EQ(BR::NextRisingEdge(x, 0, 10, open, t), 2u);  // 0.21 is not above 0.21
    EXPECT_TRUE(open);
    // 0.2 and 0.19 keep it open, 0.18 closes it, 0.2 does not reopen it, 0.215 does.
    EXPECT_EQ(BR::FindGateChange(x, 2, 10, true, t), 5u);
    EXPECT_EQ(BR::NextRisingEdge(x, 3, 10, open, t), 7u);
    EXPECT_EQ(BR::NextRisingEdge(x, 8, 10, open, t), 9u);
    EXPECT_EQ(BR::NextRisingEdge(x, 10, 10, open, t), 10u);
    EXPECT_TRUE(open);
    bool closed = true;
    EXPECT_EQ(BR::NextRisingEdge(x, 7, 9, closed, t), 9u);  // closes at 8, no new rise before the end
    EXPECT_FALSE(closed);
}

TEST(EdgeScan, SingleThresholdValueOnItIsLow) {
    const BR::GateThresholds t = BR::GateThresholds::Single(0.5f);
    const float x[4] = {0.5f, std::nextafter(0.5f, 1.0f), 0.5f, 0.7f};
    EXPECT_EQ(BR::FindGateChange(x, 0, 4, false, t), 1u);
    EXPECT_EQ(BR::FindGateChange(x, 1, 4, true, t), 2u);
    EXPECT_EQ(BR::FindGateChange(x, 2, 4, false, t), 3u);
}
