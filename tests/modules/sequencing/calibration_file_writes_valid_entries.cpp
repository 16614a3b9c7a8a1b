// A saved file holds the two header lines and one "%i %.8f" line per valid entry, in index order,
// with single line feeds.
#include <gtest/gtest.h>

#include "CalibrationTestFiles.h"
#include "modules/sequencing/CalibrationFile.h"

TEST(CalibrationFileWrite, OnlyValidEntries) {
    BR::CalibrationTable table;
    table.MakeArdent();
    table.notes[3].value = 0.123456789f;  // not valid: not written
    const std::string path = BR::Test::MakeTempFolder() + "/cal.txt";
    ASSERT_EQ(BR::WriteCalibrationFile(path, table.notes, table.valid, BR::kCalibrationEntries), "");
    const std::string text = BR::Test::ReadWholeFile(path);
    EXPECT_EQ(text.substr(0, 36), "Corvane Calibration Data\nversion: 1\n");
    EXPECT_NE(text.find("\n48 0.00000000\n49 0.01568628\n"), std::string::npos);
    EXPECT_NE(text.find("\n111 0.98823535\n"), std::string::npos);
    EXPECT_EQ(text.find("\r"), std::string::npos);
    EXPECT_EQ(text.find("\n3 "), std::string::npos);
    EXPECT_EQ(text.find("\n112 "), std::string::npos);
    size_t lines = 0;
    for (char c : text)
        lines += c == '\n';
    EXPECT_EQ(lines, 2u + 64u);
}

TEST(CalibrationFileWrite, CinderTableWritesAnEmptyBody) {
    BR::CalibrationTable table;
    table.MakeCinder();
    const std::string path = BR::Test::MakeTempFolder() + "/cinder.txt";
    ASSERT_EQ(BR::WriteCalibrationFile(path, table.notes, table.valid, BR::kCalibrationEntries), "");
    EXPECT_EQ(BR::Test::ReadWholeFile(path), BR::Test::kCalibrationHeader);
}

TEST(CalibrationFileWrite, UnwritablePath) {
    BR::CalibrationTable table;
    EXPECT_EQ(BR::WriteCalibrationFile("/nonexistent-folder/x/cal.txt", table.notes, table.valid, 129),
              "Could not save file");
}

TEST(CalibrationFileWrite, ReadBackGivesTheSameTable) {
    BR::CalibrationTable table;
    table.MakeArdent();
    const std::string path = BR::Test::MakeTempFolder() + "/ardent.txt";
    ASSERT_EQ(BR::WriteCalibrationFile(path, table.notes, table.valid, BR::kCalibrationEntries), "");
    BR::CalibrationTable loaded;
    ASSERT_EQ(BR::ReadCalibrationIntoTable(path, loaded.notes, loaded.valid, BR::kCalibrationEntries), "");
    for (int k = 48; k <= 111; ++k) {
        EXPECT_NEAR(loaded.notes[k].value, table.notes[k].value, 1e-8f) << k;
        EXPECT_EQ(loaded.valid[k], 1);
    }
    EXPECT_EQ(loaded.valid[47], 0);
    // Outside the range the octave passes repeat the nearest octave: 36 takes 48's level, 112 takes 100's.
    EXPECT_EQ(loaded.notes[36].value, loaded.notes[48].value);
    EXPECT_EQ(loaded.notes[112].value, loaded.notes[100].value);
}
