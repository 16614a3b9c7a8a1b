// Under Xvfb with synthetic input: the DC panel's "Prefs" button opens the Preferences dialog over the
// panel; typing a port and choosing a skin, a check box and an arrangement write "OSC Base Port",
// "Skin", "Enable floating tooltip" and "VC output arrangement" to the preference file at once; "OK"
// closes it and the panel takes input again.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/DialogRig.h"

namespace BR::Test {

TEST(WindowPreferencesDialog, WritesPortSkinFlagAndArrangement) {
    DialogWindowRig w("dc");
    std::filesystem::create_directories(w.panel.home.root + "/data/Brelmont/Corvane/Skins/Dark");
    std::filesystem::create_directories(w.panel.home.root + "/data/Brelmont/Corvane/Skins/Light.bundle");
    const bool savedTooltip = gFloatingTooltip;
    gFloatingTooltip = false;
    ASSERT_TRUE(w.OpenScript()) << w.window.LastError();
    int width = 0, height = 0;
    const std::vector<uint8_t> before = w.Grab(width, height);

    w.Click(w.ButtonCentre("Prefs"));
    Dialog* d = w.ActiveDialog();
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(d->Title(), "Preferences");
    EXPECT_EQ(d->Find(kPrefsProduct)->text, "Corvane 2.6.1");
    EXPECT_EQ(d->Find(kPrefsOSCBasePort)->text, "7000");
    const DialogControl& skin = *d->Find(kPrefsSkin);
    EXPECT_EQ(skin.items, (std::vector<std::string>{"Default", "Dark", "Light.bundle"}));
    EXPECT_EQ(skin.text, "Default");
    EXPECT_EQ(d->Find(kPrefsOpenSkinFolder)->text, "Open skin folder");
    EXPECT_TRUE(d->Find(kPrefsEyeCandy)->checked);
    EXPECT_TRUE(d->Find(kPrefsConstantRedraw)->checked);
    EXPECT_FALSE(d->Find(kPrefsFloatingTooltip)->checked);
    EXPECT_EQ(d->Find(kPrefsVCArrangement)->items, (std::vector<std::string>{"5.1", "Stereo x3", "Mono x6"}));
    EXPECT_EQ(d->Find(kPrefsVCArrangement)->text, "Stereo x3");
    EXPECT_EQ(d->Find(kDialogOK)->text, "OK");
    ASSERT_TRUE(w.WaitFrames(3));
    EXPECT_GT(DifferentPixelFraction(before, w.Grab(width, height), 40), 0.2) << "the dialog is not drawn";

    // The port field: four Backspaces, then "9100"; each keystroke is written at once.
    w.Click(w.DialogPoint(kPrefsOSCBasePort));
    for (int i = 0; i < 4; ++i)
        w.Key(XK_BackSpace);
    w.Type("91");
    EXPECT_EQ(ReadPreferenceFile()["OSC Base Port"], "91");
    w.Type("00");
    EXPECT_EQ(ReadPreferenceFile()["OSC Base Port"], "9100");

    w.Click(w.DialogPoint(kPrefsSkin));
    w.SaveShot("preferences-skin-list.png");
    w.Click(w.DialogPoint(kPrefsSkin, 1));
    EXPECT_EQ(d->Find(kPrefsSkin)->text, "Dark");
    EXPECT_EQ(ReadPreferenceFile()["Skin"], "Dark");

    w.Click(w.DialogPoint(kPrefsFloatingTooltip));
    EXPECT_TRUE(gFloatingTooltip);
    EXPECT_EQ(ReadPreferenceFile()["Enable floating tooltip"], "1");

    w.Click(w.DialogPoint(kPrefsVCArrangement));
    w.Click(w.DialogPoint(kPrefsVCArrangement, 2));
    EXPECT_EQ(ReadPreferenceFile()["VC output arrangement"], "2");
    w.SaveShot("preferences-dialog.png");

    // "Default" is written as the empty name.
    w.Click(w.DialogPoint(kPrefsSkin));
    w.Click(w.DialogPoint(kPrefsSkin, 0));
    EXPECT_EQ(ReadPreferenceFile()["Skin"], "");
    w.Click(w.DialogPoint(kPrefsSkin));
    w.Click(w.DialogPoint(kPrefsSkin, 1));

    w.Click(w.DialogPoint(kDialogOK));
    EXPECT_EQ(w.ActiveDialog(), nullptr);
    const std::map<std::string, std::string> written = ReadPreferenceFile();
    EXPECT_EQ(written.at("OSC Base Port"), "9100");
    EXPECT_EQ(written.at("Skin"), "Dark");
    EXPECT_EQ(PreferenceStore::GetInt("OSC Base Port", 7000), 9100);
    gFloatingTooltip = savedTooltip;
}

}  // namespace BR::Test
