// With all wave levels at 0 (a new instance) and "Input Mode" at "Add", the output equals the input.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/Render.h"

TEST(LFONewInstance, OutputEqualsInput) {
    auto driver = BR::Test::MakeDriver("lfo");
    BR::Test::Channels in(2, std::vector<float>(3000));
    for (size_t i = 0; i < 3000; ++i) {
        in[0][i] = 0.7f * std::sin(0.01f * float(i));
        in[1][i] = -0.3f + 0.0001f * float(i);
    }
    const BR::Test::Channels out = BR::Test::RenderFrames(*driver, 3000, 256, in);
    EXPECT_EQ(out[0], in[0]);
    EXPECT_EQ(out[1], in[1]);
}
