// The random register is edited through property 64152, one 12-byte payload {registerId, step,
// operation} per cell crossed: 3 for a plain drag, 2 with Shift, 1 with Control, and a last one with
// operation 0 at the release.
#include <gtest/gtest.h>

#include "support/StepEditorRig.h"

namespace BR::Test {

using Edits = std::vector<std::array<int32_t, 3>>;

TEST(RandomRegisterPayloads, PlainDragWritesEveryCrossedCellThenZero) {
    StepEditorRig rig;
    rig.Gesture(rig.Cell(4), {rig.Cell(8), rig.Cell(6)});
    EXPECT_EQ(
        rig.recorder->registerEdits,
        (Edits{{0, 4, 3}, {0, 5, 3}, {0, 6, 3}, {0, 7, 3}, {0, 8, 3}, {0, 7, 3}, {0, 6, 3}, {0, 6, 0}}));
    for (uint32_t size : rig.recorder->registerEditSizes)
        EXPECT_EQ(size, 12u);
    // The module takes every payload.
    for (int32_t result : rig.recorder->registerEditResults)
        EXPECT_EQ(result, kNoErr);
}

TEST(RandomRegisterPayloads, ShiftSetsAndControlClears) {
    StepEditorRig rig;
    rig.Gesture(rig.Cell(10), {rig.Cell(12)}, kModShift);
    EXPECT_EQ(rig.recorder->registerEdits, (Edits{{0, 10, 2}, {0, 11, 2}, {0, 12, 2}, {0, 12, 0}}));
    rig.recorder->registerEdits.clear();
    rig.Gesture(rig.Cell(3), {rig.Cell(1)}, kModControl);
    EXPECT_EQ(rig.recorder->registerEdits, (Edits{{0, 3, 1}, {0, 2, 1}, {0, 1, 1}, {0, 1, 0}}));
}

TEST(RandomRegisterPayloads, LaneRAndClampedCells) {
    StepEditorRig rig;
    auto* right = new RandomRegisterEditor(rig.manager.get(), 1);
    right->SetRect(300, 150, 480, 10);  // 10 px a cell
    rig.manager->rootGroup->Add(right);
    rig.Gesture(Point{300 + 46 * 10 + 5, 155}, {Point{2000, 155}});
    EXPECT_EQ(rig.recorder->registerEdits, (Edits{{1, 46, 3}, {1, 47, 3}, {1, 47, 0}}));
}

}  // namespace BR::Test
