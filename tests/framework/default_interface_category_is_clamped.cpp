// A module with an "Interface Category" row takes its default from the preference "Default interface
// category", clamped to 0..1, written into the table's row at each construction; absent, it is 0.
#include <gtest/gtest.h>

#include <filesystem>

#include "framework/PreferenceStore.h"
#include "tests/support/ProbeModule.h"
#include "tests/support/RunCommand.h"
#include "tests/support/ScopedEnvironment.h"

namespace {
BR::ParameterDefinition table[] = {
    {"Level", BR::kUnitGeneric, 0, 1, 0},
    {"Interface Category", BR::kUnitIndexed, 0, 1, 0},
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
};
float defaults[3];
BR::PresetDefinition categoryPresets[] = {{"Defaults", 0, defaults}};

class WithCategory : public BrelCorvaneBase {
public:
    WithCategory() : BrelCorvaneBase(BR::ModuleConfig{2, 2, 0, 0, 2, 1, categoryPresets, 3, table, 1}) {
        WithCategory::InitModule();
    }
    uint32_t GetParameterFlags(int32_t) override { return 0; }
    int32_t GetParameterDisplayString(BR::DisplayStringRequest&) override { return BR::kErrInvalidParameter; }
    const char* GetModuleName() const override { return "Corvane With Category"; }
    const char* GetGuiScriptName() const override { return "gui_category.lua"; }
};

float CategoryOfANewInstance() {
    WithCategory module;
    BR::Test::ManualHost host(module);
    EXPECT_EQ(table[1].defaultValue, defaults[1]);  // the "Defaults" preset follows the row
    EXPECT_EQ(module.GetParameter(2)->DefaultValue(), table[1].defaultValue);
    return module.GetTableValue(1);
}
}  // namespace

TEST(InterfaceCategory, PreferenceClampedToZeroOrOne) {
    const std::string folder = BR::Test::MakeTempFolder();
    BR::Test::ScopedEnvironment environment;
    environment.Set("XDG_CONFIG_HOME", folder.c_str());

    table[1].defaultValue = 1;  // left over from somewhere: the missing preference gives 0
    EXPECT_EQ(CategoryOfANewInstance(), 0.0f);
    EXPECT_EQ(table[1].defaultValue, 0.0f);

    const std::pair<int32_t, float> cases[] = {
        {1, 1.0f}, {5, 1.0f}, {0, 0.0f}, {-3, 0.0f}, {2147483647, 1.0f}};
    for (const auto& [preference, expected] : cases) {
        ASSERT_TRUE(BR::PreferenceStore::SetInt("Default interface category", preference));
        EXPECT_EQ(CategoryOfANewInstance(), expected) << preference;
        EXPECT_EQ(table[1].defaultValue, expected) << preference;
    }
    std::filesystem::remove_all(folder);
}

TEST(InterfaceCategory, ModulesWithoutTheRowLeaveTheirTables) {
    const std::string folder = BR::Test::MakeTempFolder();
    BR::Test::ScopedEnvironment environment;
    environment.Set("XDG_CONFIG_HOME", folder.c_str());
    ASSERT_TRUE(BR::PreferenceStore::SetInt("Default interface category", 1));
    BR::Test::ProbeModule probe;  // interfaceCategoryIndex -1
    BR::Test::ManualHost host(probe);
    EXPECT_EQ(probe.ParameterTable()[BR::Test::kMode].defaultValue, 0.0f);
    EXPECT_EQ(probe.ParameterTable()[BR::Test::kSwitch].defaultValue, 0.0f);
    std::filesystem::remove_all(folder);
}
