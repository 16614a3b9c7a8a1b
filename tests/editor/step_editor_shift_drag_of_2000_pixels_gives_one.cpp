// With Shift a drag adjusts finely, relative to the press: 2000 px up add 1.0 to the pressed step's
// value, whatever the height at which the press began; the result stays inside the row's range.
#include <gtest/gtest.h>

#include "support/StepEditorRig.h"

namespace BR::Test {

TEST(StepEditorShiftDrag, TwoThousandPixelsUpAddOne) {
    StepEditorRig rig;
    rig.SetStep(5, -0.75f);
    // The press is near the top, where a plain press would set 0.9: with Shift the height is ignored.
    const Point press = rig.At(5, 0.9f);
    rig.manager->MouseDown(press, kModShift, 1, false);
    EXPECT_FLOAT_EQ(rig.Step(5), -0.75f);
    rig.manager->MouseDragged(Point{press.x, press.y + 1000}, kModShift);
    EXPECT_NEAR(rig.Step(5), -0.25f, 1e-5f);
    rig.manager->MouseDragged(Point{press.x, press.y + 2000}, kModShift);
    EXPECT_NEAR(rig.Step(5), 0.25f, 1e-5f);
    rig.manager->MouseUp(Point{press.x, press.y + 2000}, kModShift);
    EXPECT_NEAR(rig.Step(5), 0.25f, 1e-5f);
    EXPECT_FLOAT_EQ(rig.Step(4), 0.0f);
    EXPECT_FLOAT_EQ(rig.Step(6), 0.0f);
}

TEST(StepEditorShiftDrag, DownwardsAndClampedToTheRow) {
    StepEditorRig rig;
    rig.SetStep(2, 0.5f);
    const Point press = rig.At(2, 0.0f);
    rig.Gesture(press, {Point{press.x, press.y - 2000}}, kModShift);
    EXPECT_NEAR(rig.Step(2), -0.5f, 1e-5f);
    rig.Gesture(press, {Point{press.x, press.y - 6000}}, kModShift);
    EXPECT_FLOAT_EQ(rig.Step(2), -1.0f);
    rig.Gesture(press, {Point{press.x, press.y + 9000}}, kModShift);
    EXPECT_FLOAT_EQ(rig.Step(2), 1.0f);
}

}  // namespace BR::Test
