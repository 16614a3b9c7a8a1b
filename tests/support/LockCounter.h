// Counts mutex locks taken by the current thread while a LockScope is active, to prove that a path
// of the audio thread takes no lock.
#pragma once

#include <cstdint>

namespace BR::Test {

class LockScope {
public:
    LockScope();
    ~LockScope();
    LockScope(const LockScope&) = delete;
    LockScope& operator=(const LockScope&) = delete;
    // Locks taken (or tried) by this thread since the scope began.
    uint64_t Count() const;

private:
    uint64_t start;
    bool wasActive;
};

}  // namespace BR::Test
