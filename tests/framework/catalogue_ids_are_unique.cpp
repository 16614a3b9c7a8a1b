// Module ids are four characters, unique among the twenty, all starting "CR"; "CRSy" is the only one
// with a capital third letter. Stems and names are unique as well.
#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <set>
#include <string>

#include "framework/ModuleCatalogue.h"

TEST(Catalogue, IdsAreFourUniqueCharacters) {
    const BR::CatalogueEntry* entries = BR::CatalogueEntries();
    std::set<std::string> ids, stems, names;
    std::set<uint32_t> tags;
    std::vector<std::string> capitalThird;
    for (int i = 0; i < BR::kNumCatalogueEntries; ++i) {
        const BR::CatalogueEntry& e = entries[i];
        ASSERT_EQ(std::strlen(e.id), 4u) << e.id;
        EXPECT_EQ(std::string(e.id, 2), "CR") << e.id;
        ids.insert(e.id);
        tags.insert(BR::IdAsTag(e.id));
        stems.insert(e.stem);
        names.insert(e.moduleName);
        if (std::isupper(static_cast<unsigned char>(e.id[2]))) capitalThird.push_back(e.id);
    }
    EXPECT_EQ(ids.size(), 20u);
    EXPECT_EQ(tags.size(), 20u);
    EXPECT_EQ(stems.size(), 20u);
    EXPECT_EQ(names.size(), 20u);
    EXPECT_EQ(capitalThird, std::vector<std::string>{"CRSy"});
    EXPECT_EQ(BR::IdAsTag("CRdc"), 0x43526463u);
}
