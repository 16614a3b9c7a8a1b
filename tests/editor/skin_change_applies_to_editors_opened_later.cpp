// A skin chosen in the Preferences dialog is written at once but applies only to editors opened later:
// the editor already open keeps its panel, and the next one runs the skin's script first.
#include <gtest/gtest.h>

#include "support/DialogRig.h"

namespace BR::Test {

TEST(SkinChange, ReopenedEditorTakesTheNewSkin) {
    LuaPanelRig open("dc");
    // The skin makes the DC panel smaller: its getWindowSize, run first, wins over the built-in one.
    open.home.WriteSkinFile("Small", "gui_dc.lua", "getWindowSize = function() return 300, 150 end\n");
    open.Open();
    ASSERT_EQ(open.manager.designWidth, 510);
    ASSERT_EQ(open.manager.designHeight, 220);

    (*open.gui->buttonLookup)["Prefs"].function(open.gui.get());
    Dialog* d = open.manager.ActiveDialog();
    ASSERT_NE(d, nullptr);
    ASSERT_EQ(d->Find(kPrefsSkin)->items, (std::vector<std::string>{"Default", "Small"}));
    open.manager.WithDialog([](Dialog& dialog) {
        dialog.MouseDown(dialog.Centre(kPrefsSkin), 1);
        dialog.MouseDown(dialog.RowCentre(kPrefsSkin, 1), 1);
        dialog.MouseDown(dialog.Centre(kDialogOK), 1);
    });
    EXPECT_EQ(open.manager.ActiveDialog(), nullptr);
    EXPECT_EQ(ReadPreferenceFile()["Skin"], "Small");
    EXPECT_EQ(open.manager.designWidth, 510);  // the open editor keeps its panel

    // Reopening: a new manager and panel state around the same module.
    ZPmanager reopened(&open.driver->Module());
    PluginLuaGui gui(&open.driver->Module());
    EXPECT_EQ(gui.skinName, "Small");
    gui.OpenPanel(&reopened);
    EXPECT_EQ(reopened.designWidth, 300);
    EXPECT_EQ(reopened.designHeight, 150);
}

}  // namespace BR::Test
