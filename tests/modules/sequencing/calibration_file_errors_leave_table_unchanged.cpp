// Every broken calibration file gives its error text, and the table it was read into keeps every
// value and flag it had.
#include <gtest/gtest.h>

#include <cstring>

#include "CalibrationTestFiles.h"
#include "modules/sequencing/CalibrationFile.h"

namespace {

struct Case {
    const char* content;
    const char* error;
};

const Case kCases[] = {
    {"", "Failed to read line from file"},
    {"Corvane Calibration Data", "Failed to read file header"},  // no line feed: not the exact line
    {"Corvane calibration data\nversion: 1\n", "Failed to read file header"},
    {"Corvane Calibration Data\n", "Failed to read line from file"},
    {"Corvane Calibration Data\nversion 1\n", "Failed to get version number"},
    {"Corvane Calibration Data\nversion: x\n", "Failed to get version number"},
    {"Corvane Calibration Data\nversion: 2\n60 0.5\n", "Invalid version number"},
    {"Corvane Calibration Data\nversion: 1\n60 0.5\nsixty 0.5\n", "Failed to parse line: \"sixty 0.5\""},
    {"Corvane Calibration Data\nversion: 1\n60\n", "Failed to parse line: \"60\""},
    {"Corvane Calibration Data\nversion: 1\n60 0.5\n\n", "Failed to parse line: \"\""},
    {"Corvane Calibration Data\nversion: 1\n129 0.5\n", "Index out of range"},
    {"Corvane Calibration Data\nversion: 1\n-1 0.5\n", "Index out of range"},
    {"Corvane Calibration Data\nversion: 1\n60 1.001\n", "Value out of range"},
    {"Corvane Calibration Data\nversion: 1\n60 -1.5\n", "Value out of range"},
    {"Corvane Calibration Data\nversion: 1\n60 nan\n", "Value out of range"},
    // The first error met wins: the range check of line 3 comes before the parse error of line 4.
    {"Corvane Calibration Data\nversion: 1\n200 0.5\nbad\n", "Index out of range"},
};

void Fill(BR::CalibrationTable& table) {
    for (int k = 0; k < BR::kCalibrationEntries; ++k) {
        table.notes[k].value = float(k) / 256.0f;
        table.valid[k] = k % 3 == 0;
    }
}

}  // namespace

TEST(CalibrationFileErrors, EachTextAndTableUnchanged) {
    for (const Case& c : kCases) {
        const std::string path = BR::Test::WriteTempFile("broken.txt", c.content);
        BR::CalibrationTable table, before;
        Fill(table);
        Fill(before);
        EXPECT_EQ(BR::ReadCalibrationIntoTable(path, table.notes, table.valid, BR::kCalibrationEntries),
                  c.error)
            << c.content;
        EXPECT_EQ(std::memcmp(table.notes, before.notes, sizeof table.notes), 0) << c.content;
        EXPECT_EQ(std::memcmp(table.valid, before.valid, sizeof table.valid), 0) << c.content;
    }
}

TEST(CalibrationFileErrors, MissingFileAndFolder) {
    BR::CalibrationTable table;
    EXPECT_EQ(BR::ReadCalibrationIntoTable("/nonexistent/cal.txt", table.notes, table.valid, 129),
              "Could not load file");
    // A folder opens but cannot be read.
    EXPECT_EQ(BR::ReadCalibrationIntoTable(BR::Test::MakeTempFolder(), table.notes, table.valid, 129),
              "Failed to read line from file");
}

TEST(CalibrationFileErrors, QuantizerRanges) {
    BR::QuantizerTable table;
    std::memset(&table, 0, sizeof table);
    table.count = 3;
    const BR::QuantizerTable before = table;
    std::string path =
        BR::Test::WriteTempFile("q.txt", std::string(BR::Test::kCalibrationHeader) + "-1 0.5\n");
    EXPECT_EQ(BR::ReadCalibrationIntoQuantizerTable(path, table), "Index out of range");
    path = BR::Test::WriteTempFile("q.txt", std::string(BR::Test::kCalibrationHeader) + "3 -1.01\n");
    EXPECT_EQ(BR::ReadCalibrationIntoQuantizerTable(path, table), "Value out of range");
    path = BR::Test::WriteTempFile("q.txt", "Corvane Calibration Data\nversion: 3\n");
    EXPECT_EQ(BR::ReadCalibrationIntoQuantizerTable(path, table), "Invalid version number");
    EXPECT_EQ(std::memcmp(&table, &before, sizeof table), 0);
}
