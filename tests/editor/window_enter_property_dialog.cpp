// Under Xvfb with synthetic input: a click on an editable property text field opens "Enter Property"
// over the panel with the field's tooltip as caption and the current string; typing and "OK" set the
// CV To MIDI target; typing and "Cancel" leave it as it was; a read-only field opens nothing.
#include <gtest/gtest.h>

#include "modules/events/CVToMIDI.h"
#include "support/DialogRig.h"

namespace BR::Test {

TEST(WindowEnterPropertyDialog, OkSetsTargetCancelLeavesIt) {
    DialogWindowRig w("cvtomidi");
    BrelCorvaneBase& module = w.panel.driver->Module();
    const uint32_t target = BrelCorvaneCVToMIDI::kPropertyDestinationName;
    module.SetProperty(target, "Port 1", 7);
    ASSERT_TRUE(w.OpenSnippet(420, 200,
                              "field = propertyTextField( 64100, 'MIDI target:', 20, 120, 250, 20 )\n"
                              "fixed = propertyTextField( 64100, 'Fixed', 20, 60, 250, 20 )\n"
                              "fixed:setEditable( false )\n"))
        << w.window.LastError();

    w.Click(Point{100, 130});
    Dialog* d = w.ActiveDialog();
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(d->Title(), "Enter Property");
    EXPECT_EQ(d->Find(kDialogCaption)->text, "MIDI target:");
    EXPECT_EQ(d->Find(kEnterPropertyField)->text, "Port 1");
    EXPECT_EQ(d->Find(kDialogOK)->text, "OK");
    EXPECT_EQ(d->Find(kDialogCancel)->text, "Cancel");
    w.Key(XK_BackSpace);
    w.Type("9 out");
    EXPECT_EQ(StringProperty(module, target), "Port 1");  // nothing is written before "OK"
    w.SaveShot("enter-property-dialog.png");
    w.Click(w.DialogPoint(kDialogOK));
    EXPECT_EQ(w.ActiveDialog(), nullptr);
    EXPECT_EQ(StringProperty(module, target), "Port 9 out");

    w.Click(Point{100, 130});
    ASSERT_NE(w.ActiveDialog(), nullptr);
    EXPECT_EQ(w.ActiveDialog()->Find(kEnterPropertyField)->text, "Port 9 out");
    w.Type("xyz");
    w.Click(w.DialogPoint(kDialogCancel));
    EXPECT_EQ(w.ActiveDialog(), nullptr);
    EXPECT_EQ(StringProperty(module, target), "Port 9 out");

    // Escape is "Cancel" too.
    w.Click(Point{100, 130});
    w.Type("abc");
    w.Key(XK_Escape);
    EXPECT_EQ(w.ActiveDialog(), nullptr);
    EXPECT_EQ(StringProperty(module, target), "Port 9 out");

    w.Click(Point{100, 70});
    EXPECT_EQ(w.ActiveDialog(), nullptr);
    w.SaveShot("enter-property-after-ok.png");
}

}  // namespace BR::Test
