// Error codes, four-character tags and counted texts shared by every part of the framework.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace BR {

// Failures are plain negative integers, in the manner of the host platform.
constexpr int32_t kNoErr = 0;
constexpr int32_t kErrInvalidParameter = -10878;
constexpr int32_t kErrInvalidProperty = -10879;
constexpr int32_t kErrUnknownParameter = -20001;
constexpr int32_t kErrDescriptorFailed = -20004;
constexpr int32_t kErrUnknownChunkIndex = -20006;
constexpr int32_t kErrUnknownChunkId = -20007;
constexpr int32_t kErrNotSupported = -20009;

// A 32-bit tag spelled by four characters, the first in the high byte ("elck" is 0x656c636b).
constexpr uint32_t FourCC(const char (&text)[5]) {
    return (uint32_t(uint8_t(text[0])) << 24) | (uint32_t(uint8_t(text[1])) << 16) |
           (uint32_t(uint8_t(text[2])) << 8) | uint32_t(uint8_t(text[3]));
}

// Reference-counted immutable value handed across the property interface: the receiver owns one
// reference and gives it back with Release().
template <class T>
class Counted {
public:
    explicit Counted(T v) : value(std::move(v)) {}
    const T& Get() const { return value; }
    void Retain() { refCount.fetch_add(1, std::memory_order_relaxed); }
    void Release() {
        if (refCount.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }
    int32_t RefCount() const { return refCount.load(std::memory_order_relaxed); }

private:
    ~Counted() = default;
    T value;
    std::atomic<int32_t> refCount{1};
};

using CountedText = Counted<std::string>;
using CountedTextList = Counted<std::vector<std::string>>;

}  // namespace BR
