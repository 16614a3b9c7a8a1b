// Seven auto-reset events with a wait for any of them, for the render thread.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace BR {

enum RenderEvent : int {
    kRenderQuit = 0,
    kRenderSuspend = 2,
    kRenderResized = 4,
    kRenderRedrawLabels = 5,
    kRenderRebuild = 6,
    kNumRenderEvents = 7,
};

class RenderEventSet {
public:
    void Signal(int index) {
        {
            std::lock_guard<std::mutex> lock(mutex);
            pending |= 1u << index;
        }
        condition.notify_all();
    }
    // The lowest signalled event, reset by the wait; -1 after `milliseconds` (negative: no limit).
    int WaitAny(int milliseconds) {
        std::unique_lock<std::mutex> lock(mutex);
        auto ready = [this] { return pending != 0; };
        if (milliseconds < 0) {
            condition.wait(lock, ready);
        } else if (!condition.wait_for(lock, std::chrono::milliseconds(milliseconds), ready)) {
            return -1;
        }
        for (int i = 0; i < kNumRenderEvents; ++i) {
            if (pending & (1u << i)) {
                pending &= ~(1u << i);
                return i;
            }
        }
        return -1;
    }

private:
    std::mutex mutex;
    std::condition_variable condition;
    uint32_t pending = 0;
};

}  // namespace BR
