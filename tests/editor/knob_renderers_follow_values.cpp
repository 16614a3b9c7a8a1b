// The knob renderers keep one slot per knob: the needle's angle is the value's share of 270 degrees
// (4.712389 rad), the highlight moves 0.3 of the way to its target each frame and snaps when within
// 1/255, and a knob in a hidden group is not drawn; the slot takes its panel position through the groups.
#include <gtest/gtest.h>

#include "support/HeadlessRig.h"

namespace BR::Test {

TEST(KnobRenderers, SlotsFollowValueHighlightAndVisibility) {
    DCRig rig;
    auto* renderer = dynamic_cast<ArcKnobRenderer*>(rig.manager.animatedElements.at(0));
    ASSERT_NE(renderer, nullptr);
    ASSERT_EQ(renderer->slots.size(), 2u);
    rig.driver->Module().SetTableValue(rig.level, 0.5f);
    rig.manager.Animate();
    EXPECT_FLOAT_EQ(renderer->slots[0].angle, 0.5f * 4.712389f);
    EXPECT_FLOAT_EQ(renderer->slots[1].angle, 0.75f * 4.712389f);  // Multiplier at its default 1 of -2..2
    rig.panel.knob->CreateGLResources();
    EXPECT_EQ(renderer->slots[0].x, 20 + 13.0f);
    EXPECT_EQ(renderer->slots[0].y, 20 + 23.0f);
    EXPECT_EQ(renderer->slots[0].size, 34.0f);
    rig.manager.MouseMoved(rig.Centre(rig.panel.knob));
    rig.manager.Animate();
    EXPECT_FLOAT_EQ(rig.panel.knob->highlight, 0.3f);
    rig.manager.Animate();
    EXPECT_FLOAT_EQ(rig.panel.knob->highlight, 0.51f);
    for (int i = 0; i < 30; ++i)
        rig.manager.Animate();
    EXPECT_EQ(rig.panel.knob->highlight, 1.0f);
    // The lit colour rises by a quarter at full highlight.
    EXPECT_FLOAT_EQ(renderer->slots[0].colour[1], std::min(1.0f, rig.panel.knob->colour[1] * 1.25f));
    rig.panel.group->SetVisible(false);
    rig.manager.Animate();
    EXPECT_FALSE(renderer->slots[0].enabled);
}

TEST(KnobRenderers, TexturedRendererTurnsTheCell) {
    DCRig rig;
    auto* spinner = new TexturedKnobRenderer(nullptr, 2, 92, 34);
    rig.manager.animatedElements.push_back(spinner);
    auto* knob = new ZephKnob(&rig.manager, rig.multiplier, spinner);
    knob->SetRect(300, 100, 34, 34);
    rig.manager.rootGroup->Add(knob);
    EXPECT_TRUE(spinner->spin);
    rig.manager.Animate();
    EXPECT_FLOAT_EQ(spinner->slots[0].angle, 0.75f * 4.712389f);
    rig.manager.MouseDown(Point{317, 117}, 0, 1, false);
    rig.manager.MouseDragged(Point{317, 167}, 0);
    rig.manager.MouseUp(Point{317, 167}, 0);
    rig.manager.Animate();
    EXPECT_FLOAT_EQ(spinner->slots[0].angle, 1.0f * 4.712389f);
}

}  // namespace BR::Test
