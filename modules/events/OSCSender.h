// The ring and thread through which CV To OSC's values leave as UDP packets, away from the audio
// thread: 64 entries, one writer (audio) and one reader (the sender thread), and the target and
// paths that any thread may set.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>

#include "framework/SignalEvents.h"

namespace BR {

class OSCSender {
public:
    static constexpr int32_t kEntries = 64;
    static constexpr int32_t kPathBytes = 256;  // a path keeps at most 255 characters
    static constexpr int kQuitEvent = 0;
    static constexpr int kWorkEvent = 1;

    struct Entry {
        int32_t channel;
        float value;
    };

    OSCSender();
    ~OSCSender();
    OSCSender(const OSCSender&) = delete;
    OSCSender& operator=(const OSCSender&) = delete;

    // Starts the thread; a second start while it runs warns and does nothing.
    void Start();
    // Sets the quit event and waits up to 5000 ms for the thread, then lets it go.
    void Stop();
    bool Running() const { return thread.joinable(); }

    // Audio thread: stores the value and wakes the thread. False, with a diagnostic, when the ring
    // is full: the value is lost.
    bool Post(int32_t channel, float value);

    // Any thread, without a lock: the sender reads them as they stand when it next sends.
    void SetPath(int32_t channel, const char* text, uint32_t length);
    const char* Path(int32_t channel) const { return shared->paths[channel & 1]; }
    // An unresolved target makes every pass fail until another is set. Wakes the thread.
    void SetTarget(uint32_t address, int32_t port, bool resolved);
    uint32_t TargetAddress() const { return shared->address.load(std::memory_order_relaxed); }
    int32_t TargetPort() const { return shared->port.load(std::memory_order_relaxed); }
    bool TargetResolved() const { return shared->resolved.load(std::memory_order_relaxed); }

    // Observation for tests and diagnostics.
    int32_t ReadIndex() const { return shared->readIndex.load(std::memory_order_acquire); }
    int32_t WriteIndex() const { return shared->writeIndex.load(std::memory_order_acquire); }
    const Entry& EntryAt(int32_t i) const { return shared->entries[i]; }
    uint32_t Overflows() const { return shared->overflows.load(std::memory_order_relaxed); }
    // Wake-ups that ended in an exception, and packets handed to a socket.
    uint32_t FailedPasses() const { return shared->failedPasses.load(std::memory_order_relaxed); }
    uint32_t PacketsSent() const { return shared->packetsSent.load(std::memory_order_relaxed); }

private:
    // Everything the thread touches; shared with it, so that a thread let go at Stop never reads
    // freed memory.
    struct Shared {
        Entry entries[kEntries] = {};
        std::atomic<int32_t> readIndex{-1};  // the entry last read; -1 before the first
        std::atomic<int32_t> writeIndex{0};
        char paths[2][kPathBytes] = {};
        std::atomic<uint32_t> address{0};
        std::atomic<int32_t> port{-1};
        std::atomic<bool> resolved{false};
        SignalEvents events;
        std::atomic<bool> done{false};
        std::atomic<uint32_t> overflows{0}, failedPasses{0}, packetsSent{0};
    };

    static void Run(const std::shared_ptr<Shared>& state);
    static void Pass(Shared& state);

    std::shared_ptr<Shared> shared;
    std::thread thread;
};

}  // namespace BR
