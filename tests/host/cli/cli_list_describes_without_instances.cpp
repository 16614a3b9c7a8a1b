// Describing the modules, as "corvane list" and a plug-in description do, takes everything from the
// catalogue's static data: no instance is made.
#include <gtest/gtest.h>

#include "framework/InstanceRegistry.h"
#include "host/cli/InfoCommands.h"
#include "modules/ModuleFactory.h"

TEST(CliList, DescribesWithoutInstances) {
    ASSERT_EQ(BR::InstanceRegistry::NumInstances(), 0u);
    testing::internal::CaptureStdout();
    EXPECT_EQ(BR::RunList(), 0);
    const std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(BR::InstanceRegistry::NumInstances(), 0u);
    EXPECT_NE(out.find("CRdc\tdc\tDC\t2\t2\n"), std::string::npos) << out;
    size_t lines = 0;
    for (char c : out)
        lines += c == '\n';
    size_t built = 0;
    for (int i = 0; i < BR::kNumCatalogueEntries; ++i)
        built += BR::FindModuleFactory(BR::CatalogueEntries()[i]) != nullptr;
    EXPECT_EQ(lines, built);
}
