// A new sample rate counts as a change of every row: values derived from rows and the rate (here the
// DC's slew step) are worked out again at the next block, with no row touched.
#include <gtest/gtest.h>

#include "modules/simple/DC.h"
#include "tests/support/Render.h"

TEST(SampleRateChange, RateDerivedValuesFollowAtTheNextBlock) {
    auto driver = BR::Test::MakeDriver("dc");
    driver->SetParameterByName("Smoothing L", 5.0f);
    BR::Test::RenderFrames(*driver, 64, 64);
    auto& dc = static_cast<BrelCorvaneDC::BrelCorvane&>(driver->Module());
    EXPECT_FLOAT_EQ(dc.Smoother(0).slewStep, 2.0f / (5.0f * 0.001f * 48000.0f));
    const uint64_t reads = dc.ParameterReadCount();
    driver->Controller().sampleRate = 96000.0f;
    BR::Test::RenderFrames(*driver, 64, 64);
    EXPECT_EQ(dc.ParameterReadCount(), reads + 1);
    EXPECT_FLOAT_EQ(dc.Smoother(0).slewStep, 2.0f / (5.0f * 0.001f * 96000.0f));
    BR::Test::RenderFrames(*driver, 64, 64);
    EXPECT_EQ(dc.ParameterReadCount(), reads + 1);  // and then nothing more to read
}
