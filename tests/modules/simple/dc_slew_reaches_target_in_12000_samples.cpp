// With a smoothing of 500 ms at 48 kHz, slewStep is 2 / 24000 and a jump from 0 to 1 reaches its
// target after exactly 12000 samples.
#include <gtest/gtest.h>

#include "modules/simple/DC.h"
#include "tests/support/Render.h"

TEST(DCSlew, FiveHundredMillisecondsAt48kHz) {
    auto driver = BR::Test::MakeDriver("dc");
    driver->SetParameterByName("Output Positive L", 1.0f);
    driver->SetParameterByName("Smoothing L", 500.0f);
    const auto out = BR::Test::RenderFrames(*driver, 13000, 256);
    auto& dc = static_cast<BrelCorvaneDC::BrelCorvane&>(driver->Module());
    EXPECT_FLOAT_EQ(dc.Smoother(0).slewStep, 2.0f / 24000.0f);
    EXPECT_EQ(dc.Smoother(0).smoothCoefficient, 0.0f);
    for (size_t i = 0; i < 12000; ++i)
        ASSERT_LT(out[0][i], 1.0f) << i;
    for (size_t i = 12000; i < 13000; ++i)
        ASSERT_EQ(out[0][i], 1.0f) << i;
    EXPECT_NEAR(out[0][0], 2.0f / 24000.0f, 1e-9f);
    EXPECT_NEAR(out[0][5999], 0.5f, 1e-4f);
}

TEST(DCSlew, NegativeSmoothingIsAOnePole) {
    auto driver = BR::Test::MakeDriver("dc", 48000.0f);
    driver->SetParameterByName("Output Positive R", 1.0f);
    driver->SetParameterByName("Smoothing R", -10.0f);
    const auto out = BR::Test::RenderFrames(*driver, 2000, 100);
    auto& dc = static_cast<BrelCorvaneDC::BrelCorvane&>(driver->Module());
    const float c = std::exp(5.2f / -480.0f);
    EXPECT_FLOAT_EQ(dc.Smoother(1).smoothCoefficient, c);
    float state = 0.0f;
    for (size_t i = 0; i < 2000; ++i) {
        state = (state - 1.0f) * c + 1.0f;
        ASSERT_FLOAT_EQ(out[1][i], state) << i;
    }
}
