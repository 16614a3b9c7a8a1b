// Effect identifiers are "com.brelmont.corvane." + stem: the Function module's ends in "Function",
// with its capital; every other ends in its lower-case stem. Look-ups by stem are exact.
#include <gtest/gtest.h>

#include <cctype>
#include <string>

#include "framework/ModuleCatalogue.h"

TEST(Catalogue, FunctionKeepsItsCapital) {
    const BR::CatalogueEntry* function = BR::FindCatalogueEntry("Function");
    ASSERT_NE(function, nullptr);
    EXPECT_EQ(BR::EffectIdentifier(*function), "com.brelmont.corvane.Function");
    EXPECT_EQ(BR::FindCatalogueEntry("function"), nullptr);
    EXPECT_EQ(BR::FindCatalogueEntry("CRfn"), function);

    const BR::CatalogueEntry* entries = BR::CatalogueEntries();
    int withCapital = 0;
    for (int i = 0; i < BR::kNumCatalogueEntries; ++i) {
        const std::string identifier = BR::EffectIdentifier(entries[i]);
        ASSERT_EQ(identifier.rfind("com.brelmont.corvane.", 0), 0u) << identifier;
        const std::string stem = identifier.substr(21);
        EXPECT_EQ(stem, entries[i].stem);
        bool lower = true;
        for (char c : stem)
            lower = lower && std::islower(static_cast<unsigned char>(c));
        if (!lower) {
            ++withCapital;
            EXPECT_EQ(stem, "Function");
        }
    }
    EXPECT_EQ(withCapital, 1);
}
