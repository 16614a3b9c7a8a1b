// group()'s padding: a table gives left, bottom, right, top with missing entries 0; a number gives all four.
#include <gtest/gtest.h>

#include "support/LuaPanelRig.h"

namespace BR::Test {

TEST(LuaGroupPadding, TableOfTwoGivesZeroForTheRest) {
    LuaPanelRig rig("dc");
    rig.InitOnly();
    ASSERT_EQ(rig.Run("g = group( 'x', { 1, 2 } )"), "");
    auto* group = rig.Groups().back();
    EXPECT_EQ(group->title, "x");
    EXPECT_FLOAT_EQ(group->sides[0], 1);
    EXPECT_FLOAT_EQ(group->sides[1], 2);
    EXPECT_FLOAT_EQ(group->sides[2], 0);
    EXPECT_FLOAT_EQ(group->sides[3], 0);
}

TEST(LuaGroupPadding, NumberGivesAllFourSides) {
    LuaPanelRig rig("dc");
    rig.InitOnly();
    ASSERT_EQ(rig.Run("g = group( 'x', 5 )"), "");
    for (float side : rig.Groups().back()->sides)
        EXPECT_FLOAT_EQ(side, 5);
}

TEST(LuaGroupPadding, DefaultIsTenOnEverySide) {
    LuaPanelRig rig("dc");
    rig.InitOnly();
    ASSERT_EQ(rig.Run("g = group( 'x' )"), "");
    for (float side : rig.Groups().back()->sides)
        EXPECT_FLOAT_EQ(side, 10);
    // An empty group with padding 10 measures 20 wide and 26 high (the title adds 6 on top).
    EXPECT_DOUBLE_EQ(rig.Number("g:width()"), 20);
    EXPECT_DOUBLE_EQ(rig.Number("g:height()"), 26);
}

}  // namespace BR::Test
