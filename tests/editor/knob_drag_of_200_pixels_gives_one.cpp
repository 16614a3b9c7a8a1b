// A knob dragged 200 px up from 0 reaches exactly 1.0 (200 × 0.005); moving down lowers it; x is ignored.
#include <gtest/gtest.h>

#include "support/HeadlessRig.h"

namespace BR::Test {

TEST(KnobDrag, TwoHundredPixelsUpFromZeroGivesExactlyOne) {
    DCRig rig;
    ASSERT_EQ(rig.Value(rig.level), 0.0f);
    rig.Drag(rig.panel.knob, 200);
    EXPECT_EQ(rig.Value(rig.level), 1.0f);
    EXPECT_EQ(rig.panel.knob->normalised, 1.0f);
}

TEST(KnobDrag, HundredPixelsGivesHalfAndDownwardsLowers) {
    DCRig rig;
    rig.Drag(rig.panel.knob, 100);
    EXPECT_FLOAT_EQ(rig.Value(rig.level), 0.5f);
    rig.Drag(rig.panel.knob, -40);
    EXPECT_FLOAT_EQ(rig.Value(rig.level), 0.3f);
}

TEST(KnobDrag, HorizontalMovementIsIgnoredAndRangeClamps) {
    DCRig rig;
    const Point p = rig.Centre(rig.panel.knob);
    rig.manager.MouseDown(p, 0, 1, false);
    rig.manager.MouseDragged(Point{p.x + 150, p.y}, 0);
    EXPECT_EQ(rig.Value(rig.level), 0.0f);
    rig.manager.MouseDragged(Point{p.x, p.y + 400}, 0);
    EXPECT_EQ(rig.Value(rig.level), 1.0f);
    rig.manager.MouseUp(Point{p.x, p.y + 400}, 0);
}

}  // namespace BR::Test
