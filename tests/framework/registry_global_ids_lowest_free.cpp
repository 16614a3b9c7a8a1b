// Global ids number all instances of all modules from 1: each new instance takes the lowest number
// that no entry holds, so a number freed by a removal is taken again.
#include <gtest/gtest.h>

#include <memory>

#include "framework/InstanceRegistry.h"
#include "modules/ModuleFactory.h"
#include "tests/support/ProbeModule.h"

namespace {
uint32_t GlobalId(BrelCorvaneBase* instance) {
    uint32_t localId = 0, globalId = 0;
    EXPECT_TRUE(BR::InstanceRegistry::PeekInstanceIds(instance, localId, globalId));
    return globalId;
}
}  // namespace

TEST(RegistryGlobalIds, AcrossModulesAndReusedAfterRemoval) {
    EXPECT_EQ(BR::InstanceRegistry::NumInstances(), 0u);
    auto dc = BR::CreateModule("dc");
    auto probe = std::make_unique<BR::Test::ProbeModule>();
    auto dc2 = BR::CreateModule("dc");
    EXPECT_EQ(GlobalId(dc.get()), 1u);
    EXPECT_EQ(GlobalId(probe.get()), 2u);
    EXPECT_EQ(GlobalId(dc2.get()), 3u);
    EXPECT_EQ(BR::InstanceRegistry::NumInstances(), 3u);

    BrelCorvaneBase* removed = probe.get();
    probe.reset();
    EXPECT_EQ(BR::InstanceRegistry::NumInstances(), 2u);
    uint32_t localId = 0, globalId = 0;
    EXPECT_FALSE(BR::InstanceRegistry::PeekInstanceIds(removed, localId, globalId));
    auto probe2 = std::make_unique<BR::Test::ProbeModule>();
    EXPECT_EQ(GlobalId(probe2.get()), 2u);
    auto probe3 = std::make_unique<BR::Test::ProbeModule>();
    EXPECT_EQ(GlobalId(probe3.get()), 4u);
}
