// corvane list prints one tab-separated line per available module in catalogue order; corvane
// params prints the parameter table row by row.
#include <gtest/gtest.h>

#include <sstream>

#include "framework/ModuleCatalogue.h"
#include "modules/ModuleFactory.h"
#include "tests/support/RunCommand.h"

TEST(CliList, OneLinePerBuiltModuleInCatalogueOrder) {
    const auto result = BR::Test::RunCorvane("list");
    ASSERT_EQ(result.status, 0) << result.err;
    std::string expected;
    for (int i = 0; i < BR::kNumCatalogueEntries; ++i) {
        const BR::CatalogueEntry& e = BR::CatalogueEntries()[i];
        if (!BR::FindModuleFactory(e)) continue;
        expected += std::string(e.id) + "\t" + e.stem + "\t" + e.moduleName + "\t" +
                    std::to_string(e.numInputs) + "\t" + std::to_string(e.numOutputs) + "\n";
    }
    EXPECT_EQ(result.out, expected);
    EXPECT_NE(result.out.find("CRdc\tdc\tDC\t2\t2\n"), std::string::npos);
}

TEST(CliParams, DCTable) {
    const auto result = BR::Test::RunCorvane("params dc");
    ASSERT_EQ(result.status, 0) << result.err;
    std::istringstream lines(result.out);
    std::vector<std::string> rows;
    for (std::string line; std::getline(lines, line);)
        rows.push_back(line);
    ASSERT_EQ(rows.size(), 13u);
    EXPECT_EQ(rows[0], "0\tOutput Positive L\t0\t0\t1\t0");
    EXPECT_EQ(rows[2], "2\tMultiplier L\t0\t-2\t2\t1");
    EXPECT_EQ(rows[10], "10\tOSC Port Offset\t1\t0\t100\t0");
    EXPECT_EQ(rows[12], "12\tSmoothing R\t24\t-500\t500\t0");
}
