// "Asymmetry" at 100 gives a of 1: lo = 0.5, hi = 0, and p runs from 0 to 0.5 over the whole cycle, so
// the saw rises from -1 to 0. At -100 it runs from 0.5 to 1 (saw 0 to 1); at 0 the wave is unwarped.
#include <gtest/gtest.h>

#include "modules/simple/LFO.h"
#include "tests/support/Render.h"

namespace {
std::vector<float> OneCycleOfSaw(float asymmetry) {
    auto driver = BR::Test::MakeDriver("lfo", 48000.0f);
    driver->SetParameterByName("Speed L", 1.0f);  // 48000 samples a cycle
    driver->SetParameterByName("Saw L", 1.0f);
    driver->SetParameterByName("Asymmetry L", asymmetry);
    EXPECT_EQ(static_cast<BrelCorvaneLFO::BrelCorvane&>(driver->Module()).Settings(0).asymmetry, 0.5f);
    auto out = BR::Test::RenderFrames(*driver, 48000, 512)[0];
    EXPECT_EQ(static_cast<BrelCorvaneLFO::BrelCorvane&>(driver->Module()).Settings(0).asymmetry,
              asymmetry * 0.005f + 0.5f);
    return out;
}
}  // namespace

TEST(LFOAsymmetry, FullAsymmetryHalvesSawRange) {
    const std::vector<float> saw = OneCycleOfSaw(100.0f);
    EXPECT_EQ(saw[0], -1.0f);
    EXPECT_NEAR(saw[24000], -0.5f, 1e-4f);
    EXPECT_NEAR(saw[47999], 0.0f, 1e-4f);
    for (size_t i = 1; i < saw.size(); ++i)
        ASSERT_GT(saw[i], saw[i - 1]) << i;
    EXPECT_LE(*std::max_element(saw.begin(), saw.end()), 0.0f);
}

TEST(LFOAsymmetry, NegativeAsymmetryAndNone) {
    const std::vector<float> upper = OneCycleOfSaw(-100.0f);
    EXPECT_EQ(upper[0], 0.0f);
    EXPECT_NEAR(upper[47999], 1.0f, 1e-4f);
    const std::vector<float> plain = OneCycleOfSaw(0.0f);
    EXPECT_EQ(plain[0], -1.0f);
    EXPECT_NEAR(plain[12000], -0.5f, 1e-4f);
    EXPECT_NEAR(plain[36000], 0.5f, 1e-4f);
    // 50: a = 0.75; the first three quarters of the cycle run the first half of the wave.
    const std::vector<float> bent = OneCycleOfSaw(50.0f);
    EXPECT_NEAR(bent[36000], 0.0f, 1e-4f);
    EXPECT_NEAR(bent[42000], 0.5f, 1e-4f);
}
