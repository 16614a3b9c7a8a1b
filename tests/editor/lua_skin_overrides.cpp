// A skin in the per-user Skins folder, named by the preference "Skin", runs first and so overrides the
// built-in getWindowSize and colour setters; its textures are found before the built-in ones.
#include <gtest/gtest.h>

#include "editor/GuiTexture.h"
#include "support/LuaPanelRig.h"

namespace BR::Test {

namespace {
const char* kSkinGui =
    "setUIColours = function() setBackgroundColour( 0.2, 0.3, 0.5 ) setGroupActiveColour( 1, 0, 0, 1 ) end\n";
const char* kSkinPanel = "getWindowSize = function() return 640, 300 end\n";
}  // namespace

TEST(LuaSkinOverrides, WindowSizeAndColourSetterFromSkin) {
    LuaPanelRig rig("dc");
    rig.home.SetSkin("Blue");
    rig.home.WriteSkinFile("Blue", "gui.lua", kSkinGui);
    rig.home.WriteSkinFile("Blue", "gui_dc.lua", kSkinPanel);
    rig.Open();
    EXPECT_TRUE(rig.gui->errorLog.empty());
    EXPECT_EQ(rig.manager.designWidth, 640);
    EXPECT_EQ(rig.manager.designHeight, 300);
    EXPECT_FLOAT_EQ(rig.manager.backgroundColour[0], 0.2f);
    EXPECT_FLOAT_EQ(rig.manager.backgroundColour[1], 0.3f);
    EXPECT_FLOAT_EQ(rig.manager.backgroundColour[2], 0.5f);
    EXPECT_FLOAT_EQ(gGroupActiveColour[0], 1.0f);
    // The rest of the built-in panel still applies.
    EXPECT_EQ(rig.Groups().size(), 3u);
}

TEST(LuaSkinOverrides, EditorOpenedAgainTakesTheSkin) {
    LuaPanelRig rig("dc");
    rig.Open();
    EXPECT_EQ(rig.manager.designWidth, 510);
    EXPECT_FLOAT_EQ(rig.manager.backgroundColour[0], 0.4f);
    // Install the skin, then open a second editor on the same module.
    rig.home.SetSkin("Blue");
    rig.home.WriteSkinFile("Blue.bundle", "gui.lua", kSkinGui);
    rig.home.WriteSkinFile("Blue.bundle", "gui_dc.lua", kSkinPanel);
    ZPmanager second(&rig.driver->Module());
    PluginLuaGui gui(&rig.driver->Module());
    EXPECT_NE(gui.skinPath.find("Blue.bundle"), std::string::npos);
    gui.OpenPanel(&second);
    EXPECT_EQ(second.designWidth, 640);
    EXPECT_FLOAT_EQ(second.backgroundColour[2], 0.5f);
}

TEST(LuaSkinOverrides, SkinTextureFirstAndMissingSkinMeansBuiltIn) {
    LuaPanelRig rig("dc");
    rig.home.SetSkin("Tex");
    rig.home.WriteSkinFile("Tex", "buttons.png", "not really a png");
    rig.InitOnly();
    ASSERT_EQ(rig.Run("t = texture( 'buttons.png' ) setBackgroundTexture( t, 'stretch' )"), "");
    ASSERT_NE(rig.manager.backgroundTexture, nullptr);
    EXPECT_NE(rig.manager.backgroundTexture->name.find("/Skins/Tex/Contents/Resources/buttons.png"),
              std::string::npos);
    EXPECT_EQ(rig.manager.backgroundMode, 0);

    LuaPanelRig plain("dc");
    plain.home.SetSkin("Absent");
    plain.InitOnly();
    EXPECT_TRUE(plain.gui->skinPath.empty());
    ASSERT_EQ(plain.Run("t = texture( 'buttons.png' ) setBackgroundTexture( t )"), "");
    EXPECT_EQ(plain.manager.backgroundTexture->name, "buttons.png");
    EXPECT_EQ(plain.manager.backgroundMode, 1);
}

}  // namespace BR::Test
