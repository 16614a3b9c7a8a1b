// A timer queue of the project's own: one-shot and periodic timers whose callbacks run on one
// thread of the queue (started at the first timer), where a callback may create, change and
// delete timers, its own included.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <thread>

namespace BR {

class TimerQueue {
public:
    using Handle = uint64_t;
    using Callback = void (*)(void* context, Handle handle);

    TimerQueue() = default;
    ~TimerQueue();
    TimerQueue(const TimerQueue&) = delete;
    TimerQueue& operator=(const TimerQueue&) = delete;

    // First call after `dueMilliseconds`, then every `periodMilliseconds` (0: once).
    Handle Create(uint32_t dueMilliseconds, uint32_t periodMilliseconds, Callback callback, void* context);
    // Moves a timer's next call and period; false when the timer is gone.
    bool Change(Handle handle, uint32_t dueMilliseconds, uint32_t periodMilliseconds);
    // Deletes a timer without waiting for a callback of it that is running now (safe from inside
    // that callback). No call of it starts afterwards.
    void Delete(Handle handle);
    // Deletes every timer and waits for a running callback, unless called from one. Timers created
    // afterwards never fire.
    void Close();

private:
    using Clock = std::chrono::steady_clock;
    struct Timer {
        Clock::time_point due;
        uint32_t period;
        Callback callback;
        void* context;
    };
    void Run();

    std::mutex lock;
    std::condition_variable wake;
    std::map<Handle, Timer> timers;
    Handle nextHandle = 1;
    Handle running = 0;  // the timer whose callback runs now, 0 for none
    bool quit = false;
    bool closed = false;
    std::thread thread;
};

}  // namespace BR
