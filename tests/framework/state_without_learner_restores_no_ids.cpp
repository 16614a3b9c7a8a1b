// A session saved with no Learner in it holds no ids, and restores none: loaded into a process where
// a Learner lives, the instance keeps the numbers it has.
#include <gtest/gtest.h>

#include <memory>

#include "framework/InstanceRegistry.h"
#include "modules/ModuleFactory.h"
#include "tests/support/LearnerStandIn.h"

TEST(StateIds, NoLearnerAtSavingNoIdsAtLoading) {
    auto saved = BR::CreateModule("dc");
    BR::Test::ManualHost savedHost(*saved);
    BR::InstanceRegistry::SetInstanceIds(saved.get(), 5, 6);
    uint32_t size = 0;
    ASSERT_EQ(saved->GetChunkSize(BR::kChunkIdChunky, &size), BR::kNoErr);
    ASSERT_EQ(size, 12u);
    BR::ChunkRecord record{};
    ASSERT_EQ(saved->GetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    saved.reset();

    auto learner = std::make_unique<BR::Test::LearnerStandIn>();
    auto other = BR::CreateModule("dc");
    auto loaded = BR::CreateModule("dc");
    BR::Test::ManualHost host(*loaded);
    BR::InstanceRegistry::SetInstanceIds(loaded.get(), 2, 3);
    BR::InstanceRegistry::SetInstanceIds(other.get(), 1, 2);
    ASSERT_EQ(loaded->SetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    uint32_t localId = 0, globalId = 0;
    BR::InstanceRegistry::PeekInstanceIds(loaded.get(), localId, globalId);
    EXPECT_EQ(localId, 2u);
    EXPECT_EQ(globalId, 3u);
    BR::InstanceRegistry::PeekInstanceIds(other.get(), localId, globalId);
    EXPECT_EQ(localId, 1u);
    EXPECT_EQ(globalId, 2u);
}
