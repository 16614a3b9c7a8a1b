// An integer parameter's knob moves in whole steps, half-way points rounding up; a two-state knob flips
// on a click; Control snaps a continuous knob to whole units.
#include <gtest/gtest.h>

#include "support/HeadlessRig.h"

namespace BR::Test {

TEST(KnobIntegerSteps, HalfWayRoundsUp) {
    ProbeRig rig;  // the second knob is "Mode", 0 to 2
    ASSERT_TRUE(rig.panel.secondKnob->isInteger);
    const Point p{rig.panel.secondKnob->rect[0] + 20 + 17, rig.panel.secondKnob->rect[1] + 20 + 17};
    rig.manager.MouseDown(p, 0, 1, false);
    rig.manager.MouseDragged(Point{p.x, p.y + 49}, 0);  // 0.245 of the range: 0.49 → 0
    EXPECT_EQ(rig.Value(kMode), 0.0f);
    rig.manager.MouseDragged(Point{p.x, p.y + 50}, 0);  // 0.25: exactly half a step → 1
    EXPECT_EQ(rig.Value(kMode), 1.0f);
    EXPECT_EQ(rig.panel.secondKnob->normalised, 0.5f);   // the knob shows the whole step
    rig.manager.MouseDragged(Point{p.x, p.y + 149}, 0);  // 0.745: 1.49 → 1
    EXPECT_EQ(rig.Value(kMode), 1.0f);
    rig.manager.MouseDragged(Point{p.x, p.y + 150}, 0);  // 0.75: 1.5 → 2
    EXPECT_EQ(rig.Value(kMode), 2.0f);
    rig.manager.MouseUp(p, 0);
}

TEST(KnobIntegerSteps, TwoStateKnobFlipsOnClick) {
    ProbeModule module;
    ManualHost host(module);
    ZPmanager manager(&module);
    auto* knob = new Knob(&manager, kSwitch);
    knob->SetRect(0, 0, 30, 30);
    manager.rootGroup->Add(knob);
    manager.MouseDown(Point{15, 15}, 0, 1, false);
    manager.MouseUp(Point{15, 15}, 0);
    EXPECT_EQ(module.GetTableValue(kSwitch), 1.0f);
    manager.MouseDown(Point{15, 15}, 0, 1, false);
    manager.MouseUp(Point{15, 15}, 0);
    EXPECT_EQ(module.GetTableValue(kSwitch), 0.0f);
}

TEST(KnobIntegerSteps, ControlSnapsContinuousKnobToWholeUnits) {
    DCRig rig;  // Multiplier -2 to 2 from 1: 0.75 + 23 px × 0.005 = 0.865 → 1.46 → 1
    const Point p = rig.Centre(rig.panel.secondKnob);
    rig.manager.MouseDown(p, kModControl, 1, false);  // Control alone: to the default, 1
    rig.manager.MouseDragged(Point{p.x, p.y + 23}, kModControl);
    EXPECT_EQ(rig.Value(rig.multiplier), 1.0f);
    rig.manager.MouseDragged(Point{p.x, p.y + 26}, kModControl);  // 0.88 → 1.52 → 2
    EXPECT_EQ(rig.Value(rig.multiplier), 2.0f);
    rig.manager.MouseUp(p, kModControl);
}

}  // namespace BR::Test
