// Serial port queues and the symbol tables of both expander families, built once from their rules.
#include "SerialPort.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace BR {

namespace {

constexpr int32_t kMaxTableLength = 64;

// Symbol of sample c of a byte at a five-byte expander's rate class. The uneven rows are how the
// hardware's receiver expects the bits at those rates; no formula of bit length replaces them.
uint8_t FiveByteSymbol(int32_t rateClass, int32_t c) {
    static constexpr uint8_t k44100[15] = {0, 1, 1, 2, 3, 3, 4, 5, 5, 6, 7, 8, 8, 9, 10};
    switch (rateClass) {
        case 1:
            return k44100[c];
        case 2:
            return uint8_t(2 * (c / 3) + (c % 3 == 2 ? 1 : 0));
        case 3:
            if (c < 11) return uint8_t(c / 3);
            if (c < 25) return uint8_t((c - 11) / 3 + 4);
            return uint8_t((c - 25) / 3 + 9);
        case 4:
            return uint8_t(c / 3);
        case 5:
            if (c < 11) return uint8_t(c / 6);
            if (c < 28) return uint8_t((c - 11) / 6 + 2);
            if (c < 39) return uint8_t((c - 28) / 6 + 5);
            return uint8_t((c - 39) / 6 + 7);
        case 6:
            if (c < 19) return uint8_t(c / 6);
            return uint8_t((c - 19) / 6 + 3);
        default:
            return kSymbolHold;
    }
}

constexpr int32_t kFiveByteLength[7] = {0, 15, 16, 29, 31, 58, 62};

struct Tables {
    std::array<std::array<uint8_t, kMaxTableLength>, 7> five{};
    std::array<std::array<uint8_t, kMaxTableLength>, 7> six{};
    int32_t sixLength[7] = {};

    Tables() {
        for (int32_t r = 1; r <= 6; ++r)
            for (int32_t c = 0; c < kFiveByteLength[r]; ++c)
                five[size_t(r)][size_t(c)] = FiveByteSymbol(r, c);
        // Six-byte expanders keep the 44100 (odd classes) or 48000 (even classes) pattern and hold
        // each symbol 1, 2 or 4 samples; the end of the byte acts on the last of them only.
        for (int32_t r = 1; r <= 6; ++r) {
            const int32_t baseClass = (r & 1) ? 1 : 2;
            const int32_t shift = (r - 1) / 2;
            const int32_t hold = 1 << shift;
            sixLength[r] = kFiveByteLength[baseClass] * hold;
            for (int32_t c = 0; c < sixLength[r]; ++c) {
                uint8_t symbol = FiveByteSymbol(baseClass, c >> shift);
                if (symbol == kSymbolEnd && (c & (hold - 1)) != hold - 1) symbol = kSymbolHold;
                six[size_t(r)][size_t(c)] = symbol;
            }
        }
    }
};

const Tables& GetTables() {
    static const Tables tables;
    return tables;
}

}  // namespace

int32_t RateClassOf(float sampleRate) {
    // Exact comparisons: a rate that is not one of the six gives frames without any MIDI line.
    if (sampleRate == 44100.0f) return 1;
    if (sampleRate == 48000.0f) return 2;
    if (sampleRate == 88200.0f) return 3;
    if (sampleRate == 96000.0f) return 4;
    if (sampleRate == 176400.0f) return 5;
    if (sampleRate == 192000.0f) return 6;
    return 0;
}

SymbolTable GetSymbolTable(SerialTiming timing, int32_t rateClass) {
    if (rateClass < 1 || rateClass > 6) return SymbolTable{nullptr, 0};
    const Tables& t = GetTables();
    if (timing == SerialTiming::kFiveByte)
        return SymbolTable{t.five[size_t(rateClass)].data(), kFiveByteLength[rateClass]};
    return SymbolTable{t.six[size_t(rateClass)].data(), t.sixLength[rateClass]};
}

void SerialPort::Reset() {
    queue.clear();
    queue.shrink_to_fit();
    queue.resize(kPortInitialCapacity);
    head = queueLength = symbolCounter = 0;
}

bool SerialPort::Send(const uint8_t* bytes, int32_t count) {
    if (count <= 0) return true;
    if (!CanTake(count)) return false;
    const size_t needed = size_t(queueLength) + size_t(count);
    // The queue drains from `head`: this is the same as moving the rest down at each sent byte,
    // without the cost of doing it at each byte. The move happens here, when room is needed.
    if (size_t(head) + needed > queue.size()) {
        if (queueLength > 0) std::memmove(queue.data(), queue.data() + head, size_t(queueLength));
        head = 0;
        if (needed > queue.size()) {
            size_t capacity = std::max<size_t>(queue.size(), kPortInitialCapacity);
            while (capacity < needed)
                capacity *= 2;
            queue.resize(std::min<size_t>(capacity, kPortMaxBytes));
        }
    }
    std::memcpy(queue.data() + head + queueLength, bytes, size_t(count));
    queueLength += count;
    if (symbolCounter == 0) symbolCounter = 1;
    return true;
}

}  // namespace BR
