// A new DC instance outputs silence on both channels: the level is (0 + 0) * 1.
#include <gtest/gtest.h>

#include "tests/support/Render.h"

TEST(DCNewInstance, OutputsSilence) {
    auto driver = BR::Test::MakeDriver("dc");
    ASSERT_TRUE(driver);
    const auto out = BR::Test::RenderFrames(*driver, 1000, 256, {std::vector<float>(1000, 0.7f)});
    ASSERT_EQ(out.size(), 2u);
    for (const auto& channel : out)
        for (float v : channel)
            ASSERT_EQ(v, 0.0f);
}
