// The "mmap" payload: version 1 entries of 32 bytes (no unit), version 2 of 36; any other version, a
// payload under 4 bytes or a missing entry loads nothing and empties the table; a cut last entry is
// left out; a damaged chunk image leaves the table alone. None of it crashes.
#include <gtest/gtest.h>

#include "LearnerRig.h"
#include "framework/InstanceRegistry.h"
#include "framework/StateChunkStore.h"

using BR::Test::LearnerTest;
namespace L = BrelCorvaneLearner;

namespace {
std::vector<uint8_t> Payload(uint32_t version, uint32_t targetId, uint32_t sourceId, uint32_t entries) {
    std::vector<uint8_t> p;
    BR::AppendU32(p, version);
    for (uint32_t e = 0; e < entries; ++e) {
        for (uint32_t word : {targetId, e, sourceId, 1u, 0u, 20u + e})
            BR::AppendU32(p, word);
        const float range[2] = {-2.0f, 2.0f};
        p.insert(p.end(), reinterpret_cast<const uint8_t*>(range),
                 reinterpret_cast<const uint8_t*>(range) + 8);
        if (version == 2) BR::AppendU32(p, BR::kUnitIndexed);
    }
    return p;
}
BR::ChunkRecord Image(const std::vector<uint8_t>* mappings) {
    BR::StateChunkStore store;
    if (mappings) store.Add(BrelCorvaneLearner::kTagMappings, mappings->data(), uint32_t(mappings->size()));
    BR::ChunkRecord record{};
    record.data = store.Flatten();
    return record;
}
uint32_t GlobalId(BrelCorvaneBase& module) {
    uint32_t l = 0, g = 0;
    BR::InstanceRegistry::PeekInstanceIds(&module, l, g);
    return g;
}
}  // namespace

TEST_F(LearnerTest, VersionOneAndTwo) {
    auto dc = BR::Test::MakeDriver("dc");
    auto learner = BR::Test::MakeDriver("learner");
    const uint32_t id = GlobalId(dc->Module());
    const std::vector<uint8_t> one = Payload(1, id, id, 3);
    ASSERT_EQ(one.size(), 4u + 3 * 32u);
    BR::ChunkRecord v1 = Image(&one);
    ASSERT_EQ(learner->Module().SetChunk(BR::kChunkIdChunky, &v1), BR::kNoErr);
    EXPECT_EQ(L::NumPendingMappings(), 3);
    BR::Test::SendMIDI(*dc, {0xB1, 21, 127});  // entry 1: parameter 1, controller 21, channel 1
    EXPECT_EQ(L::NumMappings(), 3);
    L::MidiMapping m{};
    ASSERT_TRUE(L::FindMapping(&dc->Module(), 1, m));
    EXPECT_EQ(m.unit, 0u);                                              // version 1 has no unit
    EXPECT_FLOAT_EQ(BR::Test::Value(*dc, "Output Symmetric L"), 1.0f);  // clamped to the row's range

    const std::vector<uint8_t> two = Payload(2, id, id, 2);
    L::LoadMappings(two.data(), uint32_t(two.size()));
    EXPECT_EQ(L::NumMappings(), 0);  // loading empties first
    EXPECT_EQ(L::NumPendingMappings(), 2);
    BR::Test::SendMIDI(*dc, {0xB1, 20, 100});
    ASSERT_TRUE(L::FindMapping(&dc->Module(), 0, m));
    EXPECT_EQ(m.unit, uint32_t(BR::kUnitIndexed));
    EXPECT_EQ(m.minimum, -2.0f);
    // 100 on -2..2 is 99 * 4 / 126 - 2 = 1.142..., floored for an indexed unit: 1.0.
    EXPECT_EQ(BR::Test::Value(*dc, "Output Positive L"), 1.0f);
}

TEST_F(LearnerTest, BadPayloadsLoadNothing) {
    auto dc = BR::Test::MakeDriver("dc");
    auto learner = BR::Test::MakeDriver("learner");
    const uint32_t id = GlobalId(dc->Module());
    auto loadsPending = [&](const std::vector<uint8_t>* payload) {
        const std::vector<uint8_t> good = Payload(2, id, id, 1);
        L::LoadMappings(good.data(), uint32_t(good.size()));
        BR::ChunkRecord record = Image(payload);
        EXPECT_EQ(learner->Module().SetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
        return L::NumPendingMappings() + L::NumMappings();
    };
    const std::vector<uint8_t> v3 = Payload(3, id, id, 2);
    EXPECT_EQ(loadsPending(&v3), 0);
    const std::vector<uint8_t> v0 = Payload(0, id, id, 2);
    EXPECT_EQ(loadsPending(&v0), 0);
    const std::vector<uint8_t> tiny = {2, 0};  // stored padded to 4: a version word of 2 and no entry
    EXPECT_EQ(loadsPending(&tiny), 0);
    EXPECT_EQ(loadsPending(nullptr), 0);  // no "mmap" at all
    std::vector<uint8_t> cut = Payload(2, id, id, 2);
    cut.resize(cut.size() - 8);
    EXPECT_EQ(loadsPending(&cut), 1);  // the whole first entry only
    std::vector<uint8_t> nan = Payload(2, id, id, 1);
    const float bad = std::nanf("");
    std::memcpy(nan.data() + 4 + 24, &bad, 4);
    EXPECT_EQ(loadsPending(&nan), 1);
    BR::Test::SendMIDI(*dc, {0xB1, 20, 100});  // a NaN range lands on the parameter's minimum
    EXPECT_EQ(BR::Test::Value(*dc, "Output Positive L"), 0.0f);

    // A damaged image is refused before anything is read: the table stays as it was.
    const std::vector<uint8_t> good = Payload(2, id, id, 1);
    L::LoadMappings(good.data(), uint32_t(good.size()));
    BR::ChunkRecord damaged = Image(&good);
    damaged.data.resize(damaged.data.size() - 6);
    EXPECT_EQ(learner->Module().SetChunk(BR::kChunkIdChunky, &damaged), BR::kNoErr);
    EXPECT_EQ(L::NumPendingMappings(), 1);
}
