// The plain panel of "corvane edit dc", grabbed from the X server, matches its committed picture under
// docs/ within the rasteriser tolerance: a knob and field per row of DC's table, labels and banner.
#include <gtest/gtest.h>

#include <cstdlib>

#include "editor/GenericPanel.h"
#include "support/EditorRig.h"
#include "tests/support/Render.h"

namespace BR::Test {

TEST(WindowGenericPanel, DCPanelMatchesDocs) {
    const char* display = SharedDisplay();
    ASSERT_NE(display, nullptr);
    auto driver = MakeDriver("dc");
    driver->SetParameterByName("Output Positive L", 0.25f);
    driver->SetParameterByName("Multiplier R", -2.0f);
    ZPmanager manager(&driver->Module());
    BuildGenericPanel(manager);
    EXPECT_EQ(manager.designWidth, 510);
    X11Window window;
    ASSERT_TRUE(window.Open(manager.designWidth, manager.designHeight, "dc", 0, display));
    window.manager = &manager;
    manager.CreateRenderTask(&window);
    for (int i = 0; i < 400 && manager.FrameCount() < 10; ++i)
        window.ProcessEvents(10);
    ASSERT_GE(manager.FrameCount(), 10u);
    int width = 0, height = 0;
    const std::vector<uint8_t> shot = GrabWindow(display, window.WindowId(), width, height);
    ASSERT_EQ(width, manager.designWidth);
    ASSERT_EQ(height, manager.designHeight);
    manager.DestroyRenderTask();
    window.Close();
    const char* source = std::getenv("CORVANE_SOURCE_DIR");
    const std::string path =
        std::string(source ? source : CORVANE_SOURCE_TREE) + "/docs/editor/dc-plain-panel.png";
    WritePngRgb("dc-plain-panel.png", shot, width, height);
    if (std::getenv("CORVANE_UPDATE_SCREENSHOTS")) {
        ASSERT_TRUE(WritePngRgb(path, shot, width, height));
    }
    std::vector<uint8_t> expected;
    int expectedWidth = 0, expectedHeight = 0;
    ASSERT_TRUE(ReadPngRgb(path, expected, expectedWidth, expectedHeight)) << path;
    ASSERT_EQ(expectedWidth, width);
    ASSERT_EQ(expectedHeight, height);
    EXPECT_LT(DifferentPixelFraction(shot, expected, 48), 0.01);
}

}  // namespace BR::Test
