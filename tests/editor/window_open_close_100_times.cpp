// Opening and closing the editor 100 times leaves no thread behind (and, in the sanitizer build,
// leaks nothing); closing during a redrawLabels wake-up ends the render thread normally.
#include <gtest/gtest.h>

#include "support/WindowRigs.h"

namespace BR::Test {

TEST(WindowOpenClose, HundredTimesLeaveNoThread) {
    ASSERT_NE(SharedDisplay(), nullptr);
    auto driver = MakeDriver("dc");
    {
        // The first opening loads the GL driver, which keeps its own state for the process.
        EditorWindowRig warmUp(driver->Module(), 0, 1, -1);
        ASSERT_TRUE(warmUp.Open()) << warmUp.window.LastError();
    }
    const int threads = CountThreads();
    for (int i = 0; i < 100; ++i) {
        EditorWindowRig rig(driver->Module(), 0, 1, -1);
        ASSERT_TRUE(rig.Open()) << rig.window.LastError();
        if (i % 2) rig.manager->RedrawLabels();
        rig.manager->DestroyRenderTask();
        EXPECT_TRUE(rig.manager->renderThreadDone);
    }
    EXPECT_EQ(CountThreads(), threads);
}

}  // namespace BR::Test
