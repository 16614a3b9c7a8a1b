// A module becomes creatable by its stem or id when its factory exists, and then agrees with its row:
// "Corvane " + its name, its ModuleConfig, and one static table, complete with its preset rows, shared
// by all its instances. The Quantizer alone copies its rows into each instance, as the upper limit of
// its "Scale" rows follows the instance's scale list; its instances' rows agree row by row.
#include <gtest/gtest.h>

#include <string>

#include "framework/ModuleCatalogue.h"
#include "modules/ModuleFactory.h"

TEST(Catalogue, BuiltModulesAgreeWithTheirRows) {
    const BR::CatalogueEntry* entries = BR::CatalogueEntries();
    int built = 0;
    for (int i = 0; i < BR::kNumCatalogueEntries; ++i) {
        const BR::CatalogueEntry& e = entries[i];
        SCOPED_TRACE(e.stem);
        if (!BR::FindModuleFactory(e)) {
            EXPECT_EQ(BR::CreateModule(e.stem), nullptr);
            EXPECT_EQ(BR::CreateModule(e.id), nullptr);
            continue;
        }
        ++built;
        auto byStem = BR::CreateModule(e.stem);
        auto byId = BR::CreateModule(e.id);
        ASSERT_NE(byStem, nullptr);
        ASSERT_NE(byId, nullptr);
        EXPECT_EQ(byStem->GetModuleName(), std::string("Corvane ") + e.moduleName);
        EXPECT_STREQ(byStem->GetGuiScriptName(), e.guiScriptName);
        EXPECT_EQ(byStem->NumInputs(), e.numInputs);
        EXPECT_EQ(byStem->NumOutputs(), e.numOutputs);
        EXPECT_EQ(byStem->NumSidechains(), e.sidechains);
        EXPECT_EQ(byStem->NumAuxOutputs(), e.auxOutputs);
        EXPECT_EQ(byStem->NumPresets(), e.numPresets);
        EXPECT_EQ(byStem->NumTableParameters(), e.numParameters);
        // One static table shared by all instances, complete with its preset rows.
        if (std::string(e.stem) == "quantizer") {
            EXPECT_NE(byStem->ParameterTable(), byId->ParameterTable());
            for (int32_t k = 0; k < e.numParameters; ++k)
                EXPECT_STREQ(byStem->ParameterTable()[k].name, byId->ParameterTable()[k].name);
        } else {
            EXPECT_EQ(byStem->ParameterTable(), byId->ParameterTable());
        }
        EXPECT_EQ(byStem->Presets(), byId->Presets());
        ASSERT_GE(byStem->NumPresets(), 1);
        EXPECT_STREQ(byStem->Presets()[0].name, "Defaults");
        for (int32_t k = 0; k < e.numParameters; ++k)
            EXPECT_EQ(byStem->Presets()[0].values[k], byStem->ParameterTable()[k].defaultValue) << k;
    }
    EXPECT_GE(built, 1);  // DC at least
    EXPECT_NE(BR::CreateModule("CRdc"), nullptr);
    EXPECT_EQ(BR::CreateModule("DC"), nullptr);
}
