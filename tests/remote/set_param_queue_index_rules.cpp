// The update ring: before the first read it cannot report full and overwrites silently; once
// reading has begun, the 64th unread write overflows with the diagnostic.
#include <gtest/gtest.h>

#include "remote/SetParamQueue.h"

namespace {
std::vector<uint8_t> Flags() {
    std::vector<uint8_t> flags(8, 0);
    flags[3] = 1;
    return flags;
}
}  // namespace

TEST(SetParamQueue, WritesOnlySubscribedIdsInRange) {
    std::vector<uint8_t> flags = Flags();
    BR::SignalEvents events;
    BR::SetParamQueue queue(flags, events);
    queue.Write(-1, 1.0f);
    queue.Write(8, 1.0f);
    queue.Write(2, 1.0f);  // nobody subscribed
    EXPECT_EQ(queue.WriteIndex(), 0);
    EXPECT_EQ(queue.ReadIndex(), -1);
    queue.Write(3, 0.5f);
    EXPECT_EQ(queue.WriteIndex(), 1);
    BR::SetParamQueue::Entry entry{};
    ASSERT_TRUE(queue.Read(entry));
    EXPECT_EQ(entry.id, 3);
    EXPECT_EQ(entry.value, 0.5f);
    EXPECT_EQ(queue.ReadIndex(), 0);
    EXPECT_FALSE(queue.Read(entry));
}

TEST(SetParamQueue, BurstBeforeFirstReadOverwritesWithoutMessage) {
    std::vector<uint8_t> flags = Flags();
    BR::SignalEvents events;
    BR::SetParamQueue queue(flags, events);
    testing::internal::CaptureStderr();
    for (int i = 0; i < 65; ++i)
        queue.Write(3, float(i));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(queue.WriteIndex(), 1);
    // The 65th write took slot 0 from the first; the reader sees only that one.
    BR::SetParamQueue::Entry entry{};
    ASSERT_TRUE(queue.Read(entry));
    EXPECT_EQ(entry.value, 64.0f);
    EXPECT_FALSE(queue.Read(entry));
}

TEST(SetParamQueue, SixtyFourthUnreadWriteOverflowsOnceReadingBegan) {
    std::vector<uint8_t> flags = Flags();
    BR::SignalEvents events;
    BR::SetParamQueue queue(flags, events);
    BR::SetParamQueue::Entry entry{};
    queue.Write(3, -1.0f);
    ASSERT_TRUE(queue.Read(entry));
    testing::internal::CaptureStderr();
    for (int i = 0; i < 63; ++i)
        queue.Write(3, float(i));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    testing::internal::CaptureStderr();
    queue.Write(3, 63.0f);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "OSCHelper::SetParamQueue::Write() overflow\n");
    for (int i = 0; i < 63; ++i) {
        ASSERT_TRUE(queue.Read(entry));
        EXPECT_EQ(entry.value, float(i));
    }
    EXPECT_FALSE(queue.Read(entry));
    // Later updates go on.
    queue.Write(3, 7.0f);
    ASSERT_TRUE(queue.Read(entry));
    EXPECT_EQ(entry.value, 7.0f);
}
