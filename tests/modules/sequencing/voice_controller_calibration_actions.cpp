// The calibration actions on modules: "VCSave" writes the valid entries, "VCLoad" reads a file into the
// table and names it by its path, a broken file gives its error text and leaves the table as it was,
// and "Transfer" copies from the first Voice Controller with a named table.
#include <gtest/gtest.h>

#include <cstring>

#include "CalibrationTestFiles.h"
#include "VoiceControllerRig.h"
#include "modules/sequencing/CalibrationFile.h"
#include "tests/support/ProbeModule.h"

TEST(VoiceControllerCalibrationActions, SaveAndLoad) {
    BR::Test::VoiceRig source;
    source.vc.Calibration().MakeArdent();
    const std::string path = BR::Test::MakeTempFolder() + "/ardent.txt";
    ASSERT_EQ(BR::SaveModuleCalibration(source.vc, path), "");
    EXPECT_EQ(BR::Test::ReadWholeFile(path).substr(0, 50),
              "Corvane Calibration Data\nversion: 1\n48 0.00000000\n");

    BR::Test::VoiceRig target;
    int notified = 0;
    target.vc.AddPropertyListener(
        BR::kPropertyCalibrationName, [](void* count, BrelAuBase*, uint32_t) { ++*static_cast<int*>(count); },
        &notified);
    ASSERT_EQ(BR::LoadModuleCalibration(target.vc, path), "");
    EXPECT_EQ(notified, 1);
    EXPECT_EQ(target.vc.CalibrationName(), path);
    int64_t time = 0;
    target.vc.GetProperty(BR::kPropertyCalibrationTime, &time);
    EXPECT_NE(time, 0);
    target.Set("Output 1 Pitch", 1.0f);
    const auto out = target.Render(64, 64, {{0, BR::Test::Midi(0x90, 60, 100)}});
    EXPECT_FLOAT_EQ(out[0][10], 12 * 0.015686275f);
}

TEST(VoiceControllerCalibrationActions, BrokenFileLeavesTheModuleTable) {
    BR::Test::VoiceRig rig;
    rig.vc.Calibration().MakeArdent();
    const char name[] = "before.txt";
    rig.vc.SetProperty(BR::kPropertyCalibrationName, name, sizeof name);
    const BR::CalibrationTable before = rig.vc.Calibration();
    const std::pair<std::string, std::string> cases[] = {
        {"Corvane Calibration Data\nversion: 1\n60 0.5\n61 oops\n", "Failed to parse line: \"61 oops\""},
        {"Corvane Calibration Data\nversion: 1\n60 0.5\n300 0.5\n", "Index out of range"},
        {"Corvane Calibration Data\nversion: 1\n60 2\n", "Value out of range"},
        {"Corvane Calibration Data\nversion: 7\n", "Invalid version number"},
        {"Other Data\n", "Failed to read file header"},
    };
    for (const auto& [content, error] : cases) {
        const std::string path = BR::Test::WriteTempFile("bad.txt", content);
        EXPECT_EQ(BR::LoadModuleCalibration(rig.vc, path), error);
        EXPECT_EQ(std::memcmp(rig.vc.Calibration().notes, before.notes, sizeof before.notes), 0);
        EXPECT_EQ(std::memcmp(rig.vc.Calibration().valid, before.valid, sizeof before.valid), 0);
        EXPECT_EQ(rig.vc.CalibrationName(), "before.txt");
    }
    EXPECT_EQ(BR::LoadModuleCalibration(rig.vc, "/no/such/file.txt"), "Could not load file");
    EXPECT_EQ(BR::SaveModuleCalibration(rig.vc, "/no/such/folder/file.txt"), "Could not save file");
}

TEST(VoiceControllerCalibrationActions, TransferFromTheFirstNamedVoiceController) {
    BR::Test::VoiceRig formula;  // a formula table has no name: not a source
    formula.vc.Calibration().MakeCinder();
    BR::Test::VoiceRig target;
    target.vc.Calibration().notes[5].value = 0.125f;
    EXPECT_FALSE(BR::TransferCalibration(target.vc));
    EXPECT_EQ(target.vc.Calibration().notes[5].value, 0.125f);
    EXPECT_EQ(target.vc.CalibrationName(), "");

    BR::Test::VoiceRig measured;
    measured.vc.Calibration().MakeArdent();
    measured.vc.Calibration().notes[5].value = -0.5f;
    const char name[] = "<>";
    measured.vc.SetProperty(BR::kPropertyCalibrationName, name, sizeof name);
    EXPECT_TRUE(BR::TransferCalibration(target.vc));
    for (int k = 0; k < 129; ++k) {
        EXPECT_EQ(target.vc.Calibration().notes[k].value, measured.vc.Calibration().notes[k].value) << k;
        EXPECT_EQ(target.vc.Calibration().valid[k], measured.vc.Calibration().valid[k]) << k;
    }
    EXPECT_EQ(target.vc.CalibrationName(), "<Voice Controller Calibration>");
}

TEST(VoiceControllerCalibrationActions, TransferCanTakeTheTargetItselfFirst) {
    // The walk takes the first named Voice Controller, whichever it is: a named target met first
    // copies its own table and only changes its name.
    BR::Test::VoiceRig target;
    target.vc.Calibration().MakeArdent();
    const char own[] = "own.txt";
    target.vc.SetProperty(BR::kPropertyCalibrationName, own, sizeof own);
    BR::Test::VoiceRig other;
    other.vc.Calibration().notes[60].value = 0.75f;
    const char name[] = "<>";
    other.vc.SetProperty(BR::kPropertyCalibrationName, name, sizeof name);
    const BR::CalibrationTable before = target.vc.Calibration();
    EXPECT_TRUE(BR::TransferCalibration(target.vc));
    EXPECT_EQ(std::memcmp(target.vc.Calibration().notes, before.notes, sizeof before.notes), 0);
    EXPECT_EQ(std::memcmp(target.vc.Calibration().valid, before.valid, sizeof before.valid), 0);
    EXPECT_EQ(target.vc.CalibrationName(), "<Voice Controller Calibration>");
}

namespace {
// Stands in for a module that takes a grid: keeps what arrives through properties 64120 and 64121.
class GridTaker : public BR::Test::ProbeModule {
public:
    int32_t SetProperty(uint32_t id, const void* data, uint32_t size) override {
        if (id == BR::kPropertyQuantizerTable && size == sizeof grid) {
            std::memcpy(&grid, data, sizeof grid);
            return BR::kNoErr;
        }
        if (id == BR::kPropertyCalibrationName) {
            name.assign(static_cast<const char*>(data));
            return BR::kNoErr;
        }
        return ProbeModule::SetProperty(id, data, size);
    }
    BR::QuantizerTable grid{};
    std::string name;
};
}  // namespace

TEST(VoiceControllerCalibrationActions, QuantizerLoadSetsGridAndName) {
    GridTaker module;
    const std::string path =
        BR::Test::WriteTempFile("grid.txt", "Corvane Calibration Data\nversion: 1\n72 0.25\n48 -0.25\n");
    ASSERT_EQ(BR::LoadQuantizerCalibration(module, path), "");
    EXPECT_EQ(module.grid.count, 2);
    EXPECT_EQ(module.grid.voltages[0], -0.25f);
    EXPECT_EQ(module.grid.notes[0], 48);
    EXPECT_EQ(module.grid.notes[1], 72);
    EXPECT_EQ(module.name, path);

    GridTaker untouched;
    const std::string empty = BR::Test::WriteTempFile("grid.txt", "Corvane Calibration Data\nversion: 1\n");
    EXPECT_EQ(BR::LoadQuantizerCalibration(untouched, empty), "No values loaded from file");
    EXPECT_EQ(untouched.grid.count, 0);
    EXPECT_EQ(untouched.name, "");
}
