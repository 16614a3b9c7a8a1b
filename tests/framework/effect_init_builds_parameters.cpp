// EffectInit puts Master Bypass at index 0, a row name already in the list is skipped, identifiers
// are cut at 31 characters, and table index k is parameter index k + 1.
#include <gtest/gtest.h>

#include "host/HostDriver.h"
#include "tests/support/TableModule.h"

namespace {
BR::ParameterDefinition duplicateTable[] = {
    {"Level", BR::kUnitGeneric, 0, 1, 0.25f},
    {"Level", BR::kUnitGeneric, -5, 5, 3},
    {"A name that is longer than thirty-one characters", BR::kUnitGeneric, 0, 1, 0},
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
};
float values[4];
BR::PresetDefinition smallPresets[] = {{"Defaults", 0, values}};

}  // namespace

TEST(EffectInit, MasterBypassAtZeroWithItsTexts) {
    BR::Test::TableModule module(duplicateTable, 4, smallPresets, 1, 3);
    BR::DriverController controller;
    module.Initialize(&controller, nullptr, nullptr);
    const BR::Parameter* bypass = module.GetParameter(0);
    ASSERT_NE(bypass, nullptr);
    EXPECT_EQ(bypass->Identifier(), "MasterBypassID");
    EXPECT_EQ(bypass->Name(), "Master Bypass");
    EXPECT_EQ(bypass->NumberOfSteps(), 2);
    EXPECT_FALSE(bypass->GetValueAsBool());
    EXPECT_EQ(bypass->ValueString(), "bypass");
    module.SetParameterValue(0, 1.0f);
    EXPECT_EQ(bypass->ValueString(), "on");
}

TEST(EffectInit, RepeatedNameIsSkippedAndLongIdentifiersAreCut) {
    BR::Test::TableModule module(duplicateTable, 4, smallPresets, 1, 3);
    BR::DriverController controller;
    module.Initialize(&controller, nullptr, nullptr);
    ASSERT_EQ(module.GetNumberOfParameters(), 4);  // bypass, Level, the long one, OSC Port Offset
    EXPECT_EQ(module.GetParameter(1)->Identifier(), "Level");
    EXPECT_EQ(module.GetParameter(1)->DefaultValue(), 0.25f);
    EXPECT_EQ(module.GetParameter(2)->Identifier(), "A name that is longer than thir");
    EXPECT_EQ(module.GetParameter(2)->Identifier().size(), 31u);
    EXPECT_EQ(module.GetParameter(2)->Name(), "A name that is longer than thirty-one characters");
    EXPECT_EQ(module.GetParameter(2)->ValueString(), "0.00");
    // Every access is bounds-checked.
    EXPECT_EQ(module.GetParameter(4), nullptr);
    EXPECT_EQ(module.GetParameter(-1), nullptr);
}
