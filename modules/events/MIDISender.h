// The ring and thread through which a module's MIDI leaves for an output device, away from the audio
// thread; devices are opened by name through a hook that the host layer provides.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace BR {

// An open MIDI output; Send runs on the sender thread only.
class MIDIOutputDevice {
public:
    virtual ~MIDIOutputDevice() = default;
    virtual void Send(const uint8_t* bytes, int32_t length) = 0;
};

// Opens the first device whose name equals `name` exactly; null when none does.
using MIDIOutputOpener = std::unique_ptr<MIDIOutputDevice> (*)(const std::string& name);
void SetMIDIOutputOpener(MIDIOutputOpener opener);
MIDIOutputOpener GetMIDIOutputOpener();

// The names of the devices the opener can open, in its order (for a browser of devices); the host
// layer that installs the opener installs this too. Not for the audio thread.
using MIDIOutputLister = std::vector<std::string> (*)();
void SetMIDIOutputLister(MIDIOutputLister lister);
MIDIOutputLister GetMIDIOutputLister();

class MIDISender {
public:
    static constexpr int32_t kEntries = 64;

    struct Entry {
        uint64_t timestamp;
        int32_t length;
        uint8_t bytes[3];
    };

    ~MIDISender() { Stop(); }

    // Closes the present device and opens the named one; no match leaves none, silently.
    void Open(const std::string& name);
    bool HasDevice() const { return device.load(std::memory_order_acquire) != nullptr; }
    // Audio thread: false when the ring is full (the message is lost) or no device is open.
    bool Write(uint64_t timestamp, uint8_t status, uint8_t data1, uint8_t data2);
    void Start();
    void Stop();

    int32_t ReadIndex() const { return readIndex.load(std::memory_order_acquire); }
    int32_t WriteIndex() const { return writeIndex.load(std::memory_order_acquire); }
    const Entry& EntryAt(int32_t i) const { return entries[i]; }
    uint32_t Overflows() const { return overflows.load(std::memory_order_relaxed); }

private:
    void Run();

    Entry entries[kEntries] = {};
    std::atomic<int32_t> readIndex{-1};  // the entry last read; -1 before the first
    std::atomic<int32_t> writeIndex{0};
    std::atomic<MIDIOutputDevice*> device{nullptr};
    std::unique_ptr<MIDIOutputDevice> owned;  // what `device` points at; replaced only by Open
    std::thread thread;
    std::atomic<uint32_t> wake{0};  // bumped for work; the thread waits on it
    std::atomic<bool> quit{false};
    std::atomic<uint32_t> overflows{0};
};

}  // namespace BR
