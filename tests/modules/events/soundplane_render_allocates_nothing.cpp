// Rendering Soundplane with a moving touch and smoothing on every output performs no heap allocation,
// and rows are read again only in blocks where one changed.
#include <gtest/gtest.h>

#include "SoundplaneRig.h"
#include "tests/support/AllocationCounter.h"

using namespace BR::Test;

TEST(SoundplaneRealtime, RenderAllocatesNothing) {
    ClearTouches();
    SoundplaneRig rig;
    for (int k = 1; k <= 6; ++k)
        rig.Set("Output " + std::to_string(k) + " Smoothing", k % 2 ? 5.0f : -5.0f);
    rig.Set("Gate Z", 1);
    const uint32_t block = 256;
    std::vector<std::vector<float>> out(6, std::vector<float>(block));
    float* outputs[6];
    for (int k = 0; k < 6; ++k)
        outputs[k] = out[k].data();
    rig.driver->Process(nullptr, outputs, block, nullptr, 0);
    const uint64_t reads = rig.Module().ParameterReadCount();
    {
        AllocationScope scope;
        for (int b = 0; b < 200; ++b) {
            PutTouch({1, float(b % 7) * 0.1f, float(b % 5) * -0.1f, b % 3 ? 0.5f : 0.0f, float(40 + b % 30)});
            rig.driver->Process(nullptr, outputs, block, nullptr, 0);
        }
        EXPECT_EQ(scope.Count(), 0u);
    }
    EXPECT_EQ(rig.Module().ParameterReadCount(), reads);  // touches moved, rows did not
    rig.Set("Output 6 Offset", 0.5f);
    rig.driver->Process(nullptr, outputs, block, nullptr, 0);
    EXPECT_EQ(rig.Module().ParameterReadCount(), reads + 1);
}
