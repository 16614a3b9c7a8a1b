// Rendering CV To OSC while both channels post values that the sender thread sends over UDP performs
// no heap allocation on the audio thread, and the listener gets each value posted.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "CVToOSCRig.h"
#include "tests/support/AllocationCounter.h"

using namespace BR::Test;

TEST(CVToOSCRealtime, RenderAllocatesNothing) {
    OSCListener listener(17808);
    ASSERT_TRUE(listener.Bound());
    CVToOSCRig rig;
    rig.Target(17808);
    rig.Set("Enable L", 1);
    rig.Set("Enable R", 1);
    rig.Set("Max Rate R", 100);
    const uint32_t block = 256;
    std::vector<float> l(block), r(block), outL(block), outR(block);
    float* outputs[2] = {outL.data(), outR.data()};
    const float* inputs[2] = {l.data(), r.data()};
    rig.driver->Process(inputs, outputs, block, nullptr, 0);
    // Read while the render runs, counting arrivals, so that the render can wait for the reader: a
    // loopback socket's default buffer holds about 256 such packets, and a slow reader (a sanitizer
    // build on a busy machine) would otherwise see the kernel drop the rest.
    std::vector<std::string> received;
    std::atomic<int> arrived{0};
    std::thread reader([&] {
        for (std::string text = listener.Receive(1000); !text.empty(); text = listener.Receive(1000)) {
            received.push_back(text);
            arrived.fetch_add(1, std::memory_order_release);
        }
    });
    int posted = 0;
    {
        AllocationScope scope;
        for (int b = 0; b < 200; ++b) {
            for (uint32_t i = 0; i < block; ++i) {
                l[i] = float((b * 37 + int(i)) % 100) / 50.0f - 1.0f;
                r[i] = -l[i];
            }
            const int32_t w = rig.Sender().WriteIndex();
            rig.driver->Process(inputs, outputs, block, nullptr, 0);
            posted += (rig.Sender().WriteIndex() - w + 64) % 64;
            // Paced like a host whose period leaves the sender thread time to run: on a loaded
            // machine a fixed pause is not enough, so wait while the ring is more than half full.
            // An overflow then means the sender lost entries, not that the test outran it.
            auto held = [&] {
                return (rig.Sender().WriteIndex() - rig.Sender().ReadIndex() - 1 +
                        2 * BR::OSCSender::kEntries) %
                       BR::OSCSender::kEntries;
            };
            for (int wait = 0; held() > BR::OSCSender::kEntries / 2 && wait < 2000; ++wait)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            // And while more than 64 packets sent are not read yet (those still in the ring count
            // as sent here, which only makes the wait longer).
            for (int wait = 0; posted - arrived.load(std::memory_order_acquire) > 64 && wait < 2000; ++wait)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        EXPECT_EQ(scope.Count(), 0u);
    }
    EXPECT_EQ(outL, l);
    EXPECT_EQ(outR, r);
    EXPECT_GT(posted, 200);
    EXPECT_EQ(rig.Sender().Overflows(), 0u);
    ASSERT_TRUE(rig.Drained());
    reader.join();
    EXPECT_EQ(int(received.size()), posted);
}
