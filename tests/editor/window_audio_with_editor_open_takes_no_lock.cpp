// With a module's editor open under Xvfb and its render thread drawing the panel (live displays
// included), the audio thread's blocks take no lock and allocate nothing: the render thread polls the
// module without a lock, so no lock is shared between the two and drawing can never hold up audio.
#include <gtest/gtest.h>

#include <chrono>

#include "support/DialogRig.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/LockCounter.h"

namespace BR::Test {

namespace {
void AudioThreadTakesNoLockWhileEditorDraws(const char* stem) {
    DialogWindowRig w(stem);
    ASSERT_TRUE(w.OpenScript()) << w.window.LastError();
    HostDriver& driver = *w.panel.driver;
    std::vector<std::vector<float>> in(size_t(driver.NumHostInputs()), std::vector<float>(256, 0.25f));
    std::vector<std::vector<float>> out(size_t(driver.NumHostOutputs()), std::vector<float>(256));
    std::vector<const float*> inPointers;
    std::vector<float*> outPointers;
    for (auto& c : in)
        inPointers.push_back(c.data());
    for (auto& c : out)
        outPointers.push_back(c.data());
    driver.Process(inPointers.data(), outPointers.data(), 256, nullptr, 0);  // first block outside the count

    // The counter sees a lock of this thread at all.
    {
        std::mutex m;
        LockScope scope;
        m.lock();
        m.unlock();
        ASSERT_EQ(scope.Count(), 1u);
    }
    uint64_t locks = 0, allocations = 0, blocks = 0;
    const uint64_t framesBefore = w.panel.manager.FrameCount();
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(600);
    while (std::chrono::steady_clock::now() < end || w.panel.manager.FrameCount() < framesBefore + 5) {
        {
            AllocationScope allocationScope;
            LockScope lockScope;
            for (int i = 0; i < 8; ++i)
                driver.Process(inPointers.data(), outPointers.data(), 256, nullptr, 0);
            locks += lockScope.Count();
            allocations += allocationScope.Count();
        }
        blocks += 8;
        w.Pump(2);  // the window thread's turn, outside the count
        if (std::chrono::steady_clock::now() > end + std::chrono::seconds(20)) break;
    }
    EXPECT_GE(w.panel.manager.FrameCount(), framesBefore + 5) << "the editor drew nothing meanwhile";
    EXPECT_GT(blocks, 0u);
    EXPECT_EQ(locks, 0u) << stem;
    EXPECT_EQ(allocations, 0u) << stem;
}
}  // namespace

TEST(WindowAudioWithEditorOpen, LFOTakesNoLockAndAllocatesNothing) {
    AudioThreadTakesNoLockWhileEditorDraws("lfo");
}

TEST(WindowAudioWithEditorOpen, TriggerTakesNoLockAndAllocatesNothing) {
    AudioThreadTakesNoLockWhileEditorDraws("trigger");
}

}  // namespace BR::Test
