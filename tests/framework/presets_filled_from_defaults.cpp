// Preset rows are completed from the table's defaults at construction: "Defaults" gives zero values
// and becomes a whole row; a row's length is numParameters * 4 + 12 bytes.
#include <gtest/gtest.h>

#include "tests/support/ProbeModule.h"

namespace {
BR::ParameterDefinition table[] = {
    {"A", 0, -1, 1, 0.5f}, {"B", 0, 0, 10, 7}, {"OSC Port Offset", 1, 0, 100, 0}, {"C", 0, 0, 1, 1}};
float defaultsValues[4];
float secondValues[4] = {-1.0f, 2.0f};
BR::PresetDefinition twoPresets[] = {{"Defaults", 0, defaultsValues}, {"Second", 2, secondValues}};

class WithPresets : public BrelCorvaneBase {
public:
    WithPresets() : BrelCorvaneBase(BR::ModuleConfig{2, 2, 0, 0, 2, 2, twoPresets, 4, table, -1}) {
        WithPresets::InitModule();
    }
    uint32_t GetParameterFlags(int32_t) override { return 0; }
    int32_t GetParameterDisplayString(BR::DisplayStringRequest&) override { return BR::kErrInvalidParameter; }
    const char* GetModuleName() const override { return "Corvane With Presets"; }
    const char* GetGuiScriptName() const override { return "gui_presets.lua"; }
};
}  // namespace

TEST(Presets, MissingValuesComeFromTheDefaults) {
    WithPresets module;
    ASSERT_EQ(module.NumPresets(), 2);
    EXPECT_STREQ(module.Presets()[0].name, "Defaults");
    EXPECT_EQ(std::vector<float>(defaultsValues, defaultsValues + 4), (std::vector<float>{0.5f, 7, 0, 1}));
    EXPECT_EQ(std::vector<float>(secondValues, secondValues + 4), (std::vector<float>{-1.0f, 2.0f, 0, 1}));
    EXPECT_EQ(module.PresetStride(), 4u * 4u + 12u);
}
