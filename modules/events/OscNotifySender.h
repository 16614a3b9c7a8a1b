// The Learner's notification sender: a ring of 64 {OSC path, value} items filled by whichever thread
// changes a parameter, and a thread that sends each as a one-float OSC message over UDP.
#pragma once

#include <atomic>
#include <cstdint>
#include <thread>

namespace BrelCorvaneLearner {

class OscNotifySender {
public:
    static constexpr int32_t kEntries = 64;
    static constexpr int32_t kPathBytes = 128;

    struct Entry {
        char path[kPathBytes];
        float value;
    };

    ~OscNotifySender() { Stop(); }

    // Where messages go: an IPv4 address in host byte order and a UDP port (-1: none, nothing arrives).
    void SetDestination(uint32_t address, int32_t port);
    // Any thread, one at a time: false when the ring is full (the item is lost, with a diagnostic).
    // Allocates nothing and takes no lock; wakes the thread when the item was taken.
    bool Write(const char* path, float value);
    // A second Start while the thread runs only warns.
    void Start();
    void Stop();
    bool Running() const { return thread.joinable(); }

    int32_t ReadIndex() const { return readIndex.load(std::memory_order_acquire); }
    int32_t WriteIndex() const { return writeIndex.load(std::memory_order_acquire); }
    uint32_t Sent() const { return sent.load(std::memory_order_relaxed); }

private:
    enum Event : uint32_t { kStop = 1, kWake = 2 };
    void Signal(uint32_t event);
    void Run();
    void SendPending();

    Entry entries[kEntries] = {};
    // The rule of the module message queues: readIndex is the entry last read (-1 before the first),
    // and the ring is full when it equals writeIndex.
    std::atomic<int32_t> readIndex{-1};
    std::atomic<int32_t> writeIndex{0};
    std::atomic<uint32_t> events{0};
    std::atomic<uint32_t> address{0x7F000001};
    std::atomic<int32_t> port{7000};
    std::atomic<uint32_t> sent{0};
    std::thread thread;
};

}  // namespace BrelCorvaneLearner
