// The measuring routine against a simulated oscillator driven at the routine's own level: a falling
// response fills no notes at that step, and a step without five crossings leaves a gap that the next
// good step fills from the last good one.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

#include "modules/sequencing/Calibration.h"

namespace {

constexpr float kRate = 48000.0f;

// Runs a whole measurement; `hertzAt(level)` is the oscillator's frequency, 0 for silence.
void Measure(BR::CalibrationTable& table, const std::function<double(float)>& hertzAt, bool hertzMode,
             std::vector<float>* levels = nullptr) {
    BR::CalibrationMeasurement measurement;
    measurement.Start(table, kRate, 256, hertzMode);
    std::vector<float> block(256);
    double phase = 0.0;
    int guard = 0;
    while (!measurement.Finishing() && ++guard < 100000) {
        const float level = measurement.Level();
        if (levels && (levels->empty() || levels->back() != level)) levels->push_back(level);
        const double hz = hertzAt(level);
        for (size_t i = 0; i < block.size(); ++i)
            block[i] = hz > 0 ? float(std::sin(2.0 * M_PI * (phase + hz * double(i) / kRate))) : 0.0f;
        const uint32_t used = measurement.Pass(block.data(), uint32_t(block.size()), table, kRate);
        phase = std::fmod(phase + hz * double(used) / kRate, 1.0);
    }
    measurement.Finish(table);
}

double HertzOfNote(double note) {
    return 440.0 * std::pow(2.0, (note - 69.0) / 12.0);
}

}  // namespace

TEST(CalibrationMeasurement, SeventeenLevelsFromMinusOneToOne) {
    BR::CalibrationTable table;
    std::vector<float> levels;
    Measure(
        table, [](float level) { return HertzOfNote(60.0 + 36.0 * level); }, false, &levels);
    ASSERT_EQ(levels.size(), 17u);
    for (size_t k = 0; k < 17; ++k)
        EXPECT_EQ(levels[k], (float(k) - 8.0f) * 0.125f);
    // Notes 24 to 96 measured; level = (note - 60) / 36, within a tenth of a cent.
    for (int n = 24; n <= 96; ++n) {
        EXPECT_EQ(table.valid[n], 1) << n;
        EXPECT_NEAR(table.notes[n].value, (n - 60) / 36.0f, 0.001f / 36.0f) << n;
    }
    EXPECT_EQ(table.valid[23], 0);
    EXPECT_EQ(table.valid[97], 0);
    // Octave copies outside the range, at the same voltage.
    EXPECT_EQ(table.notes[0].value, table.notes[24].value);
    EXPECT_EQ(table.notes[23].value, table.notes[35].value);
    EXPECT_EQ(table.notes[120].value, table.notes[96].value);
    EXPECT_EQ(table.notes[128].value, table.notes[92].value);
}

TEST(CalibrationMeasurement, FallingResponseFillsNothingAtThatStep) {
    BR::CalibrationTable table;
    // Rising up to level 0, then falling: the steps above 0 measure notes below the previous one.
    Measure(
        table,
        [](float level) { return HertzOfNote(level <= 0 ? 60.0 + 24.0 * level : 60.0 - 24.0 * level); },
        false);
    for (int n = 36; n <= 60; ++n)
        EXPECT_EQ(table.valid[n], 1) << n;
    EXPECT_NEAR(table.notes[48].value, -0.5f, 2e-5f);
    // Every note up to 60 came from the rising half; the falling half wrote nothing over it.
    EXPECT_NEAR(table.notes[57].value, -0.125f, 2e-5f);
    EXPECT_NEAR(table.notes[60].value, 0.0f, 2e-5f);
    for (int n = 61; n <= 72; ++n)
        EXPECT_EQ(table.valid[n], 0) << n;
}

TEST(CalibrationMeasurement, SilentStepLeavesAGapFilledFromTheLastGoodStep) {
    BR::CalibrationTable table;
    // Level 0 gives no tone. The next step (0.125, note 64.5) fills 56..64 from the step at -0.125.
    Measure(
        table, [](float level) { return level == 0.0f ? 0.0 : HertzOfNote(60.0 + 36.0 * level); }, false);
    for (int n = 24; n <= 96; ++n) {
        EXPECT_EQ(table.valid[n], 1) << n;
        EXPECT_NEAR(table.notes[n].value, (n - 60) / 36.0f, 0.001f / 36.0f) << n;
    }
}

TEST(CalibrationMeasurement, HertzModeInterpolatesInFrequency) {
    BR::CalibrationTable table;
    // A Hz/V oscillator: 1000 Hz per unit around 1100 Hz, from 100 Hz at level -1 to 2100 Hz at 1.
    Measure(
        table, [](float level) { return 1100.0 + 1000.0 * level; }, true);
    for (int n = 0; n < 128; ++n) {
        const double hz = HertzOfNote(n);
        if (hz < 100.0 || hz > 2100.0) continue;
        EXPECT_EQ(table.valid[n], 1) << n;
        EXPECT_NEAR(table.notes[n].value, (hz - 1100.0) / 1000.0, 1e-4) << n;
    }
}
