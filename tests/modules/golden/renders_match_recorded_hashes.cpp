// Every module's reference renders, at every block size, still hash to the recorded values.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>

#include "tests/support/GoldenRenders.h"

namespace {

std::map<std::string, std::string> RecordedLines() {
    std::map<std::string, std::string> lines;
    std::ifstream file(BR::Test::GoldenHashPath());
    std::string line;
    while (std::getline(file, line)) {
        if (line.empty() || line[0] == '#') continue;
        const size_t hashStart = line.rfind(' ');
        lines[line.substr(0, hashStart)] = line;
    }
    return lines;
}

TEST(GoldenRenders, EveryCaseAtEveryBlockSizeMatchesItsRecordedHash) {
    const auto recorded = RecordedLines();
    ASSERT_FALSE(recorded.empty()) << "no recorded hashes in " << BR::Test::GoldenHashPath();
    size_t compared = 0;
    for (const BR::Test::GoldenCase& goldenCase : BR::Test::GoldenCases()) {
        for (uint32_t blockSize : BR::Test::GoldenBlockSizes()) {
            const std::string key = goldenCase.name + " " + std::to_string(blockSize);
            auto it = recorded.find(key);
            ASSERT_NE(it, recorded.end()) << "no recorded hash for " << key;
            const uint64_t hash = BR::Test::RenderGoldenHash(goldenCase, blockSize);
            EXPECT_EQ(BR::Test::GoldenLine(goldenCase.name, blockSize, hash), it->second);
            ++compared;
        }
    }
    EXPECT_EQ(compared, recorded.size()) << "recorded hashes without a case";
}

// Each case must render something that differs from every other case, or its hash would guard
// nothing of its own.
TEST(GoldenRenders, CasesRenderDistinctOutputs) {
    std::map<uint64_t, std::string> seen;
    for (const BR::Test::GoldenCase& goldenCase : BR::Test::GoldenCases()) {
        const uint64_t hash = BR::Test::RenderGoldenHash(goldenCase, 32);
        EXPECT_TRUE(seen.emplace(hash, goldenCase.name).second)
            << goldenCase.name << " renders the same as " << seen[hash];
    }
}

}  // namespace
