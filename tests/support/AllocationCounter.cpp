// Global operator new/delete that count per thread while an AllocationScope is active.
#include "AllocationCounter.h"

#include <cstdlib>
#include <new>

namespace {
thread_local bool counting = false;
thread_local uint64_t allocations = 0;

void* Allocate(std::size_t size) {
    if (counting) ++allocations;
    if (void* p = std::malloc(size ? size : 1)) return p;
    throw std::bad_alloc();
}

void* AllocateAligned(std::size_t size, std::align_val_t alignment) {
    if (counting) ++allocations;
    const std::size_t a = static_cast<std::size_t>(alignment);
    if (void* p = std::aligned_alloc(a, (size + a - 1) / a * a)) return p;
    throw std::bad_alloc();
}
}  // namespace

void* operator new(std::size_t size) {
    return Allocate(size);
}
void* operator new[](std::size_t size) {
    return Allocate(size);
}
void* operator new(std::size_t size, std::align_val_t a) {
    return AllocateAligned(size, a);
}
void* operator new[](std::size_t size, std::align_val_t a) {
    return AllocateAligned(size, a);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (counting) ++allocations;
    return std::malloc(size ? size : 1);
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    return operator new(size, tag);
}
void operator delete(void* p, const std::nothrow_t&) noexcept {
    std::free(p);
}
void operator delete[](void* p, const std::nothrow_t&) noexcept {
    std::free(p);
}
void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete[](void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    std::free(p);
}
void operator delete(void* p, std::align_val_t) noexcept {
    std::free(p);
}
void operator delete[](void* p, std::align_val_t) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t, std::align_val_t) noexcept {
    std::free(p);
}
void operator delete[](void* p, std::size_t, std::align_val_t) noexcept {
    std::free(p);
}

namespace BR::Test {

AllocationScope::AllocationScope() : start(allocations), wasActive(counting) {
    counting = true;
}
AllocationScope::~AllocationScope() {
    counting = wasActive;
}
uint64_t AllocationScope::Count() const {
    return allocations - start;
}

}  // namespace BR::Test
