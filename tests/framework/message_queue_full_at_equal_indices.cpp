// With both indices at 5 the queue is full with 63 unread items and a write fails with the text.
#include <gtest/gtest.h>

#include "framework/MessageQueue.h"

TEST(MessageQueueFull, EqualIndicesMeanFullAndWriteFailsWithText) {
    BR::MessageQueue queue;
    queue.SetIndicesForTest(5, 5);
    EXPECT_TRUE(queue.IsFull());
    testing::internal::CaptureStderr();
    EXPECT_FALSE(queue.Write(0x90, 0, 60, 100, 0));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "MessageQueue::Write() overflow\n");
    testing::internal::CaptureStderr();
    const uint8_t bytes[] = {1, 2, 0xF7};
    EXPECT_FALSE(queue.WriteSysEx(bytes, 3));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "MessageQueue::WriteSysEx() overflow\n");
    EXPECT_EQ(queue.WriteIndex(), 5);

    // 63 unread items: slots 6, 7, ..., 63, 0, ..., 4.
    int unread = 0;
    while (queue.Read())
        ++unread;
    EXPECT_EQ(unread, 63);
    EXPECT_EQ(queue.ReadIndex(), 4);
}

TEST(MessageQueueFull, HoldsAtMost63UnreadAfterTheFirstRound) {
    BR::MessageQueue queue;
    ASSERT_TRUE(queue.Write(1u));
    ASSERT_NE(queue.Read(), nullptr);  // reader now stands on slot 0
    int written = 0;
    testing::internal::CaptureStderr();
    while (queue.Write(uint32_t(written)))
        ++written;
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "MessageQueue::Write() overflow\n");
    EXPECT_EQ(written, 63);
    for (int i = 0; i < 63; ++i) {
        BR::MessageQueueItem* item = queue.Read();
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(item->kind, BR::kMessageCommand);
        EXPECT_EQ(item->Command(), uint32_t(i));
    }
    EXPECT_EQ(queue.Read(), nullptr);
}

TEST(MessageQueueFull, SixtyFourWritesInTheFirstRoundLookEmptyToTheReader) {
    BR::MessageQueue queue;
    for (int i = 0; i < 64; ++i)
        ASSERT_TRUE(queue.Write(uint32_t(i)));
    EXPECT_EQ(queue.WriteIndex(), 0);
    // writeIndex now equals the reader's successor: the reader sees nothing until it goes round.
    EXPECT_EQ(queue.Read(), nullptr);
    EXPECT_EQ(queue.ReadIndex(), -1);
}
