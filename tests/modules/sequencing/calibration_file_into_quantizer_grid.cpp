// A calibration file read as a Quantizer grid: voltages in ascending order with the index as the
// note, a repeated voltage keeping the last index, no upper index limit, and at most 129 steps.
#include <gtest/gtest.h>

#include "CalibrationTestFiles.h"
#include "modules/sequencing/CalibrationFile.h"

namespace {
std::string Read(const std::string& body, BR::QuantizerTable& table) {
    const std::string path =
        BR::Test::WriteTempFile("grid.txt", std::string(BR::Test::kCalibrationHeader) + body);
    return BR::ReadCalibrationIntoQuantizerTable(path, table);
}
}  // namespace

TEST(CalibrationQuantizerGrid, AscendingWithLastIndexOfARepeat) {
    BR::QuantizerTable table{};
    ASSERT_EQ(Read("60 0.5\n48 -0.25\n500 0.75\n61 0.5\n0 -1\n", table), "");
    ASSERT_EQ(table.count, 4);
    EXPECT_EQ(table.voltages[0], -1.0f);
    EXPECT_EQ(table.notes[0], 0);
    EXPECT_EQ(table.voltages[1], -0.25f);
    EXPECT_EQ(table.notes[1], 48);
    EXPECT_EQ(table.voltages[2], 0.5f);
    EXPECT_EQ(table.notes[2], 61);
    EXPECT_EQ(table.voltages[3], 0.75f);
    EXPECT_EQ(table.notes[3], 500);
}

TEST(CalibrationQuantizerGrid, TooManySteps) {
    std::string body;
    for (int k = 0; k < 130; ++k)
        body += std::to_string(k) + " " + std::to_string(k / 200.0) + "\n";
    BR::QuantizerTable table{};
    table.count = 7;
    EXPECT_EQ(Read(body, table), "Too many steps");
    EXPECT_EQ(table.count, 7);
    body = body.substr(0, body.rfind("129 "));
    EXPECT_EQ(Read(body, table), "");
    EXPECT_EQ(table.count, 129);
}
