// Scales and offsets around each curve: linear y = x * (g * s) + (g * o + h), absolute |x * s + o| * g + h,
// exponential 2^(x * s + o - 1) * g + h. The display values are the first sample's scaled input and the
// first output; a disabled channel shows its input and keeps its settings for when it is enabled again.
#include <gtest/gtest.h>

#include <cmath>

#include "modules/simple/Function.h"
#include "tests/support/Render.h"

TEST(FunctionCurves, ScalesOffsetsAndDisplay) {
    auto driver = BR::Test::MakeDriver("Function");
    auto& fn = static_cast<BrelCorvaneFunction::BrelCorvane&>(driver->Module());
    driver->SetParameterByName("Enable L", 1.0f);
    driver->SetParameterByName("Input Scale L", 2.0f);
    driver->SetParameterByName("Input Offset L", -0.5f);
    driver->SetParameterByName("Output Scale L", -1.5f);
    driver->SetParameterByName("Output Offset L", 0.25f);
    driver->SetParameterByName("Enable R", 1.0f);
    driver->SetParameterByName("Function R", 3.0f);
    driver->SetParameterByName("Input Scale R", 0.5f);
    driver->SetParameterByName("Input Offset R", -0.75f);
    driver->SetParameterByName("Output Scale R", 2.0f);
    driver->SetParameterByName("Output Offset R", -1.0f);
    const BR::Test::Channels in = {{0.3f, 1.0f, -1.0f}, {0.3f, 1.0f, -1.0f}};
    const BR::Test::Channels out = BR::Test::RenderFrames(*driver, 3, 3, in);
    for (int i = 0; i < 3; ++i) {
        const float x = in[0][size_t(i)];
        EXPECT_FLOAT_EQ(out[0][size_t(i)], x * (-1.5f * 2.0f) + (-1.5f * -0.5f + 0.25f));
        EXPECT_FLOAT_EQ(out[1][size_t(i)], std::fabs(x * 0.5f - 0.75f) * 2.0f - 1.0f);
    }
    const auto& status = fn.GetStatusBlock()->As<BrelCorvaneFunction::FunctionStatus>();
    EXPECT_FLOAT_EQ(status.displayInput[0], 2.0f * 0.3f - 0.5f);
    EXPECT_EQ(status.displayOutput[0], out[0][0]);
    EXPECT_FLOAT_EQ(status.displayInput[1], 0.5f * 0.3f - 0.75f);
    EXPECT_EQ(status.displayOutput[1], out[1][0]);

    driver->SetParameterByName("Function L", 2.0f);
    const BR::Test::Channels exp = BR::Test::RenderFrames(*driver, 1, 1, {{0.75f}});
    EXPECT_FLOAT_EQ(exp[0][0], std::exp2(0.75f * 2.0f - 0.5f - 1.0f) * -1.5f + 0.25f);

    // Disabled: the input passes and shows; the curve settings stay as they were.
    driver->SetParameterByName("Enable L", 0.0f);
    driver->SetParameterByName("Input Scale L", -2.0f);
    const BR::Test::Channels off = BR::Test::RenderFrames(*driver, 2, 2, {{0.4f, 0.6f}});
    EXPECT_EQ(off[0][0], 0.4f);
    EXPECT_EQ(status.displayInput[0], 0.4f);
    EXPECT_EQ(status.displayOutput[0], 0.4f);
    EXPECT_FALSE(fn.Channel(0).enabled);
    EXPECT_EQ(fn.Channel(0).inputScale, 2.0f);
    EXPECT_EQ(fn.Channel(0).function, 2);
}
