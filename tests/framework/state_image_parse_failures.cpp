// A bad "Chnk" image has no effect: below 12 bytes, a wrong magic, a byte count that runs past the
// size, or an entry that runs past the end. What was parsed before a bad entry is dropped too, and
// SetChunk still answers success.
#include <gtest/gtest.h>

#include <memory>

#include "framework/InstanceRegistry.h"
#include "framework/StateChunkStore.h"
#include "tests/support/LearnerStandIn.h"

using namespace BR::Test;

namespace {
std::vector<uint8_t> Image(std::initializer_list<uint32_t> words) {
    std::vector<uint8_t> bytes;
    for (uint32_t word : words)
        BR::AppendU32(bytes, word);
    return bytes;
}

constexpr uint32_t kMagic = 0x4272656c;
const uint32_t kLuid = BR::FourCC("luid"), kGuid = BR::FourCC("guid"), kExtra = BR::FourCC("xtra");

class WithExtraState : public ProbeModule {
public:
    void LoadExtraChunks(const BR::StateChunkStore& store) override {
        ++loads;
        BR::StateChunkStore::Blob blob{};
        if (store.Find(kExtra, blob)) extra = BR::ReadU32(blob.data);
    }
    int loads = 0;
    uint32_t extra = 0;
};

bool Parses(const std::vector<uint8_t>& image) {
    BR::StateChunkStore store;
    return store.Parse(image.data(), image.size());
}
}  // namespace

TEST(StateImageParse, FailuresOfForm) {
    EXPECT_TRUE(Parses(Image({kMagic, 1, 0})));
    EXPECT_TRUE(Parses(Image({kMagic, 7, 0})));  // the format version is never read
    std::vector<uint8_t> eleven = Image({kMagic, 1, 0});
    eleven.pop_back();
    EXPECT_FALSE(Parses(eleven));
    EXPECT_FALSE(Parses({}));
    EXPECT_FALSE(Parses(Image({BR::FourCC("lerB"), 1, 0})));          // magic in the wrong order
    EXPECT_FALSE(Parses(Image({kMagic, 1, 12, kLuid, 4})));           // 12 + 12 > 20
    EXPECT_TRUE(Parses(Image({kMagic, 1, 12, kLuid, 4, 5, 99})));     // bytes past the count are left
    EXPECT_FALSE(Parses(Image({kMagic, 1, 12, kLuid, 8, 5})));        // the entry runs past the end
    EXPECT_FALSE(Parses(Image({kMagic, 1, 4, kLuid})));               // half an entry header
    EXPECT_FALSE(Parses(Image({kMagic, 1, 8, kLuid, 0xFFFFFFF8u})));  // a huge length
}

TEST(StateImageParse, AnEntryPastTheEndDropsWhatCameBefore) {
    BR::StateChunkStore store;
    const std::vector<uint8_t> image = Image({kMagic, 1, 24, kExtra, 4, 77, kLuid, 8, 3});
    EXPECT_FALSE(store.Parse(image.data(), image.size()));
    BR::StateChunkStore::Blob blob{};
    EXPECT_FALSE(store.Find(kExtra, blob));

    // A store that parsed well before forgets it on a failed parse.
    const std::vector<uint8_t> good = Image({kMagic, 1, 12, kExtra, 4, 77});
    ASSERT_TRUE(store.Parse(good.data(), good.size()));
    ASSERT_TRUE(store.Find(kExtra, blob));
    EXPECT_FALSE(store.Parse(image.data(), image.size()));
    EXPECT_FALSE(store.Find(kExtra, blob));
}

TEST(StateImageParse, TheModuleStaysAsItWas) {
    auto learner = std::make_unique<LearnerStandIn>();
    WithExtraState module;
    ManualHost host(module);
    uint32_t localId = 0, globalId = 0;
    {
        std::lock_guard<std::recursive_mutex> lock(BR::InstanceRegistry::Lock());
        BR::InstanceRegistry::GetInstanceIds(&module, localId, globalId);
    }
    ASSERT_EQ(localId, 1u);
    ASSERT_EQ(globalId, 2u);

    const std::vector<std::vector<uint8_t>> bad = {
        {1, 2, 3},
        Image({kMagic + 1, 1, 24, kLuid, 4, 5, kGuid, 4, 6}),
        Image({kMagic, 1, 28, kLuid, 4, 5, kGuid, 4, 6}),
        Image({kMagic, 1, 36, kLuid, 4, 5, kGuid, 4, 6, kExtra, 8, 1}),
    };
    for (const auto& image : bad) {
        BR::ChunkRecord record{};
        record.data = image;
        record.size = uint32_t(image.size());
        EXPECT_EQ(module.SetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
        EXPECT_EQ(module.loads, 0);
        BR::InstanceRegistry::PeekInstanceIds(&module, localId, globalId);
        EXPECT_EQ(localId, 1u);
        EXPECT_EQ(globalId, 2u);
    }

    // The same entries in a good image take effect.
    BR::ChunkRecord record{};
    record.data = Image({kMagic, 1, 36, kLuid, 4, 5, kGuid, 4, 6, kExtra, 4, 1});
    EXPECT_EQ(module.SetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    EXPECT_EQ(module.loads, 1);
    EXPECT_EQ(module.extra, 1u);
    BR::InstanceRegistry::PeekInstanceIds(&module, localId, globalId);
    EXPECT_EQ(localId, 5u);
    EXPECT_EQ(globalId, 6u);
}
