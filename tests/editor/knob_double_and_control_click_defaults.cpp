// Double-click or Control-click returns a knob to its default; Control with a double click sets 0.
#include <gtest/gtest.h>

#include "support/HeadlessRig.h"

namespace BR::Test {

TEST(KnobClicks, DoubleClickRestoresDefault) {
    DCRig rig;
    rig.Drag(rig.panel.secondKnob, 60);  // Multiplier from 1 by 0.3 of its range of 4
    ASSERT_FLOAT_EQ(rig.Value(rig.multiplier), 2.0f);
    const Point p = rig.Centre(rig.panel.secondKnob);
    rig.manager.MouseDown(p, 0, 2, false);
    rig.manager.MouseUp(p, 0);
    EXPECT_EQ(rig.Value(rig.multiplier), 1.0f);
}

TEST(KnobClicks, ControlClickRestoresDefault) {
    DCRig rig;
    rig.Drag(rig.panel.secondKnob, -50);
    ASSERT_FLOAT_EQ(rig.Value(rig.multiplier), 0.0f);
    rig.Drag(rig.panel.secondKnob, -20);
    ASSERT_FLOAT_EQ(rig.Value(rig.multiplier), -0.4f);
    const Point p = rig.Centre(rig.panel.secondKnob);
    rig.manager.MouseDown(p, kModControl, 1, false);
    rig.manager.MouseUp(p, kModControl);
    EXPECT_EQ(rig.Value(rig.multiplier), 1.0f);
}

TEST(KnobClicks, ControlDoubleClickSetsZero) {
    DCRig rig;
    const Point p = rig.Centre(rig.panel.secondKnob);
    ASSERT_EQ(rig.Value(rig.multiplier), 1.0f);
    rig.manager.MouseDown(p, kModControl, 2, false);
    rig.manager.MouseUp(p, kModControl);
    EXPECT_EQ(rig.Value(rig.multiplier), 0.0f);
}

}  // namespace BR::Test
