// The MIDI Browser lists the host's output devices in device order; "Cancel" leaves the CV To MIDI
// target as it was, "OK" with a row writes that name, "OK" without one writes nothing; both clear the
// gui's list of names. Without a device source the list is empty.
#include <gtest/gtest.h>

#include "modules/events/CVToMIDI.h"
#include "support/DialogRig.h"

namespace BR::Test {

namespace {
std::vector<std::string> TwoDevices() {
    return {"Synth Port A", "Synth Port B"};
}
}  // namespace

TEST(MIDIBrowser, CancelLeavesTargetOkWritesRow) {
    LuaPanelRig rig("cvtomidi");
    rig.InitOnly();
    rig.manager.SetDesignSize(525, 395);
    BrelCorvaneBase& module = rig.driver->Module();
    const uint32_t target = BrelCorvaneCVToMIDI::kPropertyDestinationName;
    const std::string old = "Old Device";
    module.SetProperty(target, old.c_str(), uint32_t(old.size() + 1));

    SetMIDIBrowserDeviceSource(TwoDevices);
    rig.gui->OpenMIDIBrowser(target);
    Dialog* d = rig.manager.ActiveDialog();
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(d->Title(), "MIDI Browser");
    EXPECT_EQ(d->Find(kDialogCaption)->text, "Select a MIDI target:");
    EXPECT_EQ(d->Find(kMIDIBrowserList)->items, TwoDevices());
    EXPECT_EQ(rig.gui->midiDeviceNames, TwoDevices());
    rig.manager.WithDialog([](Dialog& dialog) {
        dialog.MouseDown(dialog.RowCentre(kMIDIBrowserList, 1), 1);
        dialog.MouseDown(dialog.Centre(kDialogCancel), 1);
    });
    EXPECT_EQ(rig.manager.ActiveDialog(), nullptr);
    EXPECT_EQ(StringProperty(module, target), old);
    EXPECT_TRUE(rig.gui->midiDeviceNames.empty());

    // "OK" with no row chosen writes nothing either.
    rig.gui->OpenMIDIBrowser(target);
    rig.manager.WithDialog([](Dialog& dialog) { dialog.MouseDown(dialog.Centre(kDialogOK), 1); });
    EXPECT_EQ(StringProperty(module, target), old);

    rig.gui->OpenMIDIBrowser(target);
    rig.manager.WithDialog([](Dialog& dialog) {
        dialog.MouseDown(dialog.RowCentre(kMIDIBrowserList, 1), 1);
        dialog.MouseDown(dialog.Centre(kDialogOK), 1);
    });
    EXPECT_EQ(StringProperty(module, target), "Synth Port B");
    EXPECT_TRUE(rig.gui->midiDeviceNames.empty());

    // A double click on a row acts as "OK".
    rig.gui->OpenMIDIBrowser(target);
    rig.manager.WithDialog(
        [](Dialog& dialog) { dialog.MouseDown(dialog.RowCentre(kMIDIBrowserList, 0), 2); });
    EXPECT_EQ(rig.manager.ActiveDialog(), nullptr);
    EXPECT_EQ(StringProperty(module, target), "Synth Port A");

    SetMIDIBrowserDeviceSource(nullptr);
    rig.gui->OpenMIDIBrowser(target);
    EXPECT_TRUE(rig.manager.ActiveDialog()->Find(kMIDIBrowserList)->items.empty());
    rig.manager.WithDialog([](Dialog& dialog) { dialog.KeyDown(27); });
    EXPECT_EQ(rig.manager.ActiveDialog(), nullptr);
    EXPECT_EQ(StringProperty(module, target), "Synth Port A");
}

TEST(MIDIBrowser, ButtonFromTheScriptOpensItForItsProperty) {
    LuaPanelRig rig("cvtomidi");
    rig.InitOnly();
    rig.manager.SetDesignSize(525, 395);
    ASSERT_EQ(rig.Run("b = midiBrowseButton( 'Browse', 'Choose a MIDI target', 64100, 10, 10, 60, 20 )"), "");
    auto* button = dynamic_cast<MIDIBrowseButton*>(rig.manager.elements.back());
    ASSERT_NE(button, nullptr);
    SetMIDIBrowserDeviceSource(TwoDevices);
    button->MouseDown(Point{40, 20}, 0, 1);
    button->MouseUp(Point{40, 20}, 0);
    ASSERT_NE(rig.manager.ActiveDialog(), nullptr);
    rig.manager.WithDialog([](Dialog& dialog) {
        dialog.MouseDown(dialog.RowCentre(kMIDIBrowserList, 0), 1);
        dialog.KeyDown(13);
    });
    EXPECT_EQ(StringProperty(rig.driver->Module(), 64100), "Synth Port A");
    SetMIDIBrowserDeviceSource(nullptr);
}

}  // namespace BR::Test
