// Two chunks: index 0 "elck" (0x656c636b) and index 1 "Chnk" (0x43686e6b). An unknown index gives id 0
// and -20006, an unknown id -20007. Records carry version 132609 and the specified names.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/ProbeModule.h"

using namespace BR::Test;

TEST(StateChunks, IdsFromIndex) {
    ProbeModule module;
    ManualHost host(module);
    EXPECT_EQ(module.GetNumberOfChunks(), 2);
    uint32_t id = 1;
    EXPECT_EQ(module.GetChunkIDFromIndex(0, &id), BR::kNoErr);
    EXPECT_EQ(id, 0x656c636bu);
    EXPECT_EQ(module.GetChunkIDFromIndex(1, &id), BR::kNoErr);
    EXPECT_EQ(id, 0x43686e6bu);
    EXPECT_EQ(module.GetChunkIDFromIndex(2, &id), -20006);
    EXPECT_EQ(id, 0u);
    id = 1;
    EXPECT_EQ(module.GetChunkIDFromIndex(-1, &id), -20006);
    EXPECT_EQ(id, 0u);
}

TEST(StateChunks, UnknownIdGives20007) {
    ProbeModule module;
    ManualHost host(module);
    uint32_t size = 0;
    EXPECT_EQ(module.GetChunkSize(BR::FourCC("abcd"), &size), -20007);
    BR::ChunkRecord record{};
    EXPECT_EQ(module.GetChunk(BR::FourCC("abcd"), &record), -20007);
    EXPECT_EQ(module.SetChunk(BR::FourCC("abcd"), &record), -20007);
}

TEST(StateChunks, RecordsCarryVersionNameAndSize) {
    ProbeModule module;
    ManualHost host(module);
    uint32_t size = 0;
    BR::ChunkRecord record{};
    ASSERT_EQ(module.GetChunkSize(BR::kChunkIdChunky, &size), BR::kNoErr);
    ASSERT_EQ(module.GetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    EXPECT_EQ(record.version, 132609u);
    EXPECT_STREQ(record.name, "Chunky Chunk");
    EXPECT_EQ(record.size, size);
    EXPECT_EQ(record.data.size(), size);

    BR::ChunkRecord controls{};
    ASSERT_EQ(module.GetChunkSize(BR::kChunkIdControls, &size), BR::kNoErr);
    ASSERT_EQ(module.GetChunk(BR::kChunkIdControls, &controls), BR::kNoErr);
    EXPECT_EQ(controls.version, 132609u);
    EXPECT_STREQ(controls.name, "Complete Controls State");
    EXPECT_EQ(controls.size, size);
    EXPECT_EQ(controls.data.size(), size);
}
