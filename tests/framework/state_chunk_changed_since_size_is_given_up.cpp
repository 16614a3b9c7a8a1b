// GetChunk("Chnk") fills the record only if the image is as long as GetChunkSize said; a state that
// changed between the two calls is given up on, quietly: the record is left alone, and the result is
// still success.
#include <gtest/gtest.h>

#include <cstring>

#include "framework/StateChunkStore.h"
#include "tests/support/ProbeModule.h"

namespace {
class GrowingState : public BR::Test::ProbeModule {
public:
    void SaveExtraChunks(BR::StateChunkStore& store) override {
        const std::vector<uint8_t> bytes(payload, 7);
        store.Add(BR::FourCC("grow"), bytes.data(), uint32_t(bytes.size()));
    }
    uint32_t payload = 4;
};
}  // namespace

TEST(StateChunkSize, AChangeBetweenSizeAndChunkLeavesTheRecordAlone) {
    GrowingState module;
    BR::Test::ManualHost host(module);
    uint32_t size = 0;
    ASSERT_EQ(module.GetChunkSize(BR::kChunkIdChunky, &size), BR::kNoErr);
    EXPECT_EQ(size, 12u + 8u + 4u);

    module.payload = 9;  // now 12 bytes of payload
    BR::ChunkRecord record{};
    record.size = 1234;
    record.version = 55;
    std::strcpy(record.name, "untouched");
    EXPECT_EQ(module.GetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    EXPECT_EQ(record.size, 1234u);
    EXPECT_EQ(record.version, 55u);
    EXPECT_STREQ(record.name, "untouched");
    EXPECT_TRUE(record.data.empty());

    // Asked for the size again, the host gets the chunk.
    ASSERT_EQ(module.GetChunkSize(BR::kChunkIdChunky, &size), BR::kNoErr);
    EXPECT_EQ(size, 12u + 8u + 12u);
    EXPECT_EQ(module.GetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    EXPECT_EQ(record.size, size);
    EXPECT_EQ(record.data.size(), size);
    EXPECT_EQ(record.data[20], 7);
}
