// "VC output arrangement:" shows "Stereo x3" (1) before anything is chosen, and the choice made in one
// editor is what a Preferences dialog of a later session shows, read back from the preference file.
#include <gtest/gtest.h>

#include "support/DialogRig.h"

namespace BR::Test {

TEST(PreferencesVCArrangement, KeptAcrossSessions) {
    TempHome home;
    {
        PreferencesDialog first("Corvane", 510, 220);
        DialogControl& vc = *first.Find(kPrefsVCArrangement);
        EXPECT_EQ(vc.selection, 1);
        EXPECT_EQ(vc.text, "Stereo x3");
        first.MouseDown(first.Centre(kPrefsVCArrangement), 1);
        first.MouseDown(first.RowCentre(kPrefsVCArrangement, 0), 1);
        EXPECT_EQ(vc.text, "5.1");
        first.MouseDown(first.Centre(kDialogOK), 1);
        EXPECT_TRUE(first.Closed());
        EXPECT_EQ(first.Result(), kDialogOK);
    }
    EXPECT_EQ(ReadPreferenceFile()["VC output arrangement"], "0");
    // The next session: a new dialog reads the file again.
    PreferencesDialog second("Corvane", 510, 220);
    EXPECT_EQ(second.Find(kPrefsVCArrangement)->selection, 0);
    EXPECT_EQ(second.Find(kPrefsVCArrangement)->text, "5.1");
    second.MouseDown(second.Centre(kPrefsVCArrangement), 1);
    second.MouseDown(second.RowCentre(kPrefsVCArrangement, 2), 1);
    PreferencesDialog third("Corvane", 510, 220);
    EXPECT_EQ(third.Find(kPrefsVCArrangement)->text, "Mono x6");
    EXPECT_EQ(PreferenceStore::GetInt("VC output arrangement", 1), 2);
}

TEST(PreferencesDialogFields, BadPortIsReadAsTheDecimalReaderTakesIt) {
    TempHome home;
    PreferencesDialog d("Corvane", 510, 220);
    d.MouseDown(d.Centre(kPrefsOSCBasePort), 1);
    for (int i = 0; i < 4; ++i)
        d.KeyDown(8);
    for (char c : std::string("81x2"))
        d.KeyDown(c, true);
    EXPECT_EQ(d.Find(kPrefsOSCBasePort)->text, "81x2");
    EXPECT_EQ(ReadPreferenceFile()["OSC Base Port"], "81");
    // Return closes as "OK" does; Escape as "Cancel".
    EXPECT_TRUE(d.KeyDown(13));
    EXPECT_TRUE(d.Closed());
    EXPECT_EQ(d.Result(), kDialogOK);
}

}  // namespace BR::Test
