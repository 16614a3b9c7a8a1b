// Changing "Steps" rebuilds no table and acts from the next block on; the table is built only when the
// calibration or the channel's scale, key or scale choice changes.
#include <gtest/gtest.h>

#include "QuantizerRig.h"
#include "tests/support/Render.h"

TEST(QuantizerBlocks, StepsChangeActsAtTheNextBlockWithoutARebuild) {
    auto driver = BR::Test::MakeQuantizer();
    auto& quantizer = BR::Test::Quantizer(*driver);
    driver->SetParameterByName("Enable L", 1);
    driver->SetParameterByName("Steps L", 4);
    const std::vector<float> in(64, 0.3f);
    std::vector<float> out = BR::Test::RenderFrames(*driver, 64, 64, {in, in})[0];
    EXPECT_EQ(out[63], 0.0f);
    const uint32_t builds = quantizer.TableBuilds();
    EXPECT_EQ(builds, 2u);  // both channels, once, at the first block
    EXPECT_TRUE(quantizer.TablesBuilt());

    driver->SetParameterByName("Steps L", 20);  // steps of 0.1
    out = BR::Test::RenderFrames(*driver, 64, 64, {in, in})[0];
    EXPECT_FLOAT_EQ(out[0], 0.3f);
    EXPECT_EQ(quantizer.TableBuilds(), builds);

    // A key change in "Calibrated" does rebuild that channel's table.
    driver->SetParameterByName("Mode L", 1);
    driver->SetParameterByName("Key L", 3);
    BR::Test::RenderFrames(*driver, 64, 64, {in, in});
    EXPECT_EQ(quantizer.TableBuilds(), builds + 1);
    BR::Test::RenderFrames(*driver, 64, 64, {in, in});
    EXPECT_EQ(quantizer.TableBuilds(), builds + 1);
}
