// A drag painting many steps opens each step's host edit as the drag first reaches it and keeps them
// all open, beside each other, until the release ends every one: a host records the whole stroke.
#include <gtest/gtest.h>

#include "support/StepEditorRig.h"

namespace BR::Test {

TEST(StepEditorHostGestures, EachStepBeginsAtFirstTouchAndAllEndAtMouseUp) {
    StepEditorRig rig;
    rig.manager->MouseDown(rig.At(3, 0.5f), 0, 1, false);
    ASSERT_EQ(rig.edits, (std::vector<EditEvent>{{true, rig.Row(3)}}));
    rig.manager->MouseDragged(rig.At(7, 0.5f), 0);
    // Back over steps already touched: no second begin; then on to new ones.
    rig.manager->MouseDragged(rig.At(5, 0.25f), 0);
    rig.manager->MouseDragged(rig.At(9, 0.25f), 0);
    std::vector<EditEvent> expected;
    for (int32_t step = 3; step <= 9; ++step)
        expected.push_back({true, rig.Row(step)});
    EXPECT_EQ(rig.edits, expected);  // nothing has ended before the release
    rig.manager->MouseUp(rig.At(9, 0.25f), 0);
    for (int32_t step = 3; step <= 9; ++step)
        expected.push_back({false, rig.Row(step)});
    EXPECT_EQ(rig.edits, expected);
    // A begin was made for every step whose value changed.
    for (int32_t step = 0; step < 16; ++step)
        EXPECT_EQ(rig.Step(step) != 0.0f, step >= 3 && step <= 9) << "step " << step;
}

TEST(StepEditorHostGestures, NextGestureStartsAfresh) {
    StepEditorRig rig;
    rig.Gesture(rig.At(1, 0.5f), {rig.At(2, 0.5f)});
    rig.edits.clear();
    rig.Gesture(rig.At(2, -0.5f), {});
    EXPECT_EQ(rig.edits, (std::vector<EditEvent>{{true, rig.Row(2)}, {false, rig.Row(2)}}));
}

}  // namespace BR::Test
