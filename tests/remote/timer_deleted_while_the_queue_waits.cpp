// Deleting the timer that the queue's thread is waiting for wakes the thread without it reading the
// deleted timer again (the sanitizer build sees any such read), and the queue goes on firing others.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "RemoteRig.h"
#include "remote/TimerQueue.h"

using namespace BR::Test;

TEST(TimerQueue, TimerDeletedWhileTheQueueWaitsForIt) {
    BR::TimerQueue queue;
    std::atomic<int> fired{0};
    auto count = [](void* context, BR::TimerQueue::Handle) { ++*static_cast<std::atomic<int>*>(context); };
    for (int round = 0; round < 20; ++round) {
        const BR::TimerQueue::Handle far = queue.Create(60000, 0, count, &fired);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));  // the thread now waits for it
        queue.Delete(far);
    }
    queue.Create(1, 0, count, &fired);
    EXPECT_TRUE(WaitFor([&] { return fired.load() == 1; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(fired.load(), 1);
}
