// group:setPosition: a true third argument puts the content's lower left bound at (x, y); false behaves as
// if it were absent, placing the origin.
#include <gtest/gtest.h>

#include "support/LuaPanelRig.h"

namespace BR::Test {

namespace {
const char* kMake =
    "theKnobRenderer = smallKnobRenderer or arcKnobRenderer( texture( 'buttons.png' ), 2, 92, 34, 2, 52 )\n"
    "g = group( 'x', 10 ) g:add( knob( 'Multiplier L', 30, 40, 34 ) )";
}

TEST(LuaGroupSetPosition, FalseThirdArgumentActsAsAbsent) {
    LuaPanelRig rig("dc");
    rig.InitOnly();
    ASSERT_EQ(rig.Run(kMake), "");
    NamedGroup* group = rig.Groups().back();
    ASSERT_EQ(rig.Run("g:setPosition( 7, 9, false )"), "");
    EXPECT_FLOAT_EQ(group->offsetX, 7);
    EXPECT_FLOAT_EQ(group->offsetY, 9);
    ASSERT_EQ(rig.Run("g:setPosition( 1, 1 )"), "");
    ASSERT_EQ(rig.Run("g:setPosition( 7, 9 )"), "");
    EXPECT_FLOAT_EQ(group->offsetX, 7);
    EXPECT_FLOAT_EQ(group->offsetY, 9);
}

TEST(LuaGroupSetPosition, TrueAnchorsTheContentBound) {
    LuaPanelRig rig("dc");
    rig.InitOnly();
    ASSERT_EQ(rig.Run(kMake), "");
    NamedGroup* group = rig.Groups().back();
    ASSERT_EQ(rig.Run("g:setPosition( 7, 9, true )"), "");
    // The knob's corner (30, 40) less the padding of 10 lands at (7, 9).
    EXPECT_FLOAT_EQ(group->offsetX, 7 - 20);
    EXPECT_FLOAT_EQ(group->offsetY, 9 - 30);
    EXPECT_DOUBLE_EQ(rig.Number("g:width()"), 54);
    EXPECT_DOUBLE_EQ(rig.Number("g:height()"), 60);
    EXPECT_DOUBLE_EQ(rig.Number("( g:bounds() )"), 7);
    EXPECT_DOUBLE_EQ(rig.Number("( select( 2, g:bounds() ) )"), 9);
}

}  // namespace BR::Test
