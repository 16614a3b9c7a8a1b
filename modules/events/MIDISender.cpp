// MIDISender: single-writer, single-reader ring of 64 short messages and the thread that sends them.
#include "MIDISender.h"

namespace BR {

namespace {
std::atomic<MIDIOutputOpener> opener{nullptr};
std::atomic<MIDIOutputLister> lister{nullptr};
}  // namespace

void SetMIDIOutputLister(MIDIOutputLister value) {
    lister.store(value, std::memory_order_release);
}

MIDIOutputLister GetMIDIOutputLister() {
    return lister.load(std::memory_order_acquire);
}

void SetMIDIOutputOpener(MIDIOutputOpener value) {
    opener.store(value, std::memory_order_release);
}

MIDIOutputOpener GetMIDIOutputOpener() {
    return opener.load(std::memory_order_acquire);
}

void MIDISender::Open(const std::string& name) {
    // The thread may be sending through the old device: it reads `device` afresh per message, and the
    // old one is kept until the next Open or the end, so it never sends through a closed one.
    MIDIOutputOpener open = GetMIDIOutputOpener();
    std::unique_ptr<MIDIOutputDevice> next = open && !name.empty() ? open(name) : nullptr;
    device.store(next.get(), std::memory_order_release);
    std::unique_ptr<MIDIOutputDevice> previous = std::move(owned);
    owned = std::move(next);
    if (previous && thread.joinable()) {
        // Let the thread finish a message it may be sending through the old device.
        Stop();
        previous.reset();
        Start();
    }
}

bool MIDISender::Write(uint64_t timestamp, uint8_t status, uint8_t data1, uint8_t data2) {
    if (!device.load(std::memory_order_acquire)) return false;
    const int32_t w = writeIndex.load(std::memory_order_relaxed);
    if (readIndex.load(std::memory_order_acquire) == w) {
        // Full: the reader's last entry is the next to write. The message is lost.
        overflows.fetch_add(1, std::memory_order_relaxed);
        return false;
    }
    Entry& e = entries[w];
    e.timestamp = timestamp;
    e.length = 3;
    e.bytes[0] = status, e.bytes[1] = data1, e.bytes[2] = data2;
    writeIndex.store((w + 1) % kEntries, std::memory_order_release);
    wake.fetch_add(1, std::memory_order_release);
    wake.notify_one();
    return true;
}

void MIDISender::Start() {
    if (thread.joinable()) return;
    quit.store(false);
    thread = std::thread([this] { Run(); });
}

void MIDISender::Stop() {
    if (!thread.joinable()) return;
    quit.store(true, std::memory_order_release);
    wake.fetch_add(1, std::memory_order_release);
    wake.notify_one();
    thread.join();
}

void MIDISender::Run() {
    auto sendAll = [this] {
        for (;;) {
            const int32_t next = (readIndex.load(std::memory_order_relaxed) + 1) % kEntries;
            if (next == writeIndex.load(std::memory_order_acquire)) break;
            const Entry e = entries[next];
            readIndex.store(next, std::memory_order_release);
            // Messages go out as fast as the thread gets them; the timestamp is not used for timing.
            if (MIDIOutputDevice* out = device.load(std::memory_order_acquire)) out->Send(e.bytes, e.length);
        }
    };
    uint32_t seen = wake.load(std::memory_order_acquire);
    while (!quit.load(std::memory_order_acquire)) {
        sendAll();
        wake.wait(seen, std::memory_order_acquire);
        seen = wake.load(std::memory_order_acquire);
    }
    // What was written before the stop still leaves (the last note-offs of a render that ends).
    sendAll();
}

}  // namespace BR
