// Press, drag onto a row, release: the row's index becomes the value. Each value name is kept to 127
// characters.
#include <gtest/gtest.h>

#include "support/HeadlessRig.h"

namespace BR::Test {

TEST(DropDownGesture, ReleaseOnRowWritesItsIndex) {
    ProbeRig rig;
    DropDown* drop = rig.panel.dropDown;
    EXPECT_EQ(drop->items[1], "Tempo");
    rig.manager.MouseDown(Point{230, 66}, 0, 1, false);  // list from 36 to 72
    EXPECT_EQ(rig.manager.editedParameter, kMode);
    rig.manager.MouseDragged(Point{230, 54}, 0);
    EXPECT_EQ(drop->highlighted, 1);
    rig.manager.MouseDragged(Point{300, 40}, 0);  // outside: the highlight stays
    EXPECT_EQ(drop->highlighted, 1);
    rig.manager.MouseDragged(Point{230, 40}, 0);
    EXPECT_EQ(drop->highlighted, 2);
    rig.manager.MouseDragged(Point{230, 50}, 0);
    rig.manager.MouseUp(Point{230, 50}, 0);
    EXPECT_EQ(rig.Value(kMode), 1.0f);
    EXPECT_EQ(drop->highlighted, -1);
    EXPECT_EQ(rig.manager.editedParameter, -1);
}

}  // namespace BR::Test
