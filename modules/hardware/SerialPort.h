// Serial MIDI lines carried on a gate bit, one sample at a time: the byte queue of each port and the
// symbol tables that spread start, data and stop bits over the samples at each supported rate.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace BR {

// 44100, 48000, 88200, 96000, 176400 and 192000 Hz are classes 1 to 6; any other rate is 0.
int32_t RateClassOf(float sampleRate);

// Symbols of a byte: 0 start bit, 1..8 data bits from the least significant, 9 stop bit, 10 end of
// the byte. kSymbolHold is a sample that does nothing (a held end of byte on an early sub-sample).
constexpr uint8_t kSymbolStart = 0;
constexpr uint8_t kSymbolStop = 9;
constexpr uint8_t kSymbolEnd = 10;
constexpr uint8_t kSymbolHold = 11;

// Which expander's timing a line follows: per-rate rows of their own, or the base-rate patterns held
// two or four times as long.
enum class SerialTiming { kFiveByte, kSixByte };

// Symbol table of one rate class: symbols[c] for c = symbolCounter - 1 from 0 to length - 1.
struct SymbolTable {
    const uint8_t* symbols;
    int32_t length;  // samples per byte; 0 for rate class 0, which produces no symbol
};
SymbolTable GetSymbolTable(SerialTiming timing, int32_t rateClass);

constexpr int32_t kPortInitialCapacity = 32;
constexpr int32_t kPortMaxBytes = 0x100000;
constexpr int32_t kNumSerialPorts = 8;

// One serial port: a queue of bytes waiting to go out and the position within the byte being sent.
// The queue's storage only grows in Send, never while a sample is rendered.
struct SerialPort {
    std::vector<uint8_t> queue;  // bytes from `head` on, `queueLength` of them
    int32_t head = 0;
    int32_t queueLength = 0;
    int32_t symbolCounter = 0;  // 0 when idle, else 1 + samples into the current byte

    // Empties the port and gives it its initial storage.
    void Reset();
    // Appends `count` bytes. False, appending nothing, if the queue would pass kPortMaxBytes. Wakes
    // an idle port.
    bool Send(const uint8_t* bytes, int32_t count);
    bool Send(uint8_t a) { return Send(&a, 1); }
    bool Send(uint8_t a, uint8_t b) {
        const uint8_t bytes[2] = {a, b};
        return Send(bytes, 2);
    }
    bool Send(uint8_t a, uint8_t b, uint8_t c) {
        const uint8_t bytes[3] = {a, b, c};
        return Send(bytes, 3);
    }
    // True when `count` more bytes fit.
    bool CanTake(int32_t count) const { return count <= kPortMaxBytes - queueLength; }

    // One sample of the line: returns true when the gate bit must be set in this sample.
    bool Step(const SymbolTable& table) {
        if (symbolCounter < 1) return false;
        const int32_t c = symbolCounter - 1;
        // Without a rate class the counter keeps rising and the queue never drains; it stops short
        // of overflowing.
        if (symbolCounter < 0x7FFFFFFF) ++symbolCounter;
        if (c >= table.length) return false;
        const uint8_t symbol = table.symbols[c];
        if (symbol == kSymbolStart) return true;
        if (symbol <= 8) return ((queue[size_t(head)] >> (symbol - 1)) & 1) == 0;
        if (symbol == kSymbolEnd) EndByte();
        return false;
    }

private:
    void EndByte() {
        ++head;
        --queueLength;
        symbolCounter = queueLength > 0 ? 1 : 0;
        if (queueLength == 0) head = 0;
    }
};

}  // namespace BR
