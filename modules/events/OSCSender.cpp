// OSCSender: the ring of 64 {channel, value} entries and the thread that sends each as a bundle.
#include "OSCSender.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <system_error>

#include "framework/OSCTransmit.h"

namespace BR {

OSCSender::OSCSender() : shared(std::make_shared<Shared>()) {
    SetPath(0, "/1/foo", 6);
    SetPath(1, "/2/foo", 6);
}

OSCSender::~OSCSender() {
    Stop();
}

void OSCSender::Start() {
    if (thread.joinable()) {
        std::fputs("Warning: Attempt to recreate OSC task\n", stderr);
        return;
    }
    shared->events.Reset();
    shared->done.store(false);
    try {
        std::shared_ptr<Shared> state = shared;
        thread = std::thread([state] { Run(state); });
    } catch (const std::system_error& e) {
        std::fprintf(stderr, "failed to create OSC notify thread: %d\n", e.code().value());
    }
}

void OSCSender::Stop() {
    if (!thread.joinable()) return;
    shared->events.Signal(kQuitEvent);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(5000);
    while (!shared->done.load() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    if (shared->done.load()) {
        thread.join();
    } else {
        // A thread cannot be killed here: it is let go, holding its own reference to the ring.
        thread.detach();
        std::shared_ptr<Shared> fresh = std::make_shared<Shared>();
        std::memcpy(fresh->paths, shared->paths, sizeof fresh->paths);
        fresh->address.store(shared->address.load());
        fresh->port.store(shared->port.load());
        fresh->resolved.store(shared->resolved.load());
        shared = fresh;
    }
}

bool OSCSender::Post(int32_t channel, float value) {
    Shared& s = *shared;
    const int32_t w = s.writeIndex.load(std::memory_order_relaxed);
    if (s.readIndex.load(std::memory_order_acquire) == w) {
        // Full: the entry the reader holds is the next to write.
        s.overflows.fetch_add(1, std::memory_order_relaxed);
        std::fputs("OSCSender::SetParamQueue::Write() overflow\n", stderr);
        return false;
    }
    s.entries[w] = Entry{channel, value};
    s.writeIndex.store((w + 1) % kEntries, std::memory_order_release);
    s.events.Signal(kWorkEvent);
    return true;
}

void OSCSender::SetPath(int32_t channel, const char* text, uint32_t length) {
    char* path = shared->paths[channel & 1];
    const size_t n = text ? strnlen(text, std::min<uint32_t>(length, kPathBytes - 1)) : 0;
    // Written in place without a lock, as the thread may be reading it: the terminator goes first
    // at the new end, so that a read never runs past the array.
    path[n] = '\0';
    if (n) std::memcpy(path, text, n);
}

void OSCSender::SetTarget(uint32_t address, int32_t port, bool resolved) {
    shared->address.store(address, std::memory_order_relaxed);
    shared->port.store(port, std::memory_order_relaxed);
    shared->resolved.store(resolved, std::memory_order_relaxed);
    // A fresh try at once: entries a bad target left in the ring leave now, even a full ring, whose
    // lost posts set no event.
    shared->events.Signal(kWorkEvent);
}

void OSCSender::Run(const std::shared_ptr<Shared>& state) {
    Shared& s = *state;
    auto pass = [&s] {
        try {
            Pass(s);
        } catch (...) {
            // An unresolved host, a refused socket or send: the pass ends, what is left stays in
            // the ring for the next wake-up.
            s.failedPasses.fetch_add(1, std::memory_order_relaxed);
        }
    };
    while (s.events.Wait() != kQuitEvent)
        pass();
    // The quit event wins over work that came with it, but the values posted before it still leave:
    // a render that ends right after its last change must not lose that change.
    pass();
    s.done.store(true);
}

void OSCSender::Pass(Shared& s) {
    OSCTransmitter* transmitter = GetOSCTransmitter();
    if (!transmitter) throw std::runtime_error("no OSC transmitter installed");
    if (!s.resolved.load(std::memory_order_relaxed)) throw std::runtime_error("unresolved OSC target");
    // A new socket per wake-up, to the target as it stands now.
    std::unique_ptr<OSCDatagramSocket> socket = transmitter->Connect(
        s.address.load(std::memory_order_relaxed), s.port.load(std::memory_order_relaxed));
    for (;;) {
        const int32_t next = (s.readIndex.load(std::memory_order_relaxed) + 1) % kEntries;
        if (next == s.writeIndex.load(std::memory_order_acquire)) break;
        const Entry e = s.entries[next];
        s.readIndex.store(next, std::memory_order_release);
        char path[kPathBytes];
        std::memcpy(path, s.paths[e.channel & 1], kPathBytes);
        path[kPathBytes - 1] = '\0';
        socket->SendFloatBundle(path, e.value);
        s.packetsSent.fetch_add(1, std::memory_order_relaxed);
    }
}

}  // namespace BR
