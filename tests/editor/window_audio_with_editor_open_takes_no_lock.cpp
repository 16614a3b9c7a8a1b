// With a module's editor open under Xvfb and its render thread drawing the panel (live displays
// included) and the window thread turning a control as a knob gesture does, the audio thread's blocks
// take no lock and allocate nothing: the render thread polls the module without a lock, so no lock is
// shared between the two and drawing can never hold up audio.
#include <gtest/gtest.h>

#include <chrono>

#include "support/DialogRig.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/LockCounter.h"

namespace BR::Test {

namespace {
// `turned` is the parameter the window thread moves between `low` and `high` meanwhile.
void AudioThreadTakesNoLockWhileEditorDraws(const char* stem, const char* turned, float low, float high) {
    DialogWindowRig w(stem);
    ASSERT_TRUE(w.OpenScript()) << w.window.LastError();
    Manager& manager = w.panel.manager;
    int32_t parameter = -1;
    for (int32_t i = 0; i < w.panel.driver->Module().NumTableParameters(); ++i)
        if (std::string(w.panel.driver->Module().ParameterTable()[i].name) == turned) parameter = i;
    ASSERT_GE(parameter, 0) << turned;
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
        // The window thread's turn, outside the count: a knob gesture, then the window's events.
        manager.BeginParameterEdit(parameter);
        manager.SetParameterValue(parameter, (blocks / 8) % 2 ? high : low);
        manager.EndParameterEdit(parameter);
        w.Pump(2);
        if (std::chrono::steady_clock::now() > end + std::chrono::seconds(20)) break;
    }
    EXPECT_GE(w.panel.manager.FrameCount(), framesBefore + 5) << "the editor drew nothing meanwhile";
    EXPECT_EQ(driver.Module().GetTableValue(parameter), (blocks / 8) % 2 ? high : low);  // the last turn
    EXPECT_GT(blocks, 0u);
    EXPECT_EQ(locks, 0u) << stem;
    EXPECT_EQ(allocations, 0u) << stem;
}
}  // namespace

TEST(WindowAudioWithEditorOpen, LFOTakesNoLockAndAllocatesNothing) {
    AudioThreadTakesNoLockWhileEditorDraws("lfo", "Speed L", 1.0f, 10.0f);
}

TEST(WindowAudioWithEditorOpen, TriggerTakesNoLockAndAllocatesNothing) {
    AudioThreadTakesNoLockWhileEditorDraws("trigger", "Gate", 0.0f, 1.0f);
}

}  // namespace BR::Test
