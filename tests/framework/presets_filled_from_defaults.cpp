// Preset rows are completed from the table's defaults at construction: "Defaults" gives zero values
// and becomes a whole row; a row's length is numParameters * 4 + 12 bytes.
#include <gtest/gtest.h>

#include "tests/support/TableModule.h"

namespace {
BR::ParameterDefinition table[] = {
    {"A", 0, -1, 1, 0.5f}, {"B", 0, 0, 10, 7}, {"OSC Port Offset", 1, 0, 100, 0}, {"C", 0, 0, 1, 1}};
float defaultsValues[4];
float secondValues[4] = {-1.0f, 2.0f};
BR::PresetDefinition twoPresets[] = {{"Defaults", 0, defaultsValues}, {"Second", 2, secondValues}};

}  // namespace

TEST(Presets, MissingValuesComeFromTheDefaults) {
    BR::Test::TableModule module(table, 4, twoPresets, 2, 2);
    ASSERT_EQ(module.NumPresets(), 2);
    EXPECT_STREQ(module.Presets()[0].name, "Defaults");
    EXPECT_EQ(std::vector<float>(defaultsValues, defaultsValues + 4), (std::vector<float>{0.5f, 7, 0, 1}));
    EXPECT_EQ(std::vector<float>(secondValues, secondValues + 4), (std::vector<float>{-1.0f, 2.0f, 0, 1}));
    EXPECT_EQ(module.PresetStride(), 4u * 4u + 12u);
}
