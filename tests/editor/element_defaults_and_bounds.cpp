// The element base: default slots, visibility, bounds widened from +1e10 and −1e10, a group's union
// shifted by its offset, and hit testing from the last child added.
#include <gtest/gtest.h>

#include "support/HeadlessRig.h"

namespace BR::Test {

TEST(ElementDefaults, SlotsDoNothingAndSetVisibleStores) {
    Manager manager(nullptr);
    UIElement* element = new UIElement(&manager);
    EXPECT_EQ(manager.elements.back(), element);
    EXPECT_EQ(element->HitTest(Point{0, 0}), nullptr);
    EXPECT_FALSE(element->KeyDown('a'));
    element->SetVisible(false);
    EXPECT_EQ(element->visible, 0);
    element->SetVisible(true);
    EXPECT_EQ(element->visible, 1);
}

TEST(ElementDefaults, BoundsWidenTheBoxPassedIn) {
    Manager manager(nullptr);
    UIElement* a = new UIElement(&manager);
    a->SetRect(10, 20, 30, 40);
    Box box;
    EXPECT_EQ(box.v[0], 1e10f);
    EXPECT_EQ(box.v[3], -1e10f);
    a->GetBounds(box);
    EXPECT_EQ(box.v[0], 10.0f);
    EXPECT_EQ(box.v[1], 20.0f);
    EXPECT_EQ(box.v[3], 40.0f);
    EXPECT_EQ(box.v[4], 60.0f);
    Group* group = new Group(&manager);
    UIElement* b = new UIElement(&manager);
    b->SetRect(0, 0, 5, 5);
    group->Add(a);
    group->Add(b);
    group->SetPosition(100, 200);
    Box groupBox;
    group->GetBounds(groupBox);
    EXPECT_EQ(groupBox.v[0], 100.0f);
    EXPECT_EQ(groupBox.v[1], 200.0f);
    EXPECT_EQ(groupBox.v[3], 140.0f);
    EXPECT_EQ(groupBox.v[4], 260.0f);
}

TEST(ElementDefaults, GroupHitTestsLastChildFirstAndHidesChildren) {
    DCRig rig;
    Group* group = new Group(&rig.manager);
    auto* under = new Knob(&rig.manager, rig.level);
    auto* over = new Knob(&rig.manager, rig.multiplier);
    under->SetRect(0, 0, 30, 30);
    over->SetRect(10, 10, 30, 30);
    group->Add(under);
    group->Add(over);
    group->SetPosition(300, 100);
    EXPECT_EQ(group->HitTest(Point{320, 120}), over);
    EXPECT_EQ(group->HitTest(Point{305, 105}), under);
    EXPECT_EQ(group->HitTest(Point{340, 140}), over);  // both edges belong to the control
    EXPECT_EQ(group->HitTest(Point{341, 140}), nullptr);
    group->SetVisible(false);
    EXPECT_EQ(group->HitTest(Point{320, 120}), nullptr);
    EXPECT_EQ(under->visible, 0);
    EXPECT_FALSE(over->IsShown());
}

TEST(ElementDefaults, EmptyGroupCountsOnlyInHoverPass) {
    DCRig rig;
    Group* empty = new Group(&rig.manager);
    empty->SetRect(300, 120, 50, 50);
    rig.manager.rootGroup->Add(empty);
    EXPECT_EQ(rig.manager.rootGroup->HitTest(Point{320, 140}), nullptr);
    rig.manager.MouseMoved(Point{320, 140});
    EXPECT_EQ(rig.manager.hoveredElements.count(empty), 1u);
    rig.manager.MouseDown(Point{320, 140}, 0, 1, false);
    EXPECT_EQ(rig.manager.pressedElement, nullptr);
    rig.manager.MouseUp(Point{320, 140}, 0);
}

}  // namespace BR::Test
