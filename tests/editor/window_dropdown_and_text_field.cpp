// Under Xvfb with XTest: a drop-down picks a value name by press, drag and release, and a text field
// takes a typed value on Return; both reach the module's parameter.
#include <X11/keysym.h>
#include <gtest/gtest.h>

#include "support/WindowRigs.h"

namespace BR::Test {

TEST(WindowDropDownAndField, DropDownPicksValueName) {
    ProbeModule module;
    ManualHost host(module);
    EditorWindowRig rig(module, kGain, -1, kMode);
    ASSERT_TRUE(rig.Open()) << rig.window.LastError();
    int x = 0, y = 0;
    WindowCentre(*rig.manager, rig.panel.dropDown, x, y);
    rig.MoveTo(x, y);
    rig.Press();
    ASSERT_TRUE(rig.panel.dropDown->IsOpen());
    ASSERT_TRUE(rig.WaitFrames(2));  // the open list is drawn over the panel
    rig.MoveTo(x, y + 12);           // one row down: "Tempo"
    EXPECT_EQ(rig.panel.dropDown->items[size_t(rig.panel.dropDown->highlighted)], "Tempo");
    rig.Release();
    EXPECT_EQ(module.GetTableValue(kMode), 1.0f);
    EXPECT_FALSE(rig.panel.dropDown->IsOpen());
}

TEST(WindowDropDownAndField, TextFieldTakesTypedValue) {
    DCWindow w;
    ASSERT_TRUE(w.rig->Open()) << w.rig->window.LastError();
    int x = 0, y = 0;
    w.Centre(w.rig->panel.field, x, y);
    w.rig->MoveTo(x, y);
    w.rig->Press();
    w.rig->Release();
    ASSERT_EQ(w.rig->manager->focusedElement, w.rig->panel.field);
    w.rig->Type("0.25");
    EXPECT_STREQ(w.rig->panel.field->buffer, "0.25");
    w.rig->Key(XK_Return, true);
    w.rig->Key(XK_Return, false);
    EXPECT_FLOAT_EQ(w.Value(w.level), 0.25f);
    w.rig->Key(XK_Up, true);
    w.rig->Key(XK_Up, false);
    w.rig->WaitFrames(2);
    EXPECT_FLOAT_EQ(w.Value(w.level), 0.26f);
}

}  // namespace BR::Test
