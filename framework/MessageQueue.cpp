// Index rules of the 64-slot message ring.
#include "MessageQueue.h"

#include <cstdio>
#include <cstring>

namespace BR {

uint32_t MessageQueueItem::Command() const {
    const uint8_t b[4] = {status, channel, dataByte1, dataByte2};
    uint32_t command;
    std::memcpy(&command, b, 4);
    return command;
}

void MessageQueueItem::SetCommand(uint32_t command) {
    uint8_t b[4];
    std::memcpy(b, &command, 4);
    status = b[0];
    channel = b[1];
    dataByte1 = b[2];
    dataByte2 = b[3];
}

MessageQueue::MessageQueue() {
    for (auto& item : items)
        item = new MessageQueueItem;
}

MessageQueue::~MessageQueue() {
    for (auto* item : items)
        delete item;
}

bool MessageQueue::IsFull() const {
    return readIndex.load(std::memory_order_acquire) == writeIndex.load(std::memory_order_relaxed);
}

MessageQueueItem* MessageQueue::BeginWrite(const char* overflowText) {
    if (IsFull()) {
        std::fputs(overflowText, stderr);
        return nullptr;
    }
    return items[writeIndex.load(std::memory_order_relaxed)];
}

void MessageQueue::CommitWrite() {
    const int32_t next = (writeIndex.load(std::memory_order_relaxed) + 1) % kNumItems;
    writeIndex.store(next, std::memory_order_release);
}

bool MessageQueue::Write(uint8_t status, uint8_t channel, uint8_t dataByte1, uint8_t dataByte2,
                         uint32_t timeStamp) {
    MessageQueueItem* item = BeginWrite("MessageQueue::Write() overflow\n");
    if (!item) return false;
    item->kind = kMessageShortMIDI;
    item->status = status;
    item->channel = channel;
    item->dataByte1 = dataByte1;
    item->dataByte2 = dataByte2;
    item->timeStamp = timeStamp;
    CommitWrite();
    return true;
}

bool MessageQueue::Write(uint32_t command) {
    MessageQueueItem* item = BeginWrite("MessageQueue::Write() overflow\n");
    if (!item) return false;
    item->kind = kMessageCommand;
    item->SetCommand(command);
    item->timeStamp = 0;
    CommitWrite();
    return true;
}

bool MessageQueue::WriteSysEx(const uint8_t* data, uint32_t length) {
    MessageQueueItem* item = BeginWrite("MessageQueue::WriteSysEx() overflow\n");
    if (!item) return false;
    item->kind = kMessageByteBlock;
    item->bytes.resize(length);
    if (length) std::memcpy(item->bytes.data(), data, length);
    item->timeStamp = 0;
    CommitWrite();
    return true;
}

void MessageQueue::SetIndicesForTest(int32_t read, int32_t write) {
    readIndex.store(read);
    writeIndex.store(write);
}

}  // namespace BR
