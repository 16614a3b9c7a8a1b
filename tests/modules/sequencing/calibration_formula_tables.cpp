// The Ardent table: level 0 at note 48, notes 48 to 111 valid, repeating every 64 notes. The Cinder
// table: level 0 at note 60, wrapping from note 124 to the bottom, with no valid entry at all.
#include <gtest/gtest.h>

#include "modules/sequencing/Calibration.h"

TEST(CalibrationFormula, Ardent) {
    BR::CalibrationTable table;
    table.MakeArdent();
    for (int k = 0; k < BR::kCalibrationEntries; ++k) {
        EXPECT_EQ(table.valid[k], k >= 48 && k <= 111 ? 1 : 0) << k;
        EXPECT_EQ(table.notes[k].value, float((k + 16) % 64) * 0.015686275f) << k;
    }
    EXPECT_EQ(table.notes[48].value, 0.0f);
    EXPECT_FLOAT_EQ(table.notes[111].value, 63 * 0.015686275f);
    EXPECT_EQ(table.notes[112].value, 0.0f);
    EXPECT_EQ(table.notes[0].value, 16 * 0.015686275f);
    EXPECT_EQ(table.notes[47].value, 63 * 0.015686275f);
}

TEST(CalibrationFormula, CinderHasNoValidEntries) {
    BR::CalibrationTable table;
    table.valid[5] = 1;
    table.MakeCinder();
    for (int k = 0; k < BR::kCalibrationEntries; ++k)
        EXPECT_EQ(table.valid[k], 0) << k;
    EXPECT_EQ(table.notes[60].value, 0.0f);
    EXPECT_EQ(table.notes[0].value, -60 * 0.015628817f);
    EXPECT_EQ(table.notes[123].value, 63 * 0.015628817f);
    EXPECT_EQ(table.notes[124].value, -64 * 0.015628817f);
    EXPECT_EQ(table.notes[128].value, -60 * 0.015628817f);
}
