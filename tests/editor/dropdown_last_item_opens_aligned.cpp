// A drop-down opens with the current item's row exactly over the control: with the last item current,
// the list's bottom is the control's bottom.
#include <gtest/gtest.h>

#include "support/HeadlessRig.h"

namespace BR::Test {

TEST(DropDownPlacement, LastItemAlignsListBottomWithControl) {
    ProbeRig rig;
    rig.module.SetTableValue(kMode, 2);
    DropDown* drop = rig.panel.dropDown;
    ASSERT_EQ(drop->items.size(), 3u);
    rig.manager.MouseDown(Point{230, 66}, 0, 1, false);
    ASSERT_TRUE(drop->IsOpen());
    EXPECT_EQ(drop->listBottom, 60.0f);
    EXPECT_EQ(drop->listHeight, 36.0f);
    EXPECT_EQ(drop->rowHeight, 12.0f);
    EXPECT_EQ(drop->RowAt(Point{230, 66}), 2);
    EXPECT_EQ(rig.manager.overlayElement, drop);
    rig.manager.MouseUp(Point{230, 66}, 0);
    EXPECT_FALSE(drop->IsOpen());
    EXPECT_EQ(rig.Value(kMode), 2.0f);
}

TEST(DropDownPlacement, FirstItemPutsListAboveAndBelow) {
    ProbeRig rig;
    DropDown* drop = rig.panel.dropDown;
    rig.manager.MouseDown(Point{230, 66}, 0, 1, false);
    EXPECT_EQ(drop->listBottom, 60.0f - 2 * 12.0f);
    EXPECT_EQ(drop->RowAt(Point{230, 66}), 0);
    rig.manager.MouseUp(Point{230, 66}, 0);
}

TEST(DropDownPlacement, NoValueNamesOpensNothing) {
    DCRig rig;
    auto* drop = new DropDown(&rig.manager, rig.level);
    drop->SetRect(200, 60, 60, 12);
    rig.manager.rootGroup->Add(drop);
    EXPECT_TRUE(drop->items.empty());
    rig.manager.MouseDown(Point{230, 66}, 0, 1, false);
    EXPECT_FALSE(drop->IsOpen());
    EXPECT_EQ(drop->openIndex, 0);
    rig.manager.MouseUp(Point{230, 66}, 0);
    EXPECT_EQ(rig.Value(rig.level), 0.0f);
}

}  // namespace BR::Test
