// The four-at-a-time sample kernels give what their plain scalar loops give, bit for bit, at every
// length and start around the vector widths (4, 8 and 16), with not-a-number, infinite, signed-zero and
// threshold samples; the edge searches stop exactly where a scalar search stops.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "framework/SampleKernels.h"

namespace {

std::vector<float> Signal(uint32_t n) {
    std::vector<float> x(n);
    for (uint32_t i = 0; i < n; ++i)
        x[i] = 0.9f * std::sin(0.37f * float(i)) + 0.001f * float(i % 5);
    return x;
}

bool SameBits(float a, float b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace

TEST(SampleKernels, FillWritesEverySampleAndNoMore) {
    for (uint32_t n = 0; n < 40; ++n) {
        std::vector<float> out(n + 2, 7.0f);
        BR::FillSamples(out.data() + 1, n, -0.0f);
        EXPECT_EQ(out[0], 7.0f);
        EXPECT_EQ(out[n + 1], 7.0f) << n;
        for (uint32_t i = 1; i <= n; ++i)
            ASSERT_TRUE(SameBits(out[i], -0.0f)) << n << " " << i;
    }
}

TEST(SampleKernels, ScaleOffsetMatchesTheScalarLoop) {
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    for (uint32_t n = 0; n < 40; ++n) {
        std::vector<float> x = Signal(n + 1);
        if (n > 3) x[3] = nan;
        if (n > 5) x[5] = -0.0f;
        if (n > 9) x[9] = inf;
        if (n > 10) x[10] = 1e-40f;  // subnormal
        std::vector<float> expected = x, got = x;
        for (uint32_t i = 1; i <= n; ++i)
            expected[i] = expected[i] * 1.7f + -0.3f;
        BR::ScaleOffsetSamples(got.data() + 1, n, 1.7f, -0.3f);
        for (uint32_t i = 0; i <= n; ++i)
            ASSERT_TRUE(SameBits(got[i], expected[i]) || (std::isnan(got[i]) && std::isnan(expected[i])))
                << n << " " << i;
    }
}

TEST(SampleKernels, SearchesStopWhereScalarSearchesStop) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (uint32_t n = 0; n < 72; ++n) {  // past two sixteen-sample tests, an eight and a tail
        for (uint32_t at = 0; at <= n; ++at) {
            // Below the level everywhere but at `at` (exactly on it), then a NaN two samples later.
            std::vector<float> low(n, -0.5f), high(n, 0.75f);
            if (at < n) {
                low[at] = std::nextafter(0.25f, 1.0f);   // just above 0.25
                high[at] = std::nextafter(0.25f, 0.0f);  // just below 0.25
            }
            if (at + 2 < n) high[at + 2] = nan;
            for (uint32_t from = 0; from <= n; from += 3) {
                uint32_t above = from, notAtOrAbove = from;
                while (above < n && !(low[above] > 0.25f))
                    ++above;
                while (notAtOrAbove < n && high[notAtOrAbove] >= 0.25f)
                    ++notAtOrAbove;
                ASSERT_EQ(BR::FirstAbove(low.data(), from, n, 0.25f), above) << n << " " << at << " " << from;
                ASSERT_EQ(BR::FirstNotAtOrAbove(high.data(), from, n, 0.25f), notAtOrAbove)
                    << n << " " << at << " " << from;
            }
        }
    }
    // A sample exactly on the level: above it is not, at or above it is.
    const float on[9] = {0.25f, 0.25f, 0.25f, 0.25f, 0.25f, 0.25f, 0.25f, 0.25f, 0.25f};
    EXPECT_EQ(BR::FirstAbove(on, 0, 9, 0.25f), 9u);
    EXPECT_EQ(BR::FirstNotAtOrAbove(on, 0, 9, 0.25f), 9u);
    const float nans[9] = {nan, nan, nan, nan, nan, nan, nan, nan, nan};
    EXPECT_EQ(BR::FirstAbove(nans, 0, 9, 0.25f), 9u);
    EXPECT_EQ(BR::FirstNotAtOrAbove(nans, 0, 9, 0.25f), 0u);
}
