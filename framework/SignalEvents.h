// Auto-reset events for the server threads: a set of signal bits in one atomic word, waited on
// with the futex behind std::atomic::wait. Signalling takes no lock and allocates nothing, so the
// audio thread may signal the notify thread.
#pragma once

#include <atomic>
#include <cstdint>

namespace BR {

class SignalEvents {
public:
    // Sets event `index` (0 to 31) and wakes the waiter.
    void Signal(int index) {
        bits.fetch_or(uint32_t(1) << index, std::memory_order_release);
        bits.notify_one();
    }
    // Blocks until at least one event is set, then clears all and returns the lowest set index: the
    // quit event (index 0) wins over any other, as a wait on several handles gives the first.
    // Events other than the one returned stay set.
    int Wait() {
        for (;;) {
            uint32_t now = bits.load(std::memory_order_acquire);
            while (now == 0) {
                bits.wait(0, std::memory_order_acquire);
                now = bits.load(std::memory_order_acquire);
            }
            const int index = __builtin_ctz(now);
            const uint32_t mask = uint32_t(1) << index;
            if (bits.fetch_and(~mask, std::memory_order_acq_rel) & mask) return index;
        }
    }
    void Reset() { bits.store(0, std::memory_order_relaxed); }

private:
    std::atomic<uint32_t> bits{0};
};

}  // namespace BR
