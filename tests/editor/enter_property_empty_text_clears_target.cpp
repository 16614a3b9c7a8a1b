// The Enter Property dialog opens with the property's current string and the field's tooltip as its
// caption ("Message:" without one); an emptied field with "OK" writes the empty string, which clears
// the CV To MIDI target; "Cancel" writes nothing.
#include <gtest/gtest.h>

#include "modules/events/CVToMIDI.h"
#include "support/DialogRig.h"

namespace BR::Test {

TEST(EnterPropertyDialog, EmptyTextClearsTarget) {
    LuaPanelRig rig("cvtomidi");
    BrelCorvaneBase& module = rig.driver->Module();
    const uint32_t target = BrelCorvaneCVToMIDI::kPropertyDestinationName;
    module.SetProperty(target, "Port 1", 7);

    EnterPropertyDialog plain(&module, target, "", 525, 395);
    EXPECT_EQ(plain.Title(), "Enter Property");
    EXPECT_EQ(plain.Find(kDialogCaption)->text, "Message:");
    EXPECT_EQ(plain.Find(kEnterPropertyField)->text, "Port 1");
    for (int i = 0; i < 3; ++i)
        plain.KeyDown(8);
    plain.MouseDown(plain.Centre(kDialogCancel), 1);
    EXPECT_TRUE(plain.Closed());
    EXPECT_EQ(StringProperty(module, target), "Port 1");

    EnterPropertyDialog clearing(&module, target, "MIDI target", 525, 395);
    EXPECT_EQ(clearing.Find(kDialogCaption)->text, "MIDI target");
    for (int i = 0; i < 6; ++i)
        clearing.KeyDown(8);
    EXPECT_EQ(clearing.Find(kEnterPropertyField)->text, "");
    clearing.MouseDown(clearing.Centre(kDialogOK), 1);
    EXPECT_EQ(StringProperty(module, target), "");
    EXPECT_EQ(static_cast<BrelCorvaneCVToMIDI::BrelCorvane&>(module).DestinationName(), "");
}

}  // namespace BR::Test
