// setBannerContent: "nameOnly" drops the maker's prefix and starts the status line where told; "full" with a
// negative start puts the status line at half the window width plus 15.
#include <gtest/gtest.h>

#include "support/LuaPanelRig.h"

namespace BR::Test {

TEST(LuaBannerContent, NameOnlyWithStatusAt200) {
    LuaPanelRig rig("dc");
    rig.InitOnly();
    rig.manager.SetDesignSize(510, 220);
    ASSERT_EQ(rig.Run("setBannerContent( 'nameOnly', 20, 200 )"), "");
    EXPECT_EQ(rig.manager.bannerMode, 1);
    EXPECT_FLOAT_EQ(rig.manager.bannerTextX, 20);
    EXPECT_FLOAT_EQ(rig.manager.StatusLineX(), 200);
    EXPECT_EQ(rig.manager.BannerString().find("brelmont"), std::string::npos);
    EXPECT_EQ(rig.manager.BannerString().rfind("corvane", 0), 0u);
}

TEST(LuaBannerContent, FullWithNegativeStatusStartsRightOfTheMiddle) {
    LuaPanelRig rig("dc");
    rig.InitOnly();
    rig.manager.SetDesignSize(510, 220);
    ASSERT_EQ(rig.Run("setBannerContent( 'full', 60, -1 )"), "");
    EXPECT_EQ(rig.manager.bannerMode, 0);
    EXPECT_FLOAT_EQ(rig.manager.bannerTextX, 60);
    EXPECT_FLOAT_EQ(rig.manager.StatusLineX(), 510 * 0.5f + 15);
    EXPECT_EQ(rig.manager.BannerString().rfind("brelmont : ", 0), 0u);
}

TEST(LuaBannerContent, NoneAndFirstLetterN) {
    LuaPanelRig rig("dc");
    rig.InitOnly();
    ASSERT_EQ(rig.Run("setBannerContent( 'none', 20, 200 )"), "");
    EXPECT_EQ(rig.manager.bannerMode, 2);
    ASSERT_EQ(rig.Run("setBannerContent( 'n', 20, 200 )"), "");
    EXPECT_EQ(rig.manager.bannerMode, 1);
    ASSERT_EQ(rig.Run("setBannerPosition( 100, false )"), "");
    EXPECT_EQ(rig.manager.bannerMode, 2);
    EXPECT_FLOAT_EQ(rig.manager.bannerBounds[1], 100);
}

}  // namespace BR::Test
