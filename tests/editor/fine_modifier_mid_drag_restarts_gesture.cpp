// Pressing Shift in mid-drag restarts the gesture at the current value: no jump, then fine steps.
#include <gtest/gtest.h>

#include "support/HeadlessRig.h"

namespace BR::Test {

TEST(FineModifierMidDrag, RestartsWithoutJump) {
    DCRig rig;
    const Point p = rig.Centre(rig.panel.knob);
    rig.manager.MouseDown(p, 0, 1, false);
    rig.manager.MouseDragged(Point{p.x, p.y + 100}, 0);
    ASSERT_FLOAT_EQ(rig.Value(rig.level), 0.5f);
    rig.manager.MouseDragged(Point{p.x, p.y + 100}, kModShift);
    EXPECT_FLOAT_EQ(rig.Value(rig.level), 0.5f);
    EXPECT_EQ(rig.manager.pressedModifiers, uint32_t(kModShift));
    rig.manager.MouseDragged(Point{p.x, p.y + 200}, kModShift);
    EXPECT_FLOAT_EQ(rig.Value(rig.level), 0.55f);
    // Letting go of Shift restarts again, from 0.55 at coarse speed.
    rig.manager.MouseDragged(Point{p.x, p.y + 200}, 0);
    EXPECT_FLOAT_EQ(rig.Value(rig.level), 0.55f);
    rig.manager.MouseDragged(Point{p.x, p.y + 220}, 0);
    EXPECT_FLOAT_EQ(rig.Value(rig.level), 0.65f);
    rig.manager.MouseUp(Point{p.x, p.y + 220}, 0);
}

}  // namespace BR::Test
