// The lock-free update ring between parameter setters and the notify thread.
#include "SetParamQueue.h"

#include <cstdio>

namespace BR {

SetParamQueue::SetParamQueue(const std::vector<uint8_t>& updateFlags_, SignalEvents& notifyEvents_)
    : updateFlags(updateFlags_), notifyEvents(notifyEvents_) {}

void SetParamQueue::Write(int32_t id, float value) {
    if (id < 0 || size_t(id) >= updateFlags.size()) return;
    // The flag is written by the receive thread and read here byte-wide, without ordering.
    if (std::atomic_ref<uint8_t>(const_cast<uint8_t&>(updateFlags[size_t(id)]))
            .load(std::memory_order_relaxed) == 0)
        return;
    const int32_t write = writeIndex.load(std::memory_order_relaxed);
    if (readIndex.load(std::memory_order_acquire) == write) {
        std::fputs("OSCHelper::SetParamQueue::Write() overflow\n", stderr);
        return;
    }
    entries[write] = Entry{id, value};
    writeIndex.store(write + 1 == kNumEntries ? 0 : write + 1, std::memory_order_release);
    notifyEvents.Signal(kQueueNotEmptyEvent);
}

bool SetParamQueue::Read(Entry& entry) {
    const int32_t read = readIndex.load(std::memory_order_relaxed);
    const int32_t next = read + 1 == kNumEntries ? 0 : read + 1;
    if (next == writeIndex.load(std::memory_order_acquire)) return false;
    entry = entries[next];
    readIndex.store(next, std::memory_order_release);
    return true;
}

}  // namespace BR
