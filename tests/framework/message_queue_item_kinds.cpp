// Items carry short messages, byte blocks with time stamp 0, and 32-bit commands in the status bytes.
#include <gtest/gtest.h>

#include "framework/MessageQueue.h"

TEST(MessageQueueItemKinds, ShortSysExAndCommand) {
    BR::MessageQueue queue;
    ASSERT_TRUE(queue.Write(0x90, 9, 60, 127, 33));
    const uint8_t bytes[] = {1, 2, 3, 0xF7};
    ASSERT_TRUE(queue.WriteSysEx(bytes, 4));
    ASSERT_TRUE(queue.Write(64094u));

    BR::MessageQueueItem* item = queue.Read();
    EXPECT_EQ(item->kind, BR::kMessageShortMIDI);
    EXPECT_EQ(item->status, 0x90);
    EXPECT_EQ(item->channel, 9);
    EXPECT_EQ(item->dataByte1, 60);
    EXPECT_EQ(item->dataByte2, 127);
    EXPECT_EQ(item->timeStamp, 33u);

    item = queue.Read();
    EXPECT_EQ(item->kind, BR::kMessageByteBlock);
    EXPECT_EQ(item->bytes, std::vector<uint8_t>({1, 2, 3, 0xF7}));
    EXPECT_EQ(item->timeStamp, 0u);

    item = queue.Read();
    EXPECT_EQ(item->kind, BR::kMessageCommand);
    EXPECT_EQ(item->Command(), 64094u);
    EXPECT_EQ(item->timeStamp, 0u);
}
