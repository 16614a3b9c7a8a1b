// A text field showing 0.50 steps by 0.01 on the arrow keys (10 to the minus the digits behind the
// point); one showing a whole number steps by 1.
#include <gtest/gtest.h>

#include "support/HeadlessRig.h"

namespace BR::Test {

TEST(TextFieldSteps, HalfStepsByHundredths) {
    DCRig rig;
    rig.driver->Module().SetTableValue(rig.level, 0.5f);
    TextField* field = rig.panel.field;
    field->Animate();
    ASSERT_EQ(field->ShownText(), "0.50");
    EXPECT_FLOAT_EQ(field->Step(), 0.01f);
    rig.manager.MouseDown(rig.Centre(field), 0, 1, false);
    rig.manager.MouseUp(rig.Centre(field), 0);
    ASSERT_EQ(rig.manager.focusedElement, field);
    EXPECT_TRUE(rig.manager.KeyDown(30));  // Up
    EXPECT_FLOAT_EQ(rig.Value(rig.level), 0.51f);
    field->Animate();
    EXPECT_TRUE(rig.manager.KeyDown(29));  // Right
    EXPECT_FLOAT_EQ(rig.Value(rig.level), 0.52f);
    field->Animate();
    EXPECT_TRUE(rig.manager.KeyDown(31));  // Down
    EXPECT_TRUE(rig.manager.KeyDown(28));  // Left, before the next frame: the step stays 0.01
    EXPECT_FLOAT_EQ(rig.Value(rig.level), 0.50f);
}

TEST(TextFieldSteps, WholeNumberStepsByOne) {
    DCRig rig;
    auto* field = new TextField(&rig.manager, rig.manager.FindParameter("OSC Port Offset"), "%.0f");
    field->SetRect(300, 100, 40, 12);
    rig.manager.rootGroup->Add(field);
    rig.driver->Module().SetTableValue(field->parameter, 40);
    field->Animate();
    ASSERT_EQ(field->ShownText(), "40");
    EXPECT_EQ(field->Step(), 1.0f);
    rig.manager.MouseDown(Point{320, 106}, 0, 1, false);
    rig.manager.MouseUp(Point{320, 106}, 0);
    rig.manager.KeyDown(30);
    EXPECT_EQ(rig.Value(field->parameter), 41.0f);
}

}  // namespace BR::Test
