// pthread mutex entry points that count per thread while a LockScope is active, then go on to the
// C library's own. std::mutex, std::recursive_mutex and condition variables all lock through them.
#include "LockCounter.h"

#include <dlfcn.h>
#include <pthread.h>

namespace {
thread_local bool counting = false;
thread_local uint64_t locks = 0;

using MutexFunction = int (*)(pthread_mutex_t*);
MutexFunction realLock = nullptr;
MutexFunction realTryLock = nullptr;

// The C library's own entry, found behind this one; the C library locks internally without it.
MutexFunction Next(MutexFunction& slot, const char* name) {
    if (!slot) slot = reinterpret_cast<MutexFunction>(dlsym(RTLD_NEXT, name));
    return slot;
}
}  // namespace

extern "C" int pthread_mutex_lock(pthread_mutex_t* mutex) {
    if (counting) ++locks;
    return Next(realLock, "pthread_mutex_lock")(mutex);
}

extern "C" int pthread_mutex_trylock(pthread_mutex_t* mutex) {
    if (counting) ++locks;
    return Next(realTryLock, "pthread_mutex_trylock")(mutex);
}

namespace BR::Test {

LockScope::LockScope() : start(locks), wasActive(counting) {
    counting = true;
}
LockScope::~LockScope() {
    counting = wasActive;
}
uint64_t LockScope::Count() const {
    return locks - start;
}

}  // namespace BR::Test
