// The textured slider: without modifiers the thumb follows the pointer along its axis (through its
// parents' offsets); Shift drags relatively at 0.0005 per pixel; Alt sets the default and then drags do
// nothing; Control snaps to whole units.
#include <gtest/gtest.h>

#include "editor/widgets/Slider.h"
#include "support/HeadlessRig.h"

namespace BR::Test {

namespace {
struct SliderRig : DCRig {
    SliderRig() {
        renderer = new TexturedSliderRenderer(nullptr, nullptr);
        manager.animatedElements.push_back(renderer);
        group = new Group(&manager);
        group->SetPosition(100, 50);
        slider = new TexturedSlider(&manager, multiplier, false, renderer);
        slider->SetRect(10, 10, 200, 20);  // in panel space: x from 110 to 310
        group->Add(slider);
        manager.rootGroup->Add(group);
    }
    TexturedSliderRenderer* renderer;
    Group* group;
    TexturedSlider* slider;
};
}  // namespace

TEST(SliderGestures, ThumbFollowsPointerAbsolutely) {
    SliderRig rig;
    rig.manager.MouseDown(Point{160, 70}, 0, 1, false);  // a quarter along
    EXPECT_FLOAT_EQ(rig.Value(rig.multiplier), -1.0f);
    rig.manager.MouseDragged(Point{260, 10}, 0);  // three quarters; y does not matter
    EXPECT_FLOAT_EQ(rig.Value(rig.multiplier), 1.0f);
    rig.manager.MouseDragged(Point{400, 70}, 0);
    EXPECT_FLOAT_EQ(rig.Value(rig.multiplier), 2.0f);
    rig.manager.MouseUp(Point{400, 70}, 0);
    EXPECT_EQ(rig.renderer->sliders.size(), 1u);
}

TEST(SliderGestures, ShiftDragsRelativelyAndFinely) {
    SliderRig rig;  // from the default 1, at 0.75
    rig.manager.MouseDown(Point{150, 70}, kModShift, 1, false);
    EXPECT_FLOAT_EQ(rig.Value(rig.multiplier), 1.0f);
    rig.manager.MouseDragged(Point{250, 70}, kModShift);  // 100 px × 0.0005 = 0.05 of 4
    EXPECT_FLOAT_EQ(rig.Value(rig.multiplier), 1.2f);
    rig.manager.MouseUp(Point{250, 70}, kModShift);
}

TEST(SliderGestures, AltSetsDefaultAndFreezes) {
    SliderRig rig;
    rig.driver->Module().SetTableValue(rig.multiplier, -2.0f);
    rig.manager.MouseDown(Point{300, 70}, kModAlt, 1, false);
    EXPECT_EQ(rig.Value(rig.multiplier), 1.0f);
    rig.manager.MouseDragged(Point{120, 70}, kModAlt);
    EXPECT_EQ(rig.Value(rig.multiplier), 1.0f);
    rig.manager.MouseUp(Point{120, 70}, kModAlt);
}

TEST(SliderGestures, ControlSnapsToWholeUnits) {
    SliderRig rig;
    rig.manager.MouseDown(Point{171, 70}, kModControl, 1, false);  // 0.305 of the way: -0.78 → -1
    EXPECT_EQ(rig.Value(rig.multiplier), -1.0f);
    rig.manager.MouseUp(Point{171, 70}, kModControl);
}

TEST(SliderGestures, VerticalSliderUsesY) {
    SliderRig rig;
    auto* vertical = new TexturedSlider(&rig.manager, rig.level, true, rig.renderer);
    vertical->SetRect(0, 100, 20, 100);
    rig.manager.rootGroup->Add(vertical);
    rig.manager.MouseDown(Point{10, 180}, 0, 1, false);
    EXPECT_FLOAT_EQ(rig.Value(rig.level), 0.8f);
    rig.manager.MouseUp(Point{10, 180}, 0);
}

}  // namespace BR::Test
