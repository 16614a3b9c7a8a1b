// FindInstance returns a registered instance with the registry lock still held, for the caller to
// release; for an unknown one it returns null and releases the lock.
#include <gtest/gtest.h>

#include <future>
#include <memory>

#include "framework/InstanceRegistry.h"
#include "tests/support/ProbeModule.h"

namespace {
// Whether another thread could take the lock right now.
bool FreeForOthers() {
    return std::async(std::launch::async,
                      [] {
                          std::recursive_mutex& lock = BR::InstanceRegistry::Lock();
                          if (!lock.try_lock()) return false;
                          lock.unlock();
                          return true;
                      })
        .get();
}
}  // namespace

TEST(RegistryFindInstance, FoundLeavesTheLockHeld) {
    BR::Test::ProbeModule module;
    ASSERT_TRUE(FreeForOthers());
    EXPECT_EQ(BR::InstanceRegistry::FindInstance(&module), &module);
    EXPECT_FALSE(FreeForOthers());
    BR::InstanceRegistry::Lock().unlock();
    EXPECT_TRUE(FreeForOthers());
}

TEST(RegistryFindInstance, NotFoundReleasesIt) {
    auto gone = std::make_unique<BR::Test::ProbeModule>();
    BrelCorvaneBase* pointer = gone.get();
    gone.reset();
    EXPECT_EQ(BR::InstanceRegistry::FindInstance(pointer), nullptr);
    EXPECT_TRUE(FreeForOthers());
}

TEST(RegistryLock, IsRecursive) {
    std::lock_guard<std::recursive_mutex> outer(BR::InstanceRegistry::Lock());
    BR::Test::ProbeModule module;  // AddInstance takes the lock again on this thread
    uint32_t localId = 0, globalId = 0;
    EXPECT_TRUE(BR::InstanceRegistry::GetInstanceIds(&module, localId, globalId));
    EXPECT_EQ(localId, 1u);
}
