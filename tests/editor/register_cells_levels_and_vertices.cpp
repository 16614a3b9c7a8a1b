// The random register's row: each cell's level scaled from 0 to 255 over the row's height, drawn as one
// stepped line of at most 96 vertices (two per cell, 48 cells).
#include <gtest/gtest.h>

#include "editor/widgets/StepEditors.h"

namespace BR::Test {

TEST(RandomRegisterCells, LevelsScaleFrom0To255) {
    const uint64_t bits = (uint64_t(1) << 0) | (uint64_t(1) << 5) | (uint64_t(1) << 47);
    EXPECT_EQ(RandomRegisterEditor::CellLevel(bits, 0), 255);
    EXPECT_EQ(RandomRegisterEditor::CellLevel(bits, 1), 0);
    EXPECT_EQ(RandomRegisterEditor::CellLevel(bits, 5), 255);
    EXPECT_EQ(RandomRegisterEditor::CellLevel(bits, 47), 255);
    // Bits past the 48 cells are not cells.
    EXPECT_EQ(RandomRegisterEditor::CellLevel(~uint64_t(0), 48), 0);
    EXPECT_EQ(RandomRegisterEditor::CellLevel(~uint64_t(0), -1), 0);
}

TEST(RandomRegisterCells, RowIsAtMost96VerticesAtTheCellsLevels) {
    std::array<float, 2 * RandomRegisterEditor::kMaxRowVertices> xy{};
    const uint64_t bits = (uint64_t(1) << 2) | (uint64_t(1) << 47) | (uint64_t(1) << 50);
    const int32_t count = RandomRegisterEditor::BuildRow(bits, 10, 20, 480, 30, xy);
    EXPECT_EQ(count, 96);
    // Cell 2: from x 30 to 40 at the top (20 + 30); cell 3 at the bottom; cell 47 ends at the right edge.
    EXPECT_FLOAT_EQ(xy[2 * 4], 30.0f);
    EXPECT_FLOAT_EQ(xy[2 * 4 + 1], 50.0f);
    EXPECT_FLOAT_EQ(xy[2 * 5], 40.0f);
    EXPECT_FLOAT_EQ(xy[2 * 5 + 1], 50.0f);
    EXPECT_FLOAT_EQ(xy[2 * 6 + 1], 20.0f);
    EXPECT_FLOAT_EQ(xy[2 * 95], 490.0f);
    EXPECT_FLOAT_EQ(xy[2 * 95 + 1], 50.0f);
    EXPECT_FLOAT_EQ(xy[2 * 0 + 1], 20.0f);
}

}  // namespace BR::Test
