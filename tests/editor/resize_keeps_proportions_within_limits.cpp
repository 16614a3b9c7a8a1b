// Resizing by the corner keeps the aspect: a drag to 1024 wide that would want more than 512 high stops
// at 512, and the width follows; the panel scales and the render thread hears of it.
#include <gtest/gtest.h>

#include "support/HeadlessRig.h"

namespace BR::Test {

namespace {
class RecordingBridge : public ManagerPlatformBridge {
public:
    bool CreateWindowContext() override { return false; }
    bool CreateOffscreenContext(int, int) override { return false; }
    bool MakeWindowCurrent() override { return false; }
    bool MakeOffscreenCurrent() override { return false; }
    void DestroyContexts() override {}
    void SwapBuffers() override {}
    void ResizeWindow(int w, int h) override {
        width = w;
        height = h;
        ++calls;
    }
    int GetWindowHeight() override { return height; }
    int width = 0, height = 0, calls = 0;
};
}  // namespace

TEST(ResizeLimits, WideDragStopsAt512HighAndWidthFollows) {
    DCRig rig;
    rig.manager.SetDesignSize(400, 300);  // aspect 4:3
    RecordingBridge bridge;
    rig.manager.bridge = &bridge;
    rig.manager.MouseDown(Point{398, 1}, 0, 1, false);
    ASSERT_TRUE(rig.manager.resizing);
    rig.manager.MouseDragged(Point{398 + 624, 1}, 0);  // to 1024 wide, which would want 768 high
    EXPECT_EQ(bridge.height, 512);
    EXPECT_EQ(bridge.width, int(512 * (400.0f / 300.0f)));
    EXPECT_EQ(rig.manager.windowHeight, 512);
    EXPECT_EQ(rig.manager.windowWidth, 682);
    EXPECT_EQ(rig.manager.panelWidth, 682);
    rig.manager.MouseUp(Point{1022, 1}, 0);
    rig.manager.bridge = nullptr;
}

TEST(ResizeLimits, TallDragStopsAt512AndWidthAt1024) {
    DCRig rig;  // 400 by 200, aspect 2
    RecordingBridge bridge;
    rig.manager.bridge = &bridge;
    rig.manager.MouseDown(Point{398, 1}, 0, 1, false);
    rig.manager.MouseDragged(Point{398, 1 - 600}, 0);  // down by 600: height 800 → 512, width 1024
    EXPECT_EQ(bridge.height, 512);
    EXPECT_EQ(bridge.width, 1024);
    rig.manager.MouseUp(Point{398, -599}, 0);
    EXPECT_EQ(rig.manager.panelWidth, 1024);
    EXPECT_EQ(rig.manager.panelHeight, 512);
    // A point of the resized window maps back onto the design's controls: the knob, scaled by 2.56.
    const Point centre = rig.Centre(rig.panel.knob);
    const Point converted = rig.manager.ConvertPoint(Point{centre.x * 2.56f, centre.y * 2.56f});
    EXPECT_NEAR(converted.x, centre.x, 0.01f);
    EXPECT_NEAR(converted.y, centre.y, 0.01f);
    rig.manager.MouseDown(Point{centre.x * 2.56f, centre.y * 2.56f}, 0, 1, false);
    EXPECT_EQ(rig.manager.pressedElement, rig.panel.knob);
    rig.manager.MouseUp(Point{centre.x * 2.56f, centre.y * 2.56f}, 0);
    rig.manager.bridge = nullptr;
}

}  // namespace BR::Test
