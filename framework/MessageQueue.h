// Single-reader single-writer rings of 64 preallocated items between threads and the audio path.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

namespace BR {

enum MessageKind : uint32_t {
    kMessageShortMIDI = 1,  // short MIDI message, from RenderAudio
    kMessageByteBlock = 2,  // system exclusive message or other byte block, from WriteSysEx
    kMessageCommand = 3,    // id of the property whose write caused it
};

struct MessageQueueItem {
    virtual ~MessageQueueItem() = default;
    virtual void Reserved() {}

    uint32_t kind = 0;
    uint8_t status = 0;  // high nibble of the status byte, low bits zero
    uint8_t channel = 0;
    uint8_t dataByte1 = 0;
    uint8_t dataByte2 = 0;
    std::vector<uint8_t> bytes;
    uint32_t timeStamp = 0;

    // Kind 3 keeps its 32-bit command in the four bytes from `status` on.
    uint32_t Command() const;
    void SetCommand(uint32_t command);
};

class MessageQueue {
public:
    static constexpr int32_t kNumItems = 64;

    MessageQueue();
    virtual ~MessageQueue();
    MessageQueue(const MessageQueue&) = delete;
    MessageQueue& operator=(const MessageQueue&) = delete;

    // Short MIDI message with its time stamp. False, with a diagnostic, when full.
    bool Write(uint8_t status, uint8_t channel, uint8_t dataByte1, uint8_t dataByte2, uint32_t timeStamp);
    // A command; time stamp 0.
    bool Write(uint32_t command);
    // A byte block; time stamp 0. Resizes the item's byte vector, which may allocate.
    bool WriteSysEx(const uint8_t* data, uint32_t length);

    // Next unread item, or null. The item stays valid until the next Read(). Inline: the render path
    // asks each queue at every block, and mostly finds it empty.
    MessageQueueItem* Read() {
        const int32_t next = (readIndex.load(std::memory_order_relaxed) + 1) % kNumItems;
        if (next == writeIndex.load(std::memory_order_acquire)) return nullptr;
        readIndex.store(next, std::memory_order_release);
        return items[next];
    }
    // True when a write would fail.
    bool IsFull() const;

    int32_t ReadIndex() const { return readIndex.load(std::memory_order_relaxed); }
    int32_t WriteIndex() const { return writeIndex.load(std::memory_order_relaxed); }
    // For tests of the index rules only: place both indices.
    void SetIndicesForTest(int32_t read, int32_t write);

private:
    MessageQueueItem* BeginWrite(const char* overflowText);
    void CommitWrite();

    MessageQueueItem* items[kNumItems];
    // Each index is stored by one side only; release/acquire publishes the item with the index.
    std::atomic<int32_t> readIndex{-1};
    std::atomic<int32_t> writeIndex{0};
};

}  // namespace BR
