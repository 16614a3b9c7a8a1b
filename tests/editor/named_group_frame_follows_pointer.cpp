// A named group's frame eases towards the active colour while the pointer is inside it and back to the
// inactive colour after, new = 0.85 × old + 0.15 × target each frame.
#include <gtest/gtest.h>

#include "support/HeadlessRig.h"

namespace BR::Test {

TEST(NamedGroupFrame, EasesTowardsActiveWhileHovered) {
    DCRig rig;
    NamedGroup* group = rig.panel.group;
    ASSERT_FLOAT_EQ(group->colour[0], 0.6f);
    // Inside the frame but on no control.
    rig.manager.MouseMoved(Point{20 + 60, 20 + 5});
    EXPECT_TRUE(group->hovered);
    group->Animate();
    EXPECT_FLOAT_EQ(group->colour[0], 0.85f * 0.6f + 0.15f * 0.7f);
    for (int i = 0; i < 100; ++i)
        group->Animate();
    EXPECT_NEAR(group->colour[0], 0.7f, 1e-5f);
    rig.manager.MouseMoved(Point{380, 150});
    EXPECT_FALSE(group->hovered);
    group->Animate();
    EXPECT_NEAR(group->colour[0], 0.85f * 0.7f + 0.15f * 0.6f, 1e-5f);
    // A press inside the frame but on no control reaches nothing: a group takes no clicks.
    rig.manager.MouseDown(Point{20 + 60, 20 + 5}, 0, 1, false);
    EXPECT_EQ(rig.manager.pressedElement, nullptr);
    rig.manager.MouseUp(Point{20 + 60, 20 + 5}, 0);
}

}  // namespace BR::Test
