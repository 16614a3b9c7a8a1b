// A fractional note is the linear mix of its two neighbouring entries; notes are clamped to 0..127.
#include <gtest/gtest.h>

#include "modules/sequencing/Calibration.h"

TEST(CalibrationTable, ResetMapsEveryNoteToZero) {
    BR::CalibrationTable table;
    for (int k = 0; k < BR::kCalibrationEntries; ++k) {
        EXPECT_EQ(table.notes[k].value, 0.0f);
        EXPECT_EQ(table.valid[k], 0);
        EXPECT_EQ(table.notes[k].x, k < 128 ? float(k) : 0.0f);
    }
    EXPECT_EQ(table.Convert(64.3f), 0.0f);
}

TEST(CalibrationTable, LinearInterpolation) {
    BR::CalibrationTable table;
    for (int k = 0; k < BR::kCalibrationEntries; ++k)
        table.notes[k].value = float(k) * 0.01f;
    table.notes[61].value = 0.9f;
    EXPECT_FLOAT_EQ(table.Convert(60.0f), 0.6f);
    EXPECT_FLOAT_EQ(table.Convert(60.25f), 0.75f * 0.6f + 0.25f * 0.9f);
    EXPECT_FLOAT_EQ(table.Convert(-5.0f), 0.0f);
}

TEST(CalibrationTable, EntryOneTwentyEightHasNoWeightAtTheTop) {
    BR::CalibrationTable table;
    table.notes[127].value = 0.5f;
    table.notes[128].value = -1.0f;
    EXPECT_EQ(table.Convert(127.0f), 0.5f);
    EXPECT_EQ(table.Convert(131.0f), 0.5f);
    EXPECT_FLOAT_EQ(table.Convert(126.5f), 0.25f);
}
