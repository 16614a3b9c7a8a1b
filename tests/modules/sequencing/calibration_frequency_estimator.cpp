// The zero-crossing estimator: rising crossings interpolated between samples, five periods, the
// median one giving Hz or a note.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "modules/sequencing/Calibration.h"

namespace {
std::vector<float> Sine(double hz, double rate, size_t frames, double phase = 0.3) {
    std::vector<float> out(frames);
    for (size_t i = 0; i < frames; ++i)
        out[i] = float(std::sin(2.0 * M_PI * (hz * double(i) / rate) + phase));
    return out;
}
}  // namespace

TEST(FrequencyEstimator, NoteOfA440) {
    BR::FrequencyEstimator estimator;
    estimator.Reset();
    const auto tone = Sine(440.0, 48000.0, 4800);
    estimator.Feed(tone.data(), 300);
    EXPECT_FALSE(estimator.Complete());
    estimator.Feed(tone.data() + 300, 4500);
    ASSERT_TRUE(estimator.Complete());
    EXPECT_EQ(estimator.periodCount, 5);
    EXPECT_NEAR(estimator.periods[0], 48000.0 / 440.0, 1e-3);
    double note = 0;
    EXPECT_NEAR(estimator.Result(48000.0, note), 69.0, 1e-4);
    EXPECT_NEAR(note, 69.0, 1e-4);
    estimator.hertzMode = true;
    EXPECT_NEAR(estimator.Result(48000.0, note), 440.0, 0.01);
    EXPECT_NEAR(note, 69.0, 1e-4);
}

TEST(FrequencyEstimator, CrossingIsInterpolated) {
    BR::FrequencyEstimator estimator;
    estimator.Reset();
    // Rising crossings a quarter of the way from sample 1 to 2, and from 11 to 12: a period of 10.
    const float samples[14] = {-1, -0.25f, 0.75f, 1, 1, 1, 1, -1, -1, -1, -1, -0.5f, 1.5f, 1};
    estimator.Feed(samples, 14);
    EXPECT_DOUBLE_EQ(estimator.lastCrossing, 11.25);
    ASSERT_EQ(estimator.periodCount, 1);
    EXPECT_DOUBLE_EQ(estimator.periods[0], 10.0);
    EXPECT_DOUBLE_EQ(estimator.samplesSeen, 14.0);
}

TEST(FrequencyEstimator, MedianIgnoresOneOutlier) {
    BR::FrequencyEstimator estimator;
    estimator.Reset();
    estimator.periodCount = 5;
    const double periods[5] = {100, 100.5, 10, 99.5, 100.25};
    std::copy(periods, periods + 5, estimator.periods);
    double note = 0;
    EXPECT_DOUBLE_EQ(estimator.Result(48000.0, note), 12.0 * std::log2(480.0 / 440.0) + 69.0);
}
