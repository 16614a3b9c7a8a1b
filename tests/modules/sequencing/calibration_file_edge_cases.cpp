// Loading edge cases: a single line spreads over its octaves, an empty body gives an all-zero table
// (and no Quantizer grid), values of exactly 1.0 and -1.0 load, long lines are read in parts, and
// gaps between entries are interpolated without becoming valid.
#include <gtest/gtest.h>

#include "CalibrationTestFiles.h"
#include "modules/sequencing/CalibrationFile.h"

namespace {
std::string Load(const std::string& body, BR::CalibrationTable& table) {
    const std::string path =
        BR::Test::WriteTempFile("cal.txt", std::string(BR::Test::kCalibrationHeader) + body);
    return BR::ReadCalibrationIntoTable(path, table.notes, table.valid, BR::kCalibrationEntries);
}
}  // namespace

TEST(CalibrationFileEdges, OneLineSpreadsToTheSameNoteInEveryOctave) {
    BR::CalibrationTable table;
    table.notes[61].value = 0.9f;  // overwritten: entries nothing fills become 0
    ASSERT_EQ(Load("62 0.5\n", table), "");
    for (int k = 0; k < BR::kCalibrationEntries; ++k) {
        EXPECT_EQ(table.valid[k], k == 62 ? 1 : 0) << k;
        EXPECT_EQ(table.notes[k].value, k % 12 == 2 ? 0.5f : 0.0f) << k;
    }
}

TEST(CalibrationFileEdges, NoEntriesGivesAnAllZeroTable) {
    BR::CalibrationTable table;
    table.MakeArdent();
    ASSERT_EQ(Load("", table), "");
    for (int k = 0; k < BR::kCalibrationEntries; ++k) {
        EXPECT_EQ(table.valid[k], 0);
        EXPECT_EQ(table.notes[k].value, 0.0f);
    }
    BR::QuantizerTable grid{};
    const std::string path = BR::Test::WriteTempFile("cal.txt", BR::Test::kCalibrationHeader);
    EXPECT_EQ(BR::ReadCalibrationIntoQuantizerTable(path, grid), "No values loaded from file");
}

TEST(CalibrationFileEdges, UnitValuesAreAccepted) {
    BR::CalibrationTable table;
    ASSERT_EQ(Load("0 -1.0\n128 1.0\n", table), "");
    EXPECT_EQ(table.notes[0].value, -1.0f);
    EXPECT_EQ(table.notes[128].value, 1.0f);
    EXPECT_FLOAT_EQ(table.notes[64].value, 0.0f);
    EXPECT_EQ(table.valid[0], 1);
    EXPECT_EQ(table.valid[128], 1);
    EXPECT_EQ(table.valid[64], 0);
}

TEST(CalibrationFileEdges, LongLineIsReadInParts) {
    // 255 characters make the first part; the rest of the line is scanned as a line of its own.
    std::string first = "5 0.25";
    first.resize(255, ' ');
    BR::CalibrationTable table;
    ASSERT_EQ(Load(first + "7 0.75\n", table), "");
    EXPECT_EQ(table.valid[5], 1);
    EXPECT_EQ(table.valid[7], 1);
    EXPECT_EQ(table.notes[7].value, 0.75f);
    EXPECT_FLOAT_EQ(table.notes[6].value, 0.5f);

    // A part that holds no entry is a parse error naming that part.
    std::string spaces = "9 0.5";
    spaces.resize(300, ' ');
    BR::CalibrationTable other;
    EXPECT_EQ(Load(spaces + "\n", other), "Failed to parse line: \"" + std::string(300 - 255, ' ') + "\"");
}

TEST(CalibrationFileEdges, GapsAreInterpolatedButStayInvalid) {
    BR::CalibrationTable table;
    ASSERT_EQ(Load("60 0.0\n64 0.4\n70 -0.2\n", table), "");
    EXPECT_FLOAT_EQ(table.notes[61].value, 0.1f);
    EXPECT_FLOAT_EQ(table.notes[63].value, 0.3f);
    EXPECT_FLOAT_EQ(table.notes[67].value, 0.1f);
    EXPECT_EQ(table.valid[61], 0);
    EXPECT_EQ(table.valid[64], 1);
    // Outside: the nearest octave of the same note, interpolated notes included.
    EXPECT_EQ(table.notes[49].value, table.notes[61].value);
    EXPECT_EQ(table.notes[1].value, table.notes[61].value);
    EXPECT_EQ(table.notes[82].value, table.notes[70].value);
    EXPECT_EQ(table.notes[128].value, table.notes[68].value);
}

TEST(CalibrationFileEdges, WindowsLineEndsRead) {
    const std::string path =
        BR::Test::WriteTempFile("crlf.txt", "Corvane Calibration Data\r\nversion: 1\r\n60 0.5\r\n");
    BR::CalibrationTable table;
    EXPECT_EQ(BR::ReadCalibrationIntoTable(path, table.notes, table.valid, BR::kCalibrationEntries), "");
    EXPECT_EQ(table.notes[60].value, 0.5f);
}
