// Blocks in which nothing was stored read no row; a row stored after a run of them, even one in the
// last word of the change mask, is seen at the very next block and at no earlier one.
#include <gtest/gtest.h>

#include "tests/support/Render.h"

TEST(QuietBlocks, ARowInTheLastMaskWordIsReadAtTheNextBlock) {
    auto driver = BR::Test::MakeDriver("steplfo");
    BrelCorvaneBase& module = driver->Module();
    const int32_t row = module.NumTableParameters() - 1;
    ASSERT_GE(row + 1, 256) << "wants a module whose last row lies past the fourth mask word";
    const BR::ParameterDefinition& definition = module.ParameterTable()[row];
    const float value =
        definition.defaultValue == definition.maximum ? definition.minimum : definition.maximum;

    BR::Test::RenderFrames(*driver, 64, 64);
    const uint64_t reads = module.ParameterReadCount();
    BR::Test::RenderFrames(*driver, 640, 64);  // ten blocks in which nothing moves
    EXPECT_EQ(module.ParameterReadCount(), reads);
    EXPECT_FALSE(module.RowsChanged());

    ASSERT_EQ(module.SetTableValue(row, value), BR::kNoErr);
    ASSERT_EQ(module.GetTableValue(row), value);
    EXPECT_EQ(module.BlockValue(row), definition.defaultValue);  // the last block keeps what it saw
    BR::Test::RenderFrames(*driver, 64, 64);
    EXPECT_EQ(module.BlockValue(row), value);
    EXPECT_TRUE(module.RowChanged(row));
    EXPECT_FALSE(module.RowChanged(row - 1));
    EXPECT_EQ(module.ParameterReadCount(), reads + 1);

    BR::Test::RenderFrames(*driver, 64, 64);
    EXPECT_FALSE(module.RowChanged(row));
    EXPECT_EQ(module.ParameterReadCount(), reads + 1);
}
