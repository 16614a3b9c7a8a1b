// Long chains of instances are ordered without recursion, a patch may hold at most 1024 instances,
// and JSON nested deeper than 16 levels is refused at its place, each with status 2.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/cli/CommandLine.h"
#include "host/cli/PatchJob.h"
#include "tests/support/RunCommand.h"

namespace {
// Instance k takes input from instance k + 1; with `closed`, the last from the first.
BR::Patch Chain(size_t length, bool closed) {
    BR::Patch patch;
    patch.path = "chain.json";
    patch.instances.resize(length);
    for (size_t k = 0; k < length; ++k) {
        patch.instances[k].name = "i" + std::to_string(k);
        patch.instances[k].place = "instances[" + std::to_string(k) + "]";
        if (k + 1 < length || closed)
            patch.instances[k].inputs.push_back({BR::PatchSource::Kind::Instance, (k + 1) % length, 0});
    }
    return patch;
}

std::string ChainJson(size_t length) {
    std::string json = R"({"frames": 64, "instances": [)";
    for (size_t k = 0; k < length; ++k) {
        json += std::string(k ? "," : "") + R"({"name":"i)" + std::to_string(k) + R"(","module":"dc")";
        if (k + 1 < length) json += R"(,"inputs":["i)" + std::to_string(k + 1) + R"(:0"])";
        json += "}";
    }
    return json + "]}";
}
}  // namespace

TEST(CliPatchBounds, ChainOf200000IsOrderedWithoutRecursion) {
    BR::Patch patch = Chain(200000, false);
    BR::OrderInstances(patch);
    ASSERT_EQ(patch.order.size(), 200000u);
    EXPECT_EQ(patch.order.front(), 199999u);  // the source of the whole chain renders first
    EXPECT_EQ(patch.order.back(), 0u);

    BR::Patch loop = Chain(200000, true);
    try {
        BR::OrderInstances(loop);
        FAIL() << "a closed chain is a loop";
    } catch (const BR::InputError& e) {
        const std::string what = e.what();
        EXPECT_EQ(
            what.rfind("chain.json: instances[199999].inputs[0]: \"i0:0\" closes a loop: i0 <- i1 <- ", 0),
            0u)
            << what.substr(0, 200);
    }
}

TEST(CliPatchBounds, InstanceCountIsLimited) {
    const std::string f = BR::Test::MakeTempFolder();
    std::ofstream(f + "/long.json") << ChainJson(200000);
    auto result = BR::Test::RunCorvane("patch " + f + "/long.json");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(
        result.err.find(f + "/long.json: instances: lists 200000 instances; a patch may hold at most 1024"),
        std::string::npos)
        << result.err.substr(0, 300);
    EXPECT_FALSE(std::filesystem::exists(f + "/i0.wav"));

    std::ofstream(f + "/limit.json") << ChainJson(1024);
    result = BR::Test::RunCorvane("patch " + f + "/limit.json");
    EXPECT_EQ(result.status, 0) << result.err.substr(0, 300);
    EXPECT_TRUE(std::filesystem::exists(f + "/i1023.wav"));
    std::filesystem::remove_all(f);
}

TEST(CliPatchBounds, DeepNestingIsRefusedAtItsPlace) {
    const std::string f = BR::Test::MakeTempFolder();
    std::ofstream(f + "/deep.json") << R"({"instances": [{"name": "a", "module": "dc", "set": {"x": )"
                                    << std::string(200000, '[') << std::string(200000, ']') << "}}]}";
    auto result = BR::Test::RunCorvane("patch " + f + "/deep.json");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(
        result.err.find(f + "/deep.json: instances[0].set.x[0][0][0][0][0][0][0][0][0][0][0][0]: arrays "
                            "and objects nest deeper than 16 levels, the limit"),
        std::string::npos)
        << result.err.substr(0, 300);

    // Sixteen levels are accepted (and then refused as a value that is not a number).
    std::ofstream(f + "/sixteen.json") << R"({"instances": [{"name": "a", "module": "dc", "set": {"x": )"
                                       << std::string(12, '[') << std::string(12, ']') << "}}]}";
    result = BR::Test::RunCorvane("patch " + f + "/sixteen.json");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("instances[0].set.\"x\": expected a number, true/false or a value name"),
              std::string::npos)
        << result.err;
    EXPECT_FALSE(std::filesystem::exists(f + "/a.wav"));
    std::filesystem::remove_all(f);
}
