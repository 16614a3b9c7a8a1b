// Enabling a channel does not click by itself, as no state is kept: with the linear curve at its
// defaults the output is the input before, across and after the block where "Enable" turns on, and
// with any curve the first enabled sample is already the curve of its input.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/Render.h"

TEST(FunctionEnable, EnablingDoesNotClick) {
    auto driver = BR::Test::MakeDriver("Function");
    std::vector<float> x(4096);
    for (size_t i = 0; i < x.size(); ++i)
        x[i] = 0.8f * std::sin(0.003f * float(i));
    BR::Test::Channels before = BR::Test::RenderFrames(*driver, 2048, 256, {x});
    driver->SetParameterByName("Enable L", 1.0f);
    const std::vector<float> rest(x.begin() + 2048, x.end());
    BR::Test::Channels after = BR::Test::RenderFrames(*driver, 2048, 256, {rest});
    before[0].insert(before[0].end(), after[0].begin(), after[0].end());
    for (size_t i = 0; i < x.size(); ++i)
        ASSERT_FLOAT_EQ(before[0][i], x[i]) << i;

    driver->SetParameterByName("Function L", 3.0f);
    driver->SetParameterByName("Enable L", 0.0f);
    BR::Test::RenderFrames(*driver, 256, 256, {{0.5f}});
    driver->SetParameterByName("Enable L", 1.0f);
    const BR::Test::Channels first = BR::Test::RenderFrames(*driver, 2, 2, {{-0.3f, 0.2f}});
    EXPECT_FLOAT_EQ(first[0][0], 0.3f);
    EXPECT_FLOAT_EQ(first[0][1], 0.2f);
}
