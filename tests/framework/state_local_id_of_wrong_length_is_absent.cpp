// "luid" or "guid" with a length other than 4 is taken as absent, and the instance keeps the number
// it has; the other, of length 4, is restored.
#include <gtest/gtest.h>

#include <memory>

#include "framework/InstanceRegistry.h"
#include "framework/StateChunkStore.h"
#include "tests/support/LearnerStandIn.h"

using namespace BR::Test;

namespace {
void Load(BrelCorvaneBase& module, const BR::StateChunkStore& store) {
    BR::ChunkRecord record{};
    record.data = store.Flatten();
    record.size = uint32_t(record.data.size());
    ASSERT_EQ(module.SetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
}
std::pair<uint32_t, uint32_t> Ids(BrelCorvaneBase& module) {
    uint32_t localId = 0, globalId = 0;
    BR::InstanceRegistry::PeekInstanceIds(&module, localId, globalId);
    return {localId, globalId};
}
}  // namespace

TEST(StateIds, LocalIdOfEightBytesIsAbsent) {
    auto learner = std::make_unique<LearnerStandIn>();
    ProbeModule module;
    ManualHost host(module);
    BR::InstanceRegistry::SetInstanceIds(&module, 3, 0);
    ASSERT_EQ(Ids(module), std::make_pair(3u, 2u));

    BR::StateChunkStore store;
    const uint32_t eight[2] = {9, 0};
    const uint32_t guid = 7;
    store.Add(BR::kTagLocalId, eight, 8);
    store.Add(BR::kTagGlobalId, &guid, 4);
    Load(module, store);
    EXPECT_EQ(Ids(module), std::make_pair(3u, 7u));
}

TEST(StateIds, FiveBytesArePaddedToEightAndAbsentToo) {
    auto learner = std::make_unique<LearnerStandIn>();
    ProbeModule module;
    ManualHost host(module);
    BR::InstanceRegistry::SetInstanceIds(&module, 3, 4);

    BR::StateChunkStore store;
    const uint8_t five[5] = {9, 0, 0, 0, 0};
    store.Add(BR::kTagLocalId, five, 5);
    store.Add(BR::kTagGlobalId, five, 5);
    Load(module, store);
    EXPECT_EQ(Ids(module), std::make_pair(3u, 4u));

    BR::StateChunkStore empty;
    empty.Add(BR::kTagLocalId, nullptr, 0);
    Load(module, empty);
    EXPECT_EQ(Ids(module), std::make_pair(3u, 4u));
}
