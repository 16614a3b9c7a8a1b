// Payloads are padded with zeros to a multiple of 4, and the length field gives the padded length:
// 5 bytes are stored as 8. Entries keep the order of adding; a parsed tag that occurs twice: the
// later wins.
#include <gtest/gtest.h>

#include "framework/StateChunkStore.h"

TEST(StateStore, FiveBytesAreStoredAsEight) {
    BR::StateChunkStore store;
    const uint8_t five[5] = {1, 2, 3, 4, 5};
    store.Add(BR::FourCC("abcd"), five, 5);
    const std::vector<uint8_t> image = store.Flatten();
    const std::vector<uint8_t> expected = {'l', 'e', 'r', 'B', 1, 0, 0, 0, 16, 0, 0, 0,  //
                                           'd', 'c', 'b', 'a', 8, 0, 0, 0,               //
                                           1,   2,   3,   4,   5, 0, 0, 0};
    EXPECT_EQ(image, expected);

    BR::StateChunkStore read;
    ASSERT_TRUE(read.Parse(image.data(), image.size()));
    BR::StateChunkStore::Blob blob{};
    ASSERT_TRUE(read.Find(BR::FourCC("abcd"), blob));
    EXPECT_EQ(blob.length, 8u);
    EXPECT_EQ(std::vector<uint8_t>(blob.data, blob.data + 8), (std::vector<uint8_t>{1, 2, 3, 4, 5, 0, 0, 0}));
    EXPECT_FALSE(read.Find(BR::FourCC("none"), blob));
}

TEST(StateStore, LengthsAndOrder) {
    BR::StateChunkStore store;
    const uint8_t bytes[8] = {9, 9, 9, 9, 9, 9, 9, 9};
    store.Add(BR::FourCC("zero"), nullptr, 0);
    store.Add(BR::FourCC("four"), bytes, 4);
    store.Add(BR::FourCC("thre"), bytes, 3);
    const std::vector<uint8_t> image = store.Flatten();
    ASSERT_EQ(image.size(), 12u + 8 + 12 + 12);
    EXPECT_EQ(BR::ReadU32(image.data() + 8), 32u);
    EXPECT_EQ(BR::ReadU32(image.data() + 12), BR::FourCC("zero"));
    EXPECT_EQ(BR::ReadU32(image.data() + 16), 0u);
    EXPECT_EQ(BR::ReadU32(image.data() + 20), BR::FourCC("four"));
    EXPECT_EQ(BR::ReadU32(image.data() + 32), BR::FourCC("thre"));
    EXPECT_EQ(BR::ReadU32(image.data() + 36), 4u);
    EXPECT_EQ(image[43], 0);  // padding
}

TEST(StateStore, TheLaterOfTwoEqualTagsWins) {
    BR::StateChunkStore store;
    const uint32_t first = 1, second = 2;
    store.Add(BR::FourCC("same"), &first, 4);
    store.Add(BR::FourCC("same"), &second, 4);
    const std::vector<uint8_t> image = store.Flatten();
    BR::StateChunkStore read;
    ASSERT_TRUE(read.Parse(image.data(), image.size()));
    BR::StateChunkStore::Blob blob{};
    ASSERT_TRUE(read.Find(BR::FourCC("same"), blob));
    EXPECT_EQ(BR::ReadU32(blob.data), 2u);
}
