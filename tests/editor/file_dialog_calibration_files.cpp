// The calibration buttons' file dialogs: "VCSave" saves (adding ".txt") with no title, "VCLoad" opens
// with "Please choose a calibration file" and names the table after the file; a file that cannot be
// written or read shows "Could not save file" or "Could not load file" in a box titled "Error". The
// dialog lists sub-folders and text files only, and keeps the path within 260 characters.
#include <gtest/gtest.h>

#include <filesystem>

#include "modules/sequencing/Calibration.h"
#include "support/DialogRig.h"

namespace BR::Test {

namespace {
void Press(LuaPanelRig& rig, const char* key) {
    (*rig.gui->buttonLookup)[key].function(rig.gui.get());
}
void TypeAndPress(Manager& manager, const std::string& text, int32_t button) {
    manager.WithDialog([&](Dialog& dialog) {
        for (char c : text)
            dialog.KeyDown(c, true);
        dialog.MouseDown(dialog.Centre(button), 1);
    });
}
}  // namespace

TEST(CalibrationFileDialogs, SaveLoadAndFailures) {
    LuaPanelRig rig("voicecontroller");
    rig.InitOnly();
    rig.manager.SetDesignSize(600, 400);
    Manager& m = rig.manager;
    const std::string folder = rig.home.root + "/calibration";
    std::filesystem::create_directories(folder + "/older");

    Press(rig, "VCSave");
    ASSERT_NE(m.ActiveDialog(), nullptr);
    EXPECT_EQ(m.ActiveDialog()->Title(), "");
    EXPECT_EQ(m.ActiveDialog()->Find(kFileFilter)->text, "Text Files (*.txt)");
    TypeAndPress(m, folder + "/table", kDialogOK);
    EXPECT_EQ(m.ActiveDialog(), nullptr);
    ASSERT_TRUE(std::filesystem::exists(folder + "/table.txt"));
    EXPECT_GT(std::filesystem::file_size(folder + "/table.txt"), 0u);

    // The next dialog opens in the folder last used, listing its folders and text files only.
    std::ofstream(folder + "/notes.wav") << "x";
    Press(rig, "VCLoad");
    auto* load = dynamic_cast<FileDialog*>(m.ActiveDialog());
    ASSERT_NE(load, nullptr);
    EXPECT_EQ(load->Title(), "Please choose a calibration file");
    EXPECT_EQ(load->Folder(), std::filesystem::weakly_canonical(folder).string());
    EXPECT_EQ(load->Find(kFileList)->items, (std::vector<std::string>{"../", "older/", "table.txt"}));
    m.WithDialog([](Dialog& dialog) {
        dialog.MouseDown(dialog.RowCentre(kFileList, 2), 1);
        dialog.MouseDown(dialog.Centre(kDialogOK), 1);
    });
    EXPECT_EQ(m.ActiveDialog(), nullptr);
    EXPECT_EQ(StringProperty(rig.driver->Module(), kPropertyCalibrationName),
              std::filesystem::weakly_canonical(folder).string() + "/table.txt");

    Press(rig, "VCSave");
    TypeAndPress(m, folder + "/missing/table", kDialogOK);
    ASSERT_NE(m.ActiveDialog(), nullptr);
    EXPECT_EQ(m.ActiveDialog()->Title(), "Error");
    EXPECT_EQ(m.ActiveDialog()->Find(kMessageText)->text, "Could not save file");
    m.WithDialog([](Dialog& dialog) { dialog.MouseDown(dialog.Centre(kDialogOK), 1); });
    EXPECT_EQ(m.ActiveDialog(), nullptr);

    Press(rig, "VCLoad");
    TypeAndPress(m, folder + "/absent.txt", kDialogOK);
    ASSERT_NE(m.ActiveDialog(), nullptr);
    EXPECT_EQ(m.ActiveDialog()->Title(), "Error");
    EXPECT_EQ(m.ActiveDialog()->Find(kMessageText)->text, "Could not load file");
    m.WithDialog([](Dialog& dialog) { dialog.KeyDown(13); });

    // "Cancel" saves nothing.
    Press(rig, "VCSave");
    TypeAndPress(m, folder + "/cancelled", kDialogCancel);
    EXPECT_EQ(m.ActiveDialog(), nullptr);
    EXPECT_FALSE(std::filesystem::exists(folder + "/cancelled.txt"));
    EXPECT_EQ(rig.gui->pressedActions, (std::vector<int32_t>{kActionVCSave, kActionVCLoad, kActionVCSave,
                                                             kActionVCLoad, kActionVCSave}));
}

TEST(CalibrationFileDialogs, PathStaysWithin260Characters) {
    TempHome home;
    FileDialog d(FileDialog::kSave, "", "Text Files (*.txt)", "txt", home.root, nullptr, 600, 400);
    for (int i = 0; i < 400; ++i)
        d.KeyDown('a', true);
    const std::string path = d.ChosenPath();
    EXPECT_LE(path.size(), FileDialog::kMaxPath);
    EXPECT_EQ(d.Find(kFileName)->text.size(), FileDialog::kMaxPath - (d.Folder().size() + 1));
    // The default extension is added to a name without one, which here passes the limit: refused.
    EXPECT_EQ(path, "");
    d.KeyDown(8), d.KeyDown(8), d.KeyDown(8), d.KeyDown(8);
    EXPECT_EQ(d.ChosenPath().size(), FileDialog::kMaxPath);
}

}  // namespace BR::Test
