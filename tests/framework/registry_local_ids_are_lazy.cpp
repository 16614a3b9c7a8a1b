// A local id is given at the first lookup by name, id or display, not at construction: until then it
// is 0. The global id is given at construction, the lowest number from 1 not held.
#include <gtest/gtest.h>

#include "framework/InstanceRegistry.h"
#include "tests/support/ProbeModule.h"

using BR::InstanceRegistry::PeekInstanceIds;

TEST(RegistryLocalIds, HeldAtZeroUntilTheFirstLookup) {
    BR::Test::ProbeModule a, b;
    BR::Test::ManualHost hostA(a), hostB(b);
    uint32_t localId = 99, globalId = 0;
    ASSERT_TRUE(PeekInstanceIds(&a, localId, globalId));
    EXPECT_EQ(localId, 0u);
    EXPECT_EQ(globalId, 1u);
    ASSERT_TRUE(PeekInstanceIds(&b, localId, globalId));
    EXPECT_EQ(localId, 0u);
    EXPECT_EQ(globalId, 2u);

    // A lookup of every instance of the name (negative id) assigns nothing.
    BR::ParameterAddress all{"CRProbeModule", -1, "Gain", 0, 0};
    EXPECT_TRUE(BR::InstanceRegistry::SetParameterByAddress(all, 0.25f));
    PeekInstanceIds(&a, localId, globalId);
    EXPECT_EQ(localId, 0u);

    // A lookup by name and id: whoever is asked gets the lowest free number.
    BR::ParameterAddress second{"CRProbeModule", 2, "Gain", 0, 0};
    EXPECT_TRUE(BR::InstanceRegistry::SetParameterByAddress(second, 0.5f));
    PeekInstanceIds(&a, localId, globalId);
    EXPECT_EQ(localId, 1u);
    PeekInstanceIds(&b, localId, globalId);
    EXPECT_EQ(localId, 2u);
    EXPECT_EQ(a.GetTableValue(BR::Test::kGain), 0.25f);
    EXPECT_EQ(b.GetTableValue(BR::Test::kGain), 0.5f);
}

TEST(RegistryLocalIds, GetInstanceIdsAssignsTheLowestFreeNumber) {
    BR::Test::ProbeModule a, b, c;
    uint32_t localId = 0, globalId = 0;
    {
        std::lock_guard<std::recursive_mutex> lock(BR::InstanceRegistry::Lock());
        ASSERT_TRUE(BR::InstanceRegistry::GetInstanceIds(&c, localId, globalId));
    }
    EXPECT_EQ(localId, 1u);  // the first asked, whatever its place in the list
    EXPECT_EQ(globalId, 3u);
    PeekInstanceIds(&a, localId, globalId);
    EXPECT_EQ(localId, 0u);
    {
        std::lock_guard<std::recursive_mutex> lock(BR::InstanceRegistry::Lock());
        BR::InstanceRegistry::GetInstanceIds(&a, localId, globalId);
    }
    EXPECT_EQ(localId, 2u);
}
