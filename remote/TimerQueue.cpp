// The timer thread: sleeps until the earliest due timer, calls it outside the lock, and
// reschedules a periodic one unless its callback deleted it.
#include "TimerQueue.h"

namespace BR {

TimerQueue::~TimerQueue() {
    Close();
    {
        std::lock_guard<std::mutex> guard(lock);
        quit = true;
    }
    wake.notify_all();
    if (thread.joinable()) {
        if (thread.get_id() == std::this_thread::get_id()) {
            thread.detach();
        } else {
            thread.join();
        }
    }
}

TimerQueue::Handle TimerQueue::Create(uint32_t dueMilliseconds, uint32_t periodMilliseconds,
                                      Callback callback, void* context) {
    std::lock_guard<std::mutex> guard(lock);
    const Handle handle = nextHandle++;
    if (closed) return handle;
    if (!thread.joinable()) thread = std::thread([this] { Run(); });
    timers[handle] = Timer{Clock::now() + std::chrono::milliseconds(dueMilliseconds), periodMilliseconds,
                           callback, context};
    wake.notify_all();
    return handle;
}

bool TimerQueue::Change(Handle handle, uint32_t dueMilliseconds, uint32_t periodMilliseconds) {
    std::lock_guard<std::mutex> guard(lock);
    auto it = timers.find(handle);
    if (it == timers.end()) return false;
    it->second.due = Clock::now() + std::chrono::milliseconds(dueMilliseconds);
    it->second.period = periodMilliseconds;
    wake.notify_all();
    return true;
}

void TimerQueue::Delete(Handle handle) {
    std::lock_guard<std::mutex> guard(lock);
    timers.erase(handle);
    wake.notify_all();
}

void TimerQueue::Close() {
    std::unique_lock<std::mutex> guard(lock);
    closed = true;
    timers.clear();
    wake.notify_all();
    if (thread.joinable() && thread.get_id() == std::this_thread::get_id()) return;
    wake.wait(guard, [this] { return running == 0; });
}

void TimerQueue::Run() {
    std::unique_lock<std::mutex> guard(lock);
    while (!quit) {
        auto earliest = timers.end();
        for (auto it = timers.begin(); it != timers.end(); ++it)
            if (earliest == timers.end() || it->second.due < earliest->second.due) earliest = it;
        if (earliest == timers.end()) {
            wake.wait(guard);
            continue;
        }
        if (earliest->second.due > Clock::now()) {
            // A copy: the timer may be deleted while the lock is released, and the wait reads the
            // time again when it wakes.
            const Clock::time_point due = earliest->second.due;
            wake.wait_until(guard, due);
            continue;
        }
        const Handle handle = earliest->first;
        Timer timer = earliest->second;
        // A period of 0 fires once; the entry goes before the call, so the callback finds it gone.
        if (timer.period == 0) {
            timers.erase(earliest);
        } else {
            earliest->second.due = timer.due + std::chrono::milliseconds(timer.period);
            // A queue that fell behind does not fire a burst to catch up.
            if (earliest->second.due < Clock::now())
                earliest->second.due = Clock::now() + std::chrono::milliseconds(timer.period);
        }
        running = handle;
        guard.unlock();
        timer.callback(timer.context, handle);
        guard.lock();
        running = 0;
        wake.notify_all();
    }
}

}  // namespace BR
