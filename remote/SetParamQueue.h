// The bounded ring that carries changed parameters from whichever thread sets them to the notify
// thread: one writer and one reader at a time, no lock, no allocation.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "framework/SignalEvents.h"

namespace BR {

class SetParamQueue {
public:
    static constexpr int32_t kNumEntries = 64;
    static constexpr int kQueueNotEmptyEvent = 1;

    struct Entry {
        int32_t id;
        float value;
    };

    // `updateFlags` marks the ids that have subscribers; `notifyEvents` wakes the reader.
    SetParamQueue(const std::vector<uint8_t>& updateFlags, SignalEvents& notifyEvents);

    // Writer side: a parameter nobody subscribed to costs a range test and a byte test. A full ring
    // loses the entry with a diagnostic. The read index starts at -1 so that the first entry lands
    // in slot 0; until the reader has taken one, it cannot equal the write index, so a burst of more
    // than 64 writes before the first read overwrites the oldest entries without a message. That is
    // how the ring is meant to behave, and it is kept.
    void Write(int32_t id, float value);
    // Reader side: the next entry, false when the ring is empty.
    bool Read(Entry& entry);

    int32_t ReadIndex() const { return readIndex.load(std::memory_order_relaxed); }
    int32_t WriteIndex() const { return writeIndex.load(std::memory_order_relaxed); }

private:
    const std::vector<uint8_t>& updateFlags;
    SignalEvents& notifyEvents;
    std::atomic<int32_t> readIndex{-1};
    std::atomic<int32_t> writeIndex{0};
    Entry entries[kNumEntries] = {};
};

}  // namespace BR
