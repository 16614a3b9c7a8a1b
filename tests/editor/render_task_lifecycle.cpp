// The render thread: a second CreateRenderTask only prints "double call to CreateRenderTask()"; with no
// GL context frames are skipped and the thread keeps waiting; closing during a redrawLabels wake-up
// ends the thread normally and leaves no thread behind.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "support/HeadlessRig.h"

namespace BR::Test {

namespace {
class NoContextBridge : public ManagerPlatformBridge {
public:
    bool CreateWindowContext() override {
        ++attempts;
        return false;
    }
    bool CreateOffscreenContext(int, int) override { return false; }
    bool MakeWindowCurrent() override { return false; }
    bool MakeOffscreenCurrent() override { return false; }
    void DestroyContexts() override { ++destroyed; }
    void SwapBuffers() override { ++swaps; }
    void ResizeWindow(int, int) override {}
    int GetWindowHeight() override { return 200; }
    std::atomic<int> attempts{0}, destroyed{0}, swaps{0};
};
}  // namespace

TEST(RenderTaskLifecycle, SecondCreateOnlyPrints) {
    DCRig rig;
    NoContextBridge bridge;
    rig.manager.CreateRenderTask(&bridge);
    testing::internal::CaptureStderr();
    rig.manager.CreateRenderTask(&bridge);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "double call to CreateRenderTask()\n");
    rig.manager.DestroyRenderTask();
    EXPECT_FALSE(rig.manager.RenderTaskActive());
}

TEST(RenderTaskLifecycle, NoContextSkipsFramesButKeepsRunning) {
    DCRig rig;
    NoContextBridge bridge;
    rig.manager.CreateRenderTask(&bridge);
    for (int i = 0; i < 200 && rig.manager.FrameCount() < 3; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_GE(rig.manager.FrameCount(), 3u);  // the loop turns, about every 33 ms
    EXPECT_EQ(bridge.swaps, 0);               // but nothing is drawn
    EXPECT_EQ(bridge.attempts, 1);
    // Input still works without a context.
    rig.Drag(rig.panel.knob, 200);
    EXPECT_EQ(rig.Value(rig.level), 1.0f);
    rig.manager.DestroyRenderTask();
    EXPECT_EQ(bridge.destroyed, 1);
}

TEST(RenderTaskLifecycle, CloseDuringRedrawLabelsEndsNormally) {
    const int before = CountThreads();
    for (int i = 0; i < 20; ++i) {
        DCRig rig;
        NoContextBridge bridge;
        rig.manager.CreateRenderTask(&bridge);
        rig.manager.RedrawLabels();
        testing::internal::CaptureStderr();
        rig.manager.DestroyRenderTask();
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_TRUE(rig.manager.renderThreadDone);
        EXPECT_FALSE(rig.manager.RenderTaskActive());
    }
    EXPECT_EQ(CountThreads(), before);
}

TEST(RenderTaskLifecycle, FrameRateIsMeasured) {
    DCRig rig;
    NoContextBridge bridge;
    rig.manager.CreateRenderTask(&bridge);
    for (int i = 0; i < 300 && rig.manager.FrameCount() < 8; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    rig.manager.DestroyRenderTask();
    // Each frame waits 33 ms for an event, so the rate lies below 31 and the durations add up.
    EXPECT_GT(rig.manager.framesPerSecond, 0.0f);
    EXPECT_LT(rig.manager.framesPerSecond, 31.0f);
    EXPECT_GE(rig.manager.frameDuration, 0.033f);
    EXPECT_GE(rig.manager.renderTime, 0.033 * 7);
}

}  // namespace BR::Test
