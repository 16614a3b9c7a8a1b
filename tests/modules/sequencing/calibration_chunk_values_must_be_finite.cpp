// A "calt" calibration payload (Voice Controller; the Follower keeps the same) holding a value that is
// NaN or infinite is refused whole, and the table stays as it was: a damaged session cannot make the
// pitch output NaN. Finite values of any size are taken as they stand.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "modules/sequencing/Calibration.h"

TEST(CalibrationChunk, ValuesThatAreNotFiniteAreRefusedWhole) {
    BR::CalibrationTable table;
    table.MakeArdent();
    const std::vector<uint8_t> good = table.SaveChunk();
    for (float bad : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        std::vector<uint8_t> damaged = good;
        std::memcpy(&damaged[8 + 4 * 60], &bad, 4);  // the value of note 60
        BR::CalibrationTable loaded;
        loaded.MakeArdent();
        EXPECT_FALSE(loaded.LoadChunk(damaged.data(), uint32_t(damaged.size())));
        EXPECT_EQ(loaded.SaveChunk(), good);
        EXPECT_TRUE(std::isfinite(loaded.Convert(60.0f)));
    }
    std::vector<uint8_t> large = good;
    const float big = 1e30f;
    std::memcpy(&large[8 + 4 * 60], &big, 4);
    BR::CalibrationTable loaded;
    EXPECT_TRUE(loaded.LoadChunk(large.data(), uint32_t(large.size())));
    EXPECT_EQ(loaded.notes[60].value, big);
}
