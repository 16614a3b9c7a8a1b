// The panel language's errors: each bad call raises its text, and the state stays usable afterwards.
#include <gtest/gtest.h>

#include "support/LuaPanelRig.h"

namespace BR::Test {

namespace {
::testing::AssertionResult Raises(LuaPanelRig& rig, const std::string& code, const std::string& text) {
    const std::string error = rig.Run(code);
    if (error.find(text) != std::string::npos) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << code << " raised \"" << error << "\", not \"" << text << "\"";
}
const char* kRenderer = "theKnobRenderer = arcKnobRenderer( texture( 'buttons.png' ), 2, 92, 34, 2, 52 )";
}  // namespace

TEST(LuaErrorTexts, ConstructorArguments) {
    LuaPanelRig rig("dc");
    rig.InitOnly();
    EXPECT_TRUE(Raises(rig, "slider( 'Multiplier L', 0, 0, 10, 100, 'diagonal' )",
                       "unknown slider orientation: diagonal"));
    EXPECT_TRUE(Raises(rig, "button( 'Nowhere', 'x', 0, 0, 10, 10 )", "button not found: Nowhere"));
    EXPECT_TRUE(Raises(rig, "luaButton( 5, 'x', 'tip', 'push', 0, 0, 10, 10 )",
                       "first argument to luaButton() is not a function"));
    EXPECT_TRUE(Raises(rig, "texture( 'nothing.png' )", "failed to find texture in resouce id lookup"));
    EXPECT_TRUE(Raises(rig, "theKnobRenderer = nil knob( 'Multiplier L', 0, 0, 34 )",
                       "couldn't get theKnobRenderer"));
    EXPECT_TRUE(Raises(rig, "theSliderRenderer = nil slider( 'Multiplier L', 0, 0, 10, 100, 'v' )",
                       "couldn't get theSliderRenderer"));
    EXPECT_TRUE(
        Raises(rig, std::string(kRenderer) + " knob( 'Nope', 0, 0, 34 )", "parameter not found: 'Nope'"));
    EXPECT_TRUE(Raises(rig, "setParameter( 'Nope', 1 )", "parameter not found: 'Nope'"));
}

TEST(LuaErrorTexts, TypeChecks) {
    LuaPanelRig rig("dc");
    rig.InitOnly();
    EXPECT_TRUE(Raises(rig, "add( 3 )", "element expected, got number"));
    EXPECT_TRUE(Raises(rig, "add()", "element expected, got no value"));
    EXPECT_TRUE(Raises(rig, "elementSetVisible( texture( 'buttons.png' ), false )",
                       "element expected, got userdata"));
    EXPECT_TRUE(
        Raises(rig, "local g = group( 'a' ) local l = label( 'a', 0, 0 ) g.add( l, l )", "group expected"));
    EXPECT_TRUE(Raises(
        rig, "local g = group( 'a' ) local l = label( 'a', 0, 0 ) l.setForegroundColour( g, 1, 1, 1, 1 )",
        "label expected"));
    EXPECT_TRUE(Raises(rig,
                       "local l = label( 'a', 0, 0 ) local f = textField( 'Multiplier L', 0, 0, 40, 12 ) "
                       "f.setTextColour( l, 1, 1, 1, 1 )",
                       "textfield expected"));
    EXPECT_TRUE(Raises(rig, "setBackgroundTexture( 4 )", "texture expected"));
}

TEST(LuaErrorTexts, ButtonWithoutLookupTable) {
    LuaPanelRig rig("dc");
    rig.InitOnly();
    ASSERT_EQ(rig.Run("debug.getregistry()['BRgui::kButtonLookup'] = nil"), "");
    EXPECT_TRUE(Raises(rig, "button( 'Prefs', 'Prefs', 0, 0, 10, 10 )", "no button lookup table"));
}

// A wrong name ends createUI at that call: what was made before stays, nothing after it is made, and
// the text shows in the status line.
TEST(LuaErrorTexts, WrongParameterNameEndsCreateUI) {
    LuaPanelRig rig("dc");
    rig.home.SetSkin("Broken");
    rig.home.WriteSkinFile("Broken", "gui_dc.lua",
                           "createUI = function() createUICommon() theKnobRenderer = smallKnobRenderer "
                           "g = group( 'First' ) g:add( knob( 'Multiplier L', 0, 0, 34 ) ) "
                           "knob( 'Multiplier X', 0, 0, 34 ) group( 'Never' ) end");
    rig.Open();
    const auto groups = rig.Groups();
    ASSERT_EQ(groups.size(), 1u);
    EXPECT_EQ(groups[0]->title, "First");
    ASSERT_FALSE(rig.gui->errorLog.empty());
    EXPECT_NE(rig.gui->errorLog.back().find("parameter not found: 'Multiplier X'"), std::string::npos);
    const int32_t shown = rig.manager.hoveredParameter;
    ASSERT_LT(shown, -1);
    EXPECT_NE(rig.manager.extraMessages[shown].find("parameter not found: 'Multiplier X'"),
              std::string::npos);
    // The partial panel works: its knob still reaches its parameter.
    EXPECT_EQ(rig.Run("setParameter( 'Multiplier L', -1.5 )"), "");
    EXPECT_FLOAT_EQ(rig.driver->Module().GetTableValue(rig.manager.FindParameter("Multiplier L")), -1.5f);
}

// A syntax error in a skin's script is logged as "failed to run buffer: ..." and the built-in runs after it.
TEST(LuaErrorTexts, SyntaxErrorInSkinIsLoggedAndBuiltInRuns) {
    LuaPanelRig rig("dc");
    rig.home.SetSkin("Typo");
    rig.home.WriteSkinFile("Typo", "gui.lua", "kKnobSize = = 3");
    rig.Open();
    ASSERT_FALSE(rig.gui->errorLog.empty());
    EXPECT_EQ(rig.gui->errorLog.front().rfind("failed to run buffer: ", 0), 0u);
    EXPECT_EQ(rig.gui->errorLog.front().back(), '\n');
    EXPECT_EQ(rig.manager.designWidth, 510);
    EXPECT_EQ(rig.Groups().size(), 3u);
}

}  // namespace BR::Test
