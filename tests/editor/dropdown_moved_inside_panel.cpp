// A drop-down too low in the panel to hold its list is moved up (and one too high, down), and then the
// row under the pointer is no longer the current one.
#include <gtest/gtest.h>

#include "support/HeadlessRig.h"

namespace BR::Test {

TEST(DropDownInsidePanel, TooLowIsMovedUp) {
    ProbeRig rig;
    DropDown* drop = rig.panel.dropDown;
    drop->SetRect(200, 5, 60, 12);  // current item 0 would put the list's bottom at 5 − 24
    rig.manager.MouseDown(Point{230, 11}, 0, 1, false);
    ASSERT_TRUE(drop->IsOpen());
    EXPECT_EQ(drop->listBottom, 0.0f);
    EXPECT_EQ(drop->RowAt(Point{230, 11}), 2);
    EXPECT_NE(drop->RowAt(Point{230, 11}), int32_t(rig.Value(kMode)));
    // Releasing where pressed picks the row under the pointer.
    rig.manager.MouseUp(Point{230, 11}, 0);
    EXPECT_EQ(rig.Value(kMode), 2.0f);
}

TEST(DropDownInsidePanel, TooHighIsMovedDown) {
    ProbeRig rig;
    rig.module.SetTableValue(kMode, 2);
    DropDown* drop = rig.panel.dropDown;
    drop->SetRect(200, 180, 60, 12);  // the list would reach 180 + 36 = 216, above the 200 px panel
    rig.manager.MouseDown(Point{230, 186}, 0, 1, false);
    EXPECT_EQ(drop->listBottom, 200.0f - 36.0f);
    EXPECT_EQ(drop->RowAt(Point{230, 186}), 1);
    rig.manager.MouseUp(Point{300, 186}, 0);  // released outside: nothing changes
    EXPECT_EQ(rig.Value(kMode), 2.0f);
}

}  // namespace BR::Test
