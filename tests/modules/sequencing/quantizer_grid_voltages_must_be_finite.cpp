// A grid (property 64120, or the "cals" entry of a session) with a voltage that is NaN or infinite is
// refused whole and the grid in use stays, so that a damaged session cannot make the outputs NaN; a grid
// of large finite voltages keeps the outputs finite. The fuzzer found a NaN output this way.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "QuantizerRig.h"
#include "tests/support/Render.h"

namespace {

std::vector<std::vector<float>> RenderCalibrated(BR::HostDriver& driver) {
    driver.SetParameterByName("Enable L", 1);
    driver.SetParameterByName("Mode L", 1);  // Calibrated
    std::vector<float> ramp(512);
    for (size_t i = 0; i < ramp.size(); ++i)
        ramp[i] = -1.5f + 3.0f * float(i) / float(ramp.size());
    return BR::Test::RenderFrames(driver, 512, 256, {ramp, ramp}, {});
}

bool AllFinite(const std::vector<std::vector<float>>& channels) {
    for (const auto& channel : channels)
        for (float v : channel)
            if (!std::isfinite(v)) return false;
    return true;
}

}  // namespace

TEST(QuantizerGrid, VoltagesThatAreNotFiniteAreRefusedWhole) {
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    for (float bad : {nan, inf, -inf}) {
        auto driver = BR::Test::MakeQuantizer();
        BR::Test::SetGrid(*driver, {-0.5f, 0.0f, 0.5f}, {40, 52, 64});
        const auto before = RenderCalibrated(*driver);
        BR::QuantizerTable table{};
        table.count = 3;
        table.voltages[0] = -0.25f;
        table.voltages[1] = bad;
        table.voltages[2] = 0.25f;
        EXPECT_EQ(driver->Module().SetProperty(BR::kPropertyQuantizerTable, &table, uint32_t(sizeof table)),
                  BR::kErrInvalidProperty);
        const auto after = RenderCalibrated(*driver);
        EXPECT_TRUE(AllFinite(after));
        EXPECT_EQ(after, before);  // the grid in use stayed
    }
}

TEST(QuantizerGrid, LargeFiniteVoltagesKeepTheOutputsFinite) {
    auto driver = BR::Test::MakeQuantizer();
    const float big = std::numeric_limits<float>::max();
    BR::Test::SetGrid(*driver, {-big, -1.0f, 0.0f, big}, {0, 1, 2, 3});
    EXPECT_TRUE(AllFinite(RenderCalibrated(*driver)));
}
