// A drag that jumps from step 3 to step 7 in one event sets every step from 3 to 7 and no other, in
// either direction; the press lands on the cell's own region, which hands the gesture to the editor.
#include <gtest/gtest.h>

#include "support/StepEditorRig.h"

namespace BR::Test {

TEST(StepEditorDrag, OneEventFromThreeToSevenSetsExactlyThoseSteps) {
    StepEditorRig rig;
    ASSERT_EQ(rig.steps->ShownSteps(), 16);
    rig.Gesture(rig.At(3, 0.5f), {rig.At(7, 0.5f)});
    for (int32_t step = 0; step < 96; ++step)
        EXPECT_FLOAT_EQ(rig.Step(step), step >= 3 && step <= 7 ? 0.5f : 0.0f) << "step " << step;
}

TEST(StepEditorDrag, BackwardsJumpFillsTheCrossedStepsToo) {
    StepEditorRig rig;
    rig.Gesture(rig.At(12, -0.25f), {rig.At(9, -0.25f), rig.At(4, -0.75f)});
    for (int32_t step = 0; step < 16; ++step) {
        const float expected = step >= 10 && step <= 12 ? -0.25f : step >= 4 && step <= 9 ? -0.75f : 0.0f;
        EXPECT_FLOAT_EQ(rig.Step(step), expected) << "step " << step;
    }
}

TEST(StepEditorDrag, ThePressGoesThroughTheCellsRegion) {
    StepEditorRig rig;
    const Point p = rig.At(5, 0.0f);
    UIElement* hit = rig.manager->rootGroup->HitTest(p);
    auto* region = dynamic_cast<RowEditor::RegionReceiver*>(hit);
    ASSERT_NE(region, nullptr);
    EXPECT_EQ(region->editor, rig.steps);
    EXPECT_EQ(region->step, 5);
    // The region is one cell wide and as high as the editor, in panel space.
    Box box;
    region->GetBounds(box);
    EXPECT_FLOAT_EQ(box.v[0], StepEditorRig::kLeft + 5 * 48);
    EXPECT_FLOAT_EQ(box.v[3], StepEditorRig::kLeft + 6 * 48);
    EXPECT_FLOAT_EQ(box.v[1], StepEditorRig::kBottom);
    EXPECT_FLOAT_EQ(box.v[4], StepEditorRig::kBottom + StepEditorRig::kHeight);
    // Hovering it names the step's parameter in the status line.
    rig.manager->MouseMoved(p);
    EXPECT_EQ(rig.manager->hoveredParameter, rig.Row(5));
    rig.manager->MouseMoved(rig.At(6, 0.0f));
    EXPECT_EQ(rig.manager->hoveredParameter, rig.Row(6));
    // Outside the rectangle there is no region.
    EXPECT_EQ(rig.steps->HitTest(Point{-5, 40}), nullptr);
}

// The lane's length sets the cells: with 32 steps in use each cell is 24 px wide.
TEST(StepEditorDrag, TheStepsInUseFillTheWidth) {
    StepEditorRig rig;
    rig.manager->SetParameterValue(rig.manager->FindParameter("Length In Steps L"), 32);
    rig.manager->Animate();
    ASSERT_EQ(rig.steps->ShownSteps(), 32);
    EXPECT_FLOAT_EQ(rig.CellWidth(), 24.0f);
    rig.Gesture(rig.At(20, 1.0f), {rig.At(22, 1.0f)});
    for (int32_t step = 18; step < 25; ++step)
        EXPECT_FLOAT_EQ(rig.Step(step), step >= 20 && step <= 22 ? 1.0f : 0.0f) << "step " << step;
}

}  // namespace BR::Test
