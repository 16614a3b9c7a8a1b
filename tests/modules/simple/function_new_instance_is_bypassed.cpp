// A new instance is bypassed: "Enable" is off on both channels and the output equals the input, also
// when the host renders in place.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/ProbeModule.h"
#include "tests/support/Render.h"

TEST(FunctionBypass, NewInstanceOutputsInput) {
    auto driver = BR::Test::MakeDriver("Function");
    BR::Test::Channels in(2, std::vector<float>(2000));
    for (size_t i = 0; i < 2000; ++i) {
        in[0][i] = std::sin(0.02f * float(i));
        in[1][i] = -0.9f + 0.0009f * float(i);
    }
    const BR::Test::Channels out = BR::Test::RenderFrames(*driver, 2000, 128, in);
    EXPECT_EQ(out[0], in[0]);
    EXPECT_EQ(out[1], in[1]);

    // Curve settings without "Enable" leave the channel bypassed: the defaults are not merely an
    // identity curve.
    auto shaped = BR::Test::MakeDriver("Function");  // "Enable L" is row 1, "Enable R" row 7
    EXPECT_EQ(shaped->Module().GetTableValue(1), 0.0f);
    EXPECT_EQ(shaped->Module().GetTableValue(7), 0.0f);
    for (const char* name : {"Function L", "Function R"})
        shaped->SetParameterByName(name, 2.0f);
    for (const char* name : {"Output Offset L", "Output Offset R"})
        shaped->SetParameterByName(name, 0.5f);
    const BR::Test::Channels same = BR::Test::RenderFrames(*shaped, 2000, 128, in);
    EXPECT_EQ(same[0], in[0]);
    EXPECT_EQ(same[1], in[1]);

    // In place: the output buffers are the input buffers.
    auto module = BR::Test::MakeDriver("Function");
    BrelCorvaneBase& fn = module->Module();
    BR::Test::ManualHost host(fn);
    std::vector<float> left(64, 0.3f), right(64, -0.7f);
    host.Render({left.data(), right.data()}, {left.data(), right.data()}, 64);
    EXPECT_EQ(left, std::vector<float>(64, 0.3f));
    EXPECT_EQ(right, std::vector<float>(64, -0.7f));
}
