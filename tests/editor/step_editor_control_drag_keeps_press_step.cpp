// With Control held a drag only changes the step it began on, wherever the pointer goes.
#include <gtest/gtest.h>

#include "support/StepEditorRig.h"

namespace BR::Test {

TEST(StepEditorControlDrag, NeverLeavesThePressedStep) {
    StepEditorRig rig;
    rig.Gesture(rig.At(6, 0.25f), {rig.At(9, 0.5f), rig.At(14, -0.5f), rig.At(2, 0.75f)}, kModControl);
    EXPECT_EQ(rig.steps->pressStep, -1);  // the release ends the gesture
    for (int32_t step = 0; step < 16; ++step)
        EXPECT_FLOAT_EQ(rig.Step(step), step == 6 ? 0.75f : 0.0f) << "step " << step;
}

TEST(StepEditorControlDrag, PressStepStaysThroughTheDrag) {
    StepEditorRig rig;
    rig.manager->MouseDown(rig.At(11, 0.0f), kModControl, 1, false);
    for (int32_t step : {12, 15, 0, 7}) {
        rig.manager->MouseDragged(rig.At(step, -0.5f), kModControl);
        EXPECT_EQ(rig.steps->pressStep, 11);
        EXPECT_EQ(rig.steps->lastStep, 11);
    }
    rig.manager->MouseUp(rig.At(7, -0.5f), kModControl);
    EXPECT_FLOAT_EQ(rig.Step(11), -0.5f);
    EXPECT_FLOAT_EQ(rig.Step(7), 0.0f);
    EXPECT_FLOAT_EQ(rig.Step(12), 0.0f);
}

}  // namespace BR::Test
