// Counts heap allocations made by the current thread while a scope is active, to prove that the
// render path allocates nothing.
#pragma once

#include <cstdint>

namespace BR::Test {

class AllocationScope {
public:
    AllocationScope();
    ~AllocationScope();
    AllocationScope(const AllocationScope&) = delete;
    AllocationScope& operator=(const AllocationScope&) = delete;
    // Allocations by this thread since the scope began.
    uint64_t Count() const;

private:
    uint64_t start;
    bool wasActive;
};

}  // namespace BR::Test
