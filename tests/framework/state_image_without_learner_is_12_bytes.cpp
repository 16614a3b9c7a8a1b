// A module without extra state, with no Learner in the process, writes an image of exactly 12 bytes:
// the magic 0x4272656c (bytes "lerB"), format version 1, and 0 bytes behind.
#include <gtest/gtest.h>

#include <memory>

#include "framework/StateChunkStore.h"
#include "modules/ModuleFactory.h"
#include "tests/support/LearnerStandIn.h"

TEST(StateImage, TwelveBytesWithoutLearner) {
    auto dc = BR::CreateModule("dc");
    BR::Test::ManualHost host(*dc);
    uint32_t size = 0;
    ASSERT_EQ(dc->GetChunkSize(BR::kChunkIdChunky, &size), BR::kNoErr);
    EXPECT_EQ(size, 12u);
    BR::ChunkRecord record{};
    ASSERT_EQ(dc->GetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    EXPECT_EQ(record.data, (std::vector<uint8_t>{'l', 'e', 'r', 'B', 1, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(StateImage, IdsAddTwoEntriesWhileALearnerLives) {
    auto dc = BR::CreateModule("dc");
    BR::Test::ManualHost host(*dc);
    auto learner = std::make_unique<BR::Test::LearnerStandIn>();
    uint32_t size = 0;
    ASSERT_EQ(dc->GetChunkSize(BR::kChunkIdChunky, &size), BR::kNoErr);
    EXPECT_EQ(size, 12u + 2 * 12u);
    BR::ChunkRecord record{};
    ASSERT_EQ(dc->GetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    // "luid" 1 (the first lookup gives it), then "guid" 1: the DC came first.
    const std::vector<uint8_t> expected = {'l', 'e', 'r', 'B', 1, 0, 0, 0, 24, 0, 0, 0,  //
                                           'd', 'i', 'u', 'l', 4, 0, 0, 0, 1,  0, 0, 0,  //
                                           'd', 'i', 'u', 'g', 4, 0, 0, 0, 1,  0, 0, 0};
    EXPECT_EQ(record.data, expected);

    learner.reset();
    ASSERT_EQ(dc->GetChunkSize(BR::kChunkIdChunky, &size), BR::kNoErr);
    EXPECT_EQ(size, 12u);
}
