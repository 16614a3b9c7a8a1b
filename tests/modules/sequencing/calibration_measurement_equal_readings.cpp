// Two steps in a row that read exactly the same whole note span no interval: that note takes the
// level of the later step rather than 0 / 0, and the table stays free of NaN.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "modules/sequencing/Calibration.h"

namespace {

// At 44000 Hz a square wave of 100 samples is exactly 440 Hz: every crossing lies halfway between a
// -1 and a +1 sample, so each period is 100.0 and the note is 69.0 exactly.
void MeasureFixedA440(BR::CalibrationTable& table, bool hertzMode) {
    constexpr float kRate = 44000.0f;
    BR::CalibrationMeasurement measurement;
    measurement.Start(table, kRate, 256, hertzMode);
    std::vector<float> block(200);
    uint64_t position = 0;
    for (int guard = 0; !measurement.Finishing() && guard < 100000; ++guard) {
        for (size_t i = 0; i < block.size(); ++i)
            block[i] = (position + i) % 100 < 50 ? -1.0f : 1.0f;
        position += measurement.Pass(block.data(), uint32_t(block.size()), table, kRate);
    }
    ASSERT_TRUE(measurement.Finishing());
    measurement.Finish(table);
}

}  // namespace

TEST(CalibrationMeasurement, EqualWholeNoteReadingsTakeTheStepLevel) {
    for (const bool hertzMode : {false, true}) {
        BR::CalibrationTable table;
        MeasureFixedA440(table, hertzMode);
        // Steps 1 to 16 each set note 69 to their own level; the last is level 1.0.
        EXPECT_EQ(table.notes[69].value, 1.0f) << hertzMode;
        for (int k = 0; k < BR::kCalibrationEntries; ++k) {
            EXPECT_FALSE(std::isnan(table.notes[k].value)) << k;
            EXPECT_EQ(table.valid[k], k == 69 ? 1 : 0) << k;
            // The octave passes spread it to every A.
            EXPECT_EQ(table.notes[k].value, k % 12 == 9 ? 1.0f : 0.0f) << k;
        }
    }
}
