// A pointer dragged past either end of the row stops at the first or the last step in use, having
// filled every step on the way; above or below the row the value stops at the row's range.
#include <gtest/gtest.h>

#include "support/StepEditorRig.h"

namespace BR::Test {

TEST(StepEditorPastTheEnds, ClampsToTheLastStep) {
    StepEditorRig rig;
    rig.Gesture(rig.At(13, 0.5f), {Point{5000, rig.At(13, 0.5f).y}});
    EXPECT_EQ(rig.steps->ShownSteps(), 16);
    for (int32_t step = 0; step < 20; ++step)
        EXPECT_FLOAT_EQ(rig.Step(step), step >= 13 && step <= 15 ? 0.5f : 0.0f) << "step " << step;
}

TEST(StepEditorPastTheEnds, ClampsToTheFirstStep) {
    StepEditorRig rig;
    rig.Gesture(rig.At(2, -0.5f), {Point{-3000, rig.At(2, -0.5f).y}});
    for (int32_t step = 0; step < 6; ++step)
        EXPECT_FLOAT_EQ(rig.Step(step), step <= 2 ? -0.5f : 0.0f) << "step " << step;
}

TEST(StepEditorPastTheEnds, ValuesStopAtTheRange) {
    StepEditorRig rig;
    rig.Gesture(rig.At(4, 0.0f), {Point{rig.At(4, 0).x, 900}});
    EXPECT_FLOAT_EQ(rig.Step(4), 1.0f);
    rig.Gesture(rig.At(4, 0.0f), {Point{rig.At(4, 0).x, -900}});
    EXPECT_FLOAT_EQ(rig.Step(4), -1.0f);
    int32_t step = 0;
    float value = 0;
    rig.steps->PointToStep(Point{99999, -99999}, step, value);
    EXPECT_EQ(step, 15);
    EXPECT_FLOAT_EQ(value, -1.0f);
}

}  // namespace BR::Test
