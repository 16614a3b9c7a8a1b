// A loaded "guid" that another live instance holds takes the number over: the other instance is
// given the lowest free number. A loaded "luid" does the same among local ids.
#include <gtest/gtest.h>

#include <memory>

#include "framework/InstanceRegistry.h"
#include "framework/StateChunkStore.h"
#include "modules/ModuleFactory.h"
#include "tests/support/LearnerStandIn.h"

using namespace BR::Test;

namespace {
std::pair<uint32_t, uint32_t> Ids(BrelCorvaneBase* module) {
    uint32_t localId = 0, globalId = 0;
    BR::InstanceRegistry::PeekInstanceIds(module, localId, globalId);
    return {localId, globalId};
}
}  // namespace

TEST(StateIds, LoadedGlobalIdTakesTheNumberOver) {
    auto learner = std::make_unique<LearnerStandIn>();  // global 1
    auto saved = BR::CreateModule("dc");                // global 2
    ManualHost savedHost(*saved);
    uint32_t size = 0;
    ASSERT_EQ(saved->GetChunkSize(BR::kChunkIdChunky, &size), BR::kNoErr);
    BR::ChunkRecord record{};
    ASSERT_EQ(saved->GetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    ASSERT_EQ(Ids(saved.get()), std::make_pair(1u, 2u));  // saving gave it local 1

    // Another session: three DCs; the third loads the saved chunk, with local 1 and global 2.
    saved.reset();
    auto a = BR::CreateModule("dc");  // global 2
    auto b = BR::CreateModule("dc");  // global 3
    auto c = BR::CreateModule("dc");  // global 4
    ManualHost hostC(*c);
    {
        std::lock_guard<std::recursive_mutex> lock(BR::InstanceRegistry::Lock());
        uint32_t localId = 0, globalId = 0;
        BR::InstanceRegistry::GetInstanceIds(a.get(), localId, globalId);
        BR::InstanceRegistry::GetInstanceIds(b.get(), localId, globalId);
    }
    ASSERT_EQ(Ids(a.get()), std::make_pair(1u, 2u));
    ASSERT_EQ(Ids(b.get()), std::make_pair(2u, 3u));
    ASSERT_EQ(c->SetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);

    EXPECT_EQ(Ids(c.get()), std::make_pair(1u, 2u));
    // a gave up global 2 for the lowest free number, 4 (1, 2 and 3 are held); and local 1 for 3.
    EXPECT_EQ(Ids(a.get()), std::make_pair(3u, 4u));
    EXPECT_EQ(Ids(b.get()), std::make_pair(2u, 3u));
    EXPECT_EQ(Ids(learner.get()).second, 1u);
}
