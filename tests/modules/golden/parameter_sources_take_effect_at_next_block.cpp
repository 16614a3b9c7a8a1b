// A row changed between two blocks takes effect at the next block exactly as it did before the
// per-block path read only changed rows: every source that writes through the parameter object
// (host automation by value or normalized, SetTableValue as OSC, Lua, the editor and the Learner
// call it, an OSC address through the registry, and a store on the audio thread whose notification
// follows later) reproduces the recorded reference renders bit for bit.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>

#include "framework/InstanceRegistry.h"
#include "tests/support/GoldenRenders.h"

namespace {

using BR::HostDriver;

std::map<std::string, std::string> RecordedLines() {
    std::map<std::string, std::string> lines;
    std::ifstream file(BR::Test::GoldenHashPath());
    std::string line;
    while (std::getline(file, line))
        if (!line.empty() && line[0] != '#') lines[line.substr(0, line.rfind(' '))] = line;
    return lines;
}

int32_t TableIndex(HostDriver& driver, const std::string& row) {
    const int32_t parameter = driver.ParameterIndexByName(row);
    EXPECT_GT(parameter, 0) << row;
    return parameter - 1;
}

void ExpectEveryChangingCaseMatches(const BR::Test::GoldenSetter& setter) {
    const auto recorded = RecordedLines();
    ASSERT_FALSE(recorded.empty()) << "no recorded hashes in " << BR::Test::GoldenHashPath();
    size_t cases = 0;
    for (const BR::Test::GoldenCase& goldenCase : BR::Test::GoldenCases()) {
        if (goldenCase.changes.empty()) continue;
        ++cases;
        for (uint32_t blockSize : {7u, 256u}) {
            const std::string key = goldenCase.name + " " + std::to_string(blockSize);
            ASSERT_EQ(recorded.count(key), 1u) << key;
            EXPECT_EQ(BR::Test::GoldenLine(goldenCase.name, blockSize,
                                           BR::Test::RenderGoldenHash(goldenCase, blockSize, setter)),
                      recorded.at(key));
        }
    }
    EXPECT_GE(cases, 15u);  // at least one case with changes for every built module
}

TEST(ParameterSources, HostNormalizedPathTakesEffectAtTheNextBlock) {
    ExpectEveryChangingCaseMatches([](HostDriver& driver, const std::string& row, float value) {
        BR::Parameter* parameter = driver.Module().GetParameter(driver.ParameterIndexByName(row));
        ASSERT_NE(parameter, nullptr) << row;
        const double normalized = BR::Parameter::Normalize(value, parameter->Minimum(), parameter->Maximum());
        ASSERT_EQ(parameter->ValueFromNormalized(normalized), value) << row;  // the same value arrives
        driver.Module().UpdateParameterNormalizedValue(parameter->Identifier(), normalized);
    });
}

TEST(ParameterSources, SetTableValueTakesEffectAtTheNextBlock) {
    ExpectEveryChangingCaseMatches([](HostDriver& driver, const std::string& row, float value) {
        driver.Module().SetTableValue(TableIndex(driver, row), value);
    });
}

TEST(ParameterSources, OSCAddressThroughTheRegistryTakesEffectAtTheNextBlock) {
    ExpectEveryChangingCaseMatches([](HostDriver& driver, const std::string& row, float value) {
        BrelCorvaneBase& module = driver.Module();
        uint32_t localId = 0, globalId = 0;
        {
            std::lock_guard<std::recursive_mutex> lock(BR::InstanceRegistry::Lock());
            ASSERT_TRUE(BR::InstanceRegistry::GetInstanceIds(&module, localId, globalId));
        }
        const int32_t tableIndex = TableIndex(driver, row);
        const std::string path = module.ParameterPaths()[size_t(tableIndex)];
        const BR::ParameterAddress address{module.ShortName(), int32_t(localId), path.c_str(), 0, 0};
        ASSERT_TRUE(BR::InstanceRegistry::SetParameterByAddress(address, value)) << path;
    });
}

TEST(ParameterSources, StoreOnTheAudioThreadThenNotifyTakesEffectAtTheNextBlock) {
    ExpectEveryChangingCaseMatches([](HostDriver& driver, const std::string& row, float value) {
        const int32_t parameter = driver.ParameterIndexByName(row);
        driver.Module().StoreParameterValue(parameter, value);
        driver.Module().NotifyParameterValue(parameter);
    });
}

}  // namespace
