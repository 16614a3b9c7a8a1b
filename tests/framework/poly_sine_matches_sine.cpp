// The system's polynomial sine: the fold into -0.25..0.25, the five constants as written, the four
// quarter points, and agreement with sin(2 pi p) over a whole cycle.
#include <gtest/gtest.h>

#include <cmath>

#include "framework/PolySine.h"

namespace {
// The polynomial written out term by term, as the constants stand.
double LiteralPolynomial(double s) {
    return s * -6.2831855 + std::pow(s, 3) * 41.34168 - std::pow(s, 5) * 81.602234 +
           std::pow(s, 7) * 76.574974 - std::pow(s, 9) * 39.710674;
}
}  // namespace

TEST(PolySine, FoldsThePhaseIntoAQuarterCycle) {
    EXPECT_FLOAT_EQ(BR::FoldSinePhase(0.0f), 0.0f);
    EXPECT_FLOAT_EQ(BR::FoldSinePhase(0.1f), -0.1f);
    EXPECT_FLOAT_EQ(BR::FoldSinePhase(0.25f), -0.25f);
    EXPECT_FLOAT_EQ(BR::FoldSinePhase(0.5f), 0.0f);
    EXPECT_FLOAT_EQ(BR::FoldSinePhase(0.6f), 0.1f);
    EXPECT_FLOAT_EQ(BR::FoldSinePhase(0.75f), 0.25f);
    EXPECT_FLOAT_EQ(BR::FoldSinePhase(0.9f), 0.1f);
    for (int i = 0; i < 1000; ++i) {
        const float s = BR::FoldSinePhase(float(i) / 1000.0f);
        EXPECT_GE(s, -0.25f);
        EXPECT_LE(s, 0.25f);
    }
}

TEST(PolySine, QuarterPointsAndConstants) {
    EXPECT_EQ(BR::PolySine(0.0f), 0.0f);
    EXPECT_EQ(BR::PolySine(0.5f), 0.0f);
    EXPECT_NEAR(BR::PolySine(0.25f), 1.0f, 2e-6f);
    EXPECT_NEAR(BR::PolySine(0.75f), -1.0f, 2e-6f);
    for (int i = -250; i <= 250; ++i) {
        const double s = double(i) / 1000.0;
        EXPECT_NEAR(BR::PolySineOfFolded(float(s)), LiteralPolynomial(s), 2e-6) << s;
    }
}

TEST(PolySine, FollowsTheSineOverACycle) {
    double worst = 0.0;
    for (int i = 0; i < 4096; ++i) {
        const double p = double(i) / 4096.0;
        worst = std::max(worst, std::fabs(double(BR::PolySine(float(p))) - std::sin(2.0 * M_PI * p)));
    }
    EXPECT_LT(worst, 2e-5);
    // Odd about half a cycle.
    EXPECT_NEAR(BR::PolySine(0.1f), -BR::PolySine(0.9f), 1e-6f);
}
