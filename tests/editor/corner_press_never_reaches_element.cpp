// A press in the lower-right corner triangle (x − y above the width less 16) starts a window resize and
// never reaches the element under it.
#include <gtest/gtest.h>

#include "support/HeadlessRig.h"

namespace BR::Test {

TEST(CornerPress, StartsResizeInsteadOfElement) {
    DCRig rig;
    // A knob right in the corner of the 400 by 200 panel.
    rig.panel.secondKnob->SetRect(366 - 20, 0 - 20, 34, 34);
    const Point corner{395, 3};
    ASSERT_EQ(rig.manager.rootGroup->HitTest(corner), rig.panel.secondKnob);
    rig.manager.MouseDown(corner, 0, 2, false);  // a double click would reset the knob
    EXPECT_EQ(rig.manager.pressedElement, nullptr);
    EXPECT_EQ(rig.manager.resizing, 1);
    EXPECT_EQ(rig.manager.editedParameter, -1);
    rig.manager.MouseUp(corner, 0);
    EXPECT_EQ(rig.manager.resizing, 0);
    EXPECT_EQ(rig.Value(rig.multiplier), 1.0f);
    // Just outside the triangle (x − y = 384) the element takes the press.
    rig.manager.MouseDown(Point{395, 11}, kModControl, 2, false);
    EXPECT_EQ(rig.manager.pressedElement, rig.panel.secondKnob);
    EXPECT_EQ(rig.Value(rig.multiplier), 0.0f);
    rig.manager.MouseUp(Point{395, 11}, 0);
}

}  // namespace BR::Test
