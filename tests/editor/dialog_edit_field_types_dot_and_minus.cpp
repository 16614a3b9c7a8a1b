// A dialog's edit field takes "." and "-" as typed characters, though the view's key map gives Delete
// the code of "." (46) and Insert the code of "-" (45): typed, they are written; as keys, Delete
// removes the last character and Insert does nothing. So an address such as "127.0.0.1:9000" or a
// name such as "in-1" can be typed; the panel's own text fields keep the shared codes.
#include <X11/keysym.h>
#include <gtest/gtest.h>

#include "editor/X11Window.h"
#include "modules/events/CVToOSC.h"
#include "support/DialogRig.h"

namespace BR::Test {

TEST(DialogEditField, TypesDotAndMinusDeletesOnDeleteKey) {
    LuaPanelRig rig("cvtoosc");
    BrelCorvaneBase& module = rig.driver->Module();
    const uint32_t target = BrelCorvaneCVToOSC::kPropertyTarget;
    EnterPropertyDialog d(&module, target, "", 550, 269);
    for (int i = 0; i < 64; ++i)
        d.KeyDown(8);
    ASSERT_EQ(d.Find(kEnterPropertyField)->text, "");
    for (char c : std::string("in-1.local:9000"))
        d.KeyDown(c, true);
    EXPECT_EQ(d.Find(kEnterPropertyField)->text, "in-1.local:9000");
    d.KeyDown(46);  // the Delete key
    EXPECT_EQ(d.Find(kEnterPropertyField)->text, "in-1.local:900");
    d.KeyDown(45);  // the Insert key
    EXPECT_EQ(d.Find(kEnterPropertyField)->text, "in-1.local:900");
    d.MouseDown(d.Centre(kDialogOK), 1);
    EXPECT_EQ(StringProperty(module, target), "in-1.local:900");
}

// The key map itself: Delete and Insert give 46 and 45 without a character of their own, while "."
// and "-" give the same codes as the characters of their keys' text.
TEST(DialogEditField, KeyMapCodesOfDeleteAndDot) {
    EXPECT_EQ(X11Window::MapKey(XK_Delete, "\x7f", 1), 46);
    EXPECT_EQ(X11Window::MapKey(XK_Insert, "", 0), 45);
    EXPECT_EQ(X11Window::MapKey(XK_period, ".", 1), 46);
    EXPECT_EQ(X11Window::MapKey(XK_minus, "-", 1), 45);
}

}  // namespace BR::Test
