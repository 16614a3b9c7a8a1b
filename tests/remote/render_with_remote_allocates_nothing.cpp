// Rendering with no subscriber and no script allocates nothing and takes no lock; a change of a
// subscribed parameter costs the audio thread neither an allocation nor a lock in the server's
// hook, and still reaches the subscriber. The learn table's MIDI hook, which a Learner installs for
// the whole process and which takes the registry lock twice per controller by design, is kept out of
// the first count whatever tests ran before in this process.
#include <gtest/gtest.h>

#include "RemoteRig.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/LockCounter.h"

using namespace BR::Test;

TEST(RemoteRealTime, RenderingWithoutSubscriberOrScriptAllocatesNothing) {
    const GlobalMIDIHookScope noLearner(nullptr);
    auto driver = MakeRemoteDriver("lfo", 17360, 1);
    ASSERT_TRUE(WaitListening(*driver, 17361));
    std::vector<float> left(256), right(256);
    float* outputs[2] = {left.data(), right.data()};
    const uint8_t note[3] = {0x90, 60, 100}, cc[3] = {0xB0, 6, 1};
    const BR::TimedMidi midi[2] = {{10, 3, note}, {20, 3, cc}};
    driver->Process(nullptr, outputs, 256, midi, 2);  // first block outside the count
    uint64_t allocations = 0, locks = 0;
    {
        AllocationScope allocationScope;
        LockScope lockScope;
        for (int block = 0; block < 50; ++block)
            driver->Process(nullptr, outputs, 256, midi, 2);
        allocations = allocationScope.Count();
        locks = lockScope.Count();
    }
    EXPECT_EQ(allocations, 0u);
    EXPECT_EQ(locks, 0u);
}

TEST(RemoteRealTime, SubscribedChangeCostsNoAllocationAndNoLock) {
    auto driver = MakeRemoteDriver("lfo", 17370, 1);
    ASSERT_TRUE(WaitListening(*driver, 17371));
    UdpPeer client;
    client.Send(17371, "/registerUpdate",
                [&](osc::OutboundPacketStream& s) { s << osc::int32(1) << client.Client().c_str() << "/u"; });
    BR::OSCHelper* osc = BR::OSCHelperOf(driver->Module());
    ASSERT_TRUE(WaitFor([&] { return osc->UpdateFlag(1); }));
    // The sanity check that the counter sees locks at all.
    {
        std::mutex m;
        LockScope scope;
        m.lock();
        m.unlock();
        ASSERT_EQ(scope.Count(), 1u);
    }
    uint64_t allocations = 0, locks = 0;
    {
        AllocationScope allocationScope;
        LockScope lockScope;
        osc->ParameterChanged(1, 3.5f);  // what the module's setter hands the server
        allocations = allocationScope.Count();
        locks = lockScope.Count();
    }
    EXPECT_EQ(allocations, 0u);
    EXPECT_EQ(locks, 0u);
    EXPECT_EQ(client.Receive(), "/u i:1 f:3.5");
}
