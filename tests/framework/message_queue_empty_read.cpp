// An empty queue read gives none and leaves the read index where it was.
#include <gtest/gtest.h>

#include "framework/MessageQueue.h"

TEST(MessageQueueEmptyRead, GivesNoneAndKeepsReadIndex) {
    BR::MessageQueue queue;
    EXPECT_EQ(queue.ReadIndex(), -1);
    EXPECT_EQ(queue.Read(), nullptr);
    EXPECT_EQ(queue.ReadIndex(), -1);

    ASSERT_TRUE(queue.Write(0x90, 0, 60, 100, 7));
    BR::MessageQueueItem* item = queue.Read();
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->timeStamp, 7u);
    EXPECT_EQ(queue.ReadIndex(), 0);
    EXPECT_EQ(queue.Read(), nullptr);
    EXPECT_EQ(queue.ReadIndex(), 0);
}
