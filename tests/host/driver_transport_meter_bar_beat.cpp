// Meter and bar position: bars from 1, beats counted in quarter notes within the bar, ticks within
// that quarter; so position - (ticks / 960000 + beat - 1) is the bar's start in any meter.
#include <gtest/gtest.h>

#include "host/DriverTransport.h"

namespace {
struct BarBeat {
    int32_t bars, beats;
    int64_t ticks;
    bool operator==(const BarBeat&) const = default;
};
BarBeat At(int32_t numerator, int32_t denominator, double quarters) {
    BR::DriverTransport t;
    t.meterNumerator = numerator;
    t.meterDenominator = denominator;
    t.blockQuarter = quarters;
    BarBeat b{};
    t.GetBarBeatPosition(b.bars, b.beats, b.ticks, t.GetCurrentNativeSampleLocation());
    return b;
}
double BarStart(double quarters, const BarBeat& b) {
    return quarters - (double(b.ticks) / 960000.0 + b.beats - 1);
}
std::ostream& operator<<(std::ostream& out, const BarBeat& b) {
    return out << b.bars << "|" << b.beats << "|" << b.ticks;
}
}  // namespace

TEST(DriverTransportMeter, MeterIsReported) {
    BR::DriverTransport t;
    int32_t numerator = 0, denominator = 0;
    t.GetCurrentMeter(numerator, denominator);
    EXPECT_EQ(numerator, 4);
    EXPECT_EQ(denominator, 4);
    t.meterNumerator = 6;
    t.meterDenominator = 8;
    t.GetCurrentMeter(numerator, denominator);
    EXPECT_EQ(numerator, 6);
    EXPECT_EQ(denominator, 8);
}

TEST(DriverTransportMeter, BarsAndBeats) {
    EXPECT_EQ(At(4, 4, 0.0), (BarBeat{1, 1, 0}));
    EXPECT_EQ(At(4, 4, 5.25), (BarBeat{2, 2, 240000}));
    EXPECT_EQ(At(4, 4, 8.0), (BarBeat{3, 1, 0}));
    EXPECT_EQ(At(6, 8, 4.25), (BarBeat{2, 2, 240000}));  // bars of 3 quarter notes
    EXPECT_EQ(At(7, 8, 7.0), (BarBeat{3, 1, 0}));        // bars of 3.5
    EXPECT_EQ(At(7, 8, 3.25), (BarBeat{1, 4, 240000}));  // the last, half a quarter long
    EXPECT_EQ(At(3, 4, -0.5), (BarBeat{0, 3, 480000}));  // before the start: bar 0
}

TEST(DriverTransportMeter, TheBarStartFormulaHoldsInEveryMeter) {
    const std::pair<int, int> meters[] = {{4, 4}, {3, 4}, {6, 8}, {7, 8}, {5, 16}, {2, 2}, {4, 3}};
    for (const auto& [numerator, denominator] : meters) {
        const double bar = numerator * 4.0 / denominator;
        for (double q : {0.0, 0.375, 1.0, 2.6, 9.125, 17.5, -1.25}) {
            const BarBeat b = At(numerator, denominator, q);
            const double start = BarStart(q, b);
            EXPECT_NEAR(start, (b.bars - 1) * bar, 2e-6) << numerator << "/" << denominator << " at " << q;
            EXPECT_GE(q - start, -1e-9);
            EXPECT_LT(q - start, bar);
        }
    }
}
