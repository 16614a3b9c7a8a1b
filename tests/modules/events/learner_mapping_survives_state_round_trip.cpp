// A mapping survives a state round trip: saved by the Learner with the global ids that every instance
// saves beside it, loaded as a pending mapping, and tied to the new instances of those ids at the first
// message, though they were made in another order and at other addresses.
#include <gtest/gtest.h>

#include "LearnerRig.h"
#include "framework/InstanceRegistry.h"
#include "framework/StateChunkStore.h"

using BR::Test::LearnerTest;
namespace L = BrelCorvaneLearner;

namespace {
BR::ChunkRecord Save(BrelCorvaneBase& module) {
    uint32_t size = 0;
    EXPECT_EQ(module.GetChunkSize(BR::kChunkIdChunky, &size), BR::kNoErr);
    BR::ChunkRecord record{};
    EXPECT_EQ(module.GetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    EXPECT_EQ(record.data.size(), size);
    return record;
}
uint32_t GlobalId(BrelCorvaneBase& module) {
    std::lock_guard<std::recursive_mutex> lock(BR::InstanceRegistry::Lock());
    uint32_t l = 0, g = 0;
    BR::InstanceRegistry::GetInstanceIds(&module, l, g);
    return g;
}
}  // namespace

TEST_F(LearnerTest, MappingSurvivesStateRoundTrip) {
    BR::ChunkRecord targetState, sourceState, learnerState;
    uint32_t targetId = 0, sourceId = 0;
    {
        auto target = BR::Test::MakeDriver("dc");
        auto source = BR::Test::MakeDriver("cvtomidi");
        auto learner = BR::Test::MakeDriver("learner");
        const char destination[] = "127.0.0.1:7655";
        learner->Module().SetProperty(64110, destination, sizeof destination);
        BR::Test::Learn(*target, "Output Symmetric R", *source, {0xB9, 33, 0});
        targetId = GlobalId(target->Module());
        sourceId = GlobalId(source->Module());
        targetState = Save(target->Module());
        sourceState = Save(source->Module());
        learnerState = Save(learner->Module());
    }
    L::RemoveAllMappings();
    // A new session: another instance comes first, so that the ids fall differently until restored.
    auto other = BR::Test::MakeDriver("dc");
    auto learner = BR::Test::MakeDriver("learner");
    auto source = BR::Test::MakeDriver("cvtomidi");
    auto target = BR::Test::MakeDriver("dc");
    ASSERT_EQ(target->Module().SetChunk(BR::kChunkIdChunky, &targetState), BR::kNoErr);
    ASSERT_EQ(source->Module().SetChunk(BR::kChunkIdChunky, &sourceState), BR::kNoErr);
    ASSERT_EQ(learner->Module().SetChunk(BR::kChunkIdChunky, &learnerState), BR::kNoErr);
    EXPECT_EQ(GlobalId(target->Module()), targetId);
    EXPECT_EQ(GlobalId(source->Module()), sourceId);
    const char* destination = nullptr;
    learner->Module().GetProperty(64110, &destination);
    EXPECT_STREQ(destination, "127.0.0.1:7655");
    EXPECT_EQ(L::NumMappings(), 0);
    EXPECT_EQ(L::NumPendingMappings(), 1);

    BR::Test::SendMIDI(*source, {0xB9, 33, 127});  // resolves, then applies
    EXPECT_EQ(L::NumPendingMappings(), 0);
    EXPECT_EQ(L::NumMappings(), 1);
    EXPECT_FLOAT_EQ(BR::Test::Value(*target, "Output Symmetric R"), 1.0f);
    EXPECT_EQ(BR::Test::Value(*other, "Output Symmetric R"), 0.0f);
    L::MidiMapping m{};
    ASSERT_TRUE(L::FindMapping(&target->Module(), BR::Test::Row(*target, "Output Symmetric R"), m));
    EXPECT_EQ(m.source.instance, &source->Module());
    EXPECT_EQ(m.minimum, -1.0f);
    EXPECT_EQ(m.maximum, 1.0f);

    // Saved again, the table is the same.
    const BR::ChunkRecord again = Save(learner->Module());
    EXPECT_EQ(again.data, learnerState.data);
}

TEST_F(LearnerTest, PendingMappingsResolveBeforeSavingAndLoseTheMissing) {
    auto target = BR::Test::MakeDriver("dc");
    auto learner = BR::Test::MakeDriver("learner");
    const uint32_t id = GlobalId(target->Module());
    std::vector<uint8_t> payload;
    BR::AppendU32(payload, 2);
    for (uint32_t sourceId : {id, 999u}) {  // the second names an instance that does not exist
        for (uint32_t word : {id, 0u, sourceId, 0u, 0u, 7u})
            BR::AppendU32(payload, word);
        const float range[2] = {0.0f, 1.0f};
        payload.insert(payload.end(), reinterpret_cast<const uint8_t*>(range),
                       reinterpret_cast<const uint8_t*>(range) + 8);
        BR::AppendU32(payload, 0);
    }
    L::LoadMappings(payload.data(), uint32_t(payload.size()));
    EXPECT_EQ(L::NumPendingMappings(), 2);
    const std::vector<uint8_t> saved = L::SaveMappings();
    EXPECT_EQ(L::NumPendingMappings(), 0);
    EXPECT_EQ(L::NumMappings(), 1);
    ASSERT_EQ(saved.size(), 4u + 36u);
    EXPECT_TRUE(std::equal(saved.begin(), saved.end(), payload.begin()));
}
