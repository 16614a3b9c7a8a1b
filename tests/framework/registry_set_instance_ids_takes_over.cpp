// SetInstanceIds: a 0 leaves a number as it is; a given number is taken over from whoever holds it.
// Another entry with an equal local id, of any module, is given a new one; another with an equal
// global id is given the lowest free number.
#include <gtest/gtest.h>

#include "framework/InstanceRegistry.h"
#include "modules/ModuleFactory.h"
#include "tests/support/ProbeModule.h"

namespace {
std::pair<uint32_t, uint32_t> Ids(BrelCorvaneBase* instance) {
    uint32_t localId = 0, globalId = 0;
    BR::InstanceRegistry::PeekInstanceIds(instance, localId, globalId);
    return {localId, globalId};
}
std::pair<uint32_t, uint32_t> Assigned(BrelCorvaneBase* instance) {
    uint32_t localId = 0, globalId = 0;
    std::lock_guard<std::recursive_mutex> lock(BR::InstanceRegistry::Lock());
    BR::InstanceRegistry::GetInstanceIds(instance, localId, globalId);
    return {localId, globalId};
}
}  // namespace

TEST(RegistrySetInstanceIds, ZeroLeavesTheNumbersAsTheyAre) {
    BR::Test::ProbeModule a;
    EXPECT_EQ(Assigned(&a), std::make_pair(1u, 1u));
    BR::InstanceRegistry::SetInstanceIds(&a, 0, 0);
    EXPECT_EQ(Ids(&a), std::make_pair(1u, 1u));
    BR::InstanceRegistry::SetInstanceIds(&a, 7, 0);
    EXPECT_EQ(Ids(&a), std::make_pair(7u, 1u));
    BR::InstanceRegistry::SetInstanceIds(&a, 0, 9);
    EXPECT_EQ(Ids(&a), std::make_pair(7u, 9u));
}

TEST(RegistrySetInstanceIds, HoldersOfEqualNumbersAreRenumbered) {
    BR::Test::ProbeModule a, b, c;  // global 1, 2, 3
    EXPECT_EQ(Assigned(&a), std::make_pair(1u, 1u));
    EXPECT_EQ(Assigned(&b), std::make_pair(2u, 2u));
    EXPECT_EQ(Assigned(&c), std::make_pair(3u, 3u));

    // c restores local 1 and global 1: a gives both up for the lowest free numbers.
    BR::InstanceRegistry::SetInstanceIds(&c, 1, 1);
    EXPECT_EQ(Ids(&c), std::make_pair(1u, 1u));
    EXPECT_EQ(Ids(&a), std::make_pair(3u, 3u));  // 1 and 2 are held by c and b
    EXPECT_EQ(Ids(&b), std::make_pair(2u, 2u));
}

TEST(RegistrySetInstanceIds, AnEqualLocalIdOfAnotherModuleIsResetToo) {
    auto dc = BR::CreateModule("dc");
    BR::Test::ProbeModule probeA, probeB;
    EXPECT_EQ(Assigned(dc.get()).first, 1u);
    EXPECT_EQ(Assigned(&probeA).first, 1u);
    EXPECT_EQ(Assigned(&probeB).first, 2u);
    BR::InstanceRegistry::SetInstanceIds(&probeA, 3, 0);  // frees 1 among the probes
    EXPECT_EQ(Ids(&probeA).first, 3u);

    // The DC restores local id 2: probe B holds 2 too, and is given the lowest free among probes.
    BR::InstanceRegistry::SetInstanceIds(dc.get(), 2, 0);
    EXPECT_EQ(Ids(dc.get()).first, 2u);
    EXPECT_EQ(Ids(&probeB).first, 1u);
    EXPECT_EQ(Ids(&probeA).first, 3u);
}

TEST(RegistrySetInstanceIds, TheSameModuleMovesToTheLowestFree) {
    auto dc1 = BR::CreateModule("dc");
    auto dc2 = BR::CreateModule("dc");
    auto dc3 = BR::CreateModule("dc");
    EXPECT_EQ(Assigned(dc1.get()).first, 1u);
    EXPECT_EQ(Assigned(dc2.get()).first, 2u);
    EXPECT_EQ(Assigned(dc3.get()).first, 3u);
    BR::InstanceRegistry::SetInstanceIds(dc1.get(), 3, 0);
    EXPECT_EQ(Ids(dc1.get()).first, 3u);
    EXPECT_EQ(Ids(dc3.get()).first, 1u);
    EXPECT_EQ(Ids(dc2.get()).first, 2u);
}
