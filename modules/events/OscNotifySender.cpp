// OscNotifySender: the ring, the wake and stop events, and the thread that turns items into UDP packets.
#include "OscNotifySender.h"

#include <oscpack/ip/IpEndpointName.h>
#include <oscpack/ip/UdpSocket.h>
#include <oscpack/osc/OscOutboundPacketStream.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

namespace BrelCorvaneLearner {

void OscNotifySender::SetDestination(uint32_t address_, int32_t port_) {
    address.store(address_, std::memory_order_relaxed);
    port.store(port_, std::memory_order_relaxed);
}

void OscNotifySender::Signal(uint32_t event) {
    // A futex behind the atomic: no lock, no allocation, so the audio thread may signal.
    events.fetch_or(event, std::memory_order_release);
    events.notify_one();
}

bool OscNotifySender::Write(const char* path, float value) {
    const int32_t w = writeIndex.load(std::memory_order_relaxed);
    if (readIndex.load(std::memory_order_acquire) == w) {
        std::fputs("OSCSender::SetParamQueue::Write() overflow\n", stderr);
        return false;
    }
    Entry& e = entries[w];
    std::strncpy(e.path, path, kPathBytes - 1);
    e.path[kPathBytes - 1] = '\0';
    e.value = value;
    writeIndex.store((w + 1) % kEntries, std::memory_order_release);
    Signal(kWake);
    return true;
}

void OscNotifySender::Start() {
    if (thread.joinable()) {
        std::fputs("Warning: Attempt to recreate OSC task\n", stderr);
        return;
    }
    events.store(0, std::memory_order_relaxed);
    try {
        thread = std::thread([this] { Run(); });
    } catch (const std::system_error& e) {
        std::fprintf(stderr, "failed to create OSC notify thread: %d\n", e.code().value());
    }
}

void OscNotifySender::Stop() {
    if (!thread.joinable()) return;
    Signal(kStop);
    // A send on a UDP socket does not block for long, so the thread always ends: no need to kill it.
    thread.join();
}

void OscNotifySender::Run() {
    for (;;) {
        uint32_t now = events.load(std::memory_order_acquire);
        while (now == 0) {
            events.wait(0, std::memory_order_acquire);
            now = events.load(std::memory_order_acquire);
        }
        if (now & kStop) {
            // Stop wins over a wake that came with it, but what was written before it still leaves: a
            // host that stops right after the last change (an offline render ending) must not lose it.
            SendPending();
            return;
        }
        events.fetch_and(~uint32_t(kWake), std::memory_order_acq_rel);
        SendPending();
    }
}

void OscNotifySender::SendPending() {
    auto empty = [this] {
        return (readIndex.load(std::memory_order_relaxed) + 1) % kEntries ==
               writeIndex.load(std::memory_order_acquire);
    };
    if (empty()) return;
    const uint32_t to = address.load(std::memory_order_relaxed);
    const int32_t toPort = port.load(std::memory_order_relaxed);
    auto dropAll = [this] {
        readIndex.store((writeIndex.load(std::memory_order_acquire) + kEntries - 1) % kEntries,
                        std::memory_order_release);
    };
    // An address the dotted conversion could not read (all ones) or no port: nothing can arrive, and
    // the items are dropped, silently.
    if (to == 0xFFFFFFFFu || toPort <= 0 || toPort > 65535) return dropAll();
    try {
        // A socket per wake, connected to the destination as it stands now, closed when the ring is empty.
        UdpTransmitSocket socket(IpEndpointName(to, toPort));
        char buffer[1024];
        while (!empty()) {
            const int32_t next = (readIndex.load(std::memory_order_relaxed) + 1) % kEntries;
            const Entry e = entries[next];
            readIndex.store(next, std::memory_order_release);
            osc::OutboundPacketStream packet(buffer, sizeof buffer);
            packet << osc::BeginMessage(e.path) << e.value << osc::EndMessage;
            socket.Send(packet.Data(), packet.Size());
            sent.fetch_add(1, std::memory_order_relaxed);
        }
    } catch (...) {
        // Send failures are silent. What could not be sent is dropped, so that an unreachable
        // destination neither fills the ring nor delivers stale values later.
        dropAll();
    }
}

}  // namespace BrelCorvaneLearner
