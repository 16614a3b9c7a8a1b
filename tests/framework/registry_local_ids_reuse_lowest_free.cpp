// Local ids number the instances of one module from 1: three instances hold 1, 2, 3; when the second
// goes, a new instance is given the lowest free number, 2.
#include <gtest/gtest.h>

#include <memory>

#include "framework/InstanceRegistry.h"
#include "modules/ModuleFactory.h"
#include "tests/support/ProbeModule.h"

namespace {
uint32_t LocalId(BrelCorvaneBase* instance) {
    uint32_t localId = 0, globalId = 0;
    std::lock_guard<std::recursive_mutex> lock(BR::InstanceRegistry::Lock());
    EXPECT_TRUE(BR::InstanceRegistry::GetInstanceIds(instance, localId, globalId));
    return localId;
}
}  // namespace

TEST(RegistryLocalIds, RemovingTheSecondAndAddingAnotherGivesItTwo) {
    auto first = BR::CreateModule("dc");
    auto second = BR::CreateModule("dc");
    auto third = BR::CreateModule("dc");
    EXPECT_EQ(LocalId(first.get()), 1u);
    EXPECT_EQ(LocalId(second.get()), 2u);
    EXPECT_EQ(LocalId(third.get()), 3u);

    second.reset();
    auto fourth = BR::CreateModule("dc");
    EXPECT_EQ(LocalId(fourth.get()), 2u);
    EXPECT_EQ(LocalId(first.get()), 1u);
    EXPECT_EQ(LocalId(third.get()), 3u);
}

TEST(RegistryLocalIds, CountPerShortName) {
    // Instances of another module number from 1 on their own.
    auto dc1 = BR::CreateModule("dc");
    auto dc2 = BR::CreateModule("dc");
    BR::Test::ProbeModule probe1, probe2;
    EXPECT_EQ(LocalId(dc1.get()), 1u);
    EXPECT_EQ(LocalId(&probe1), 1u);
    EXPECT_EQ(LocalId(dc2.get()), 2u);
    EXPECT_EQ(LocalId(&probe2), 2u);
}
