// A module's panel built by its script, grabbed from the X server: its size, a share of drawn pixels, and a
// pixel comparison with the committed picture under docs/panels/.
#include <gtest/gtest.h>

#include <cstdlib>

#include "support/EditorRig.h"
#include "support/LuaPanelRig.h"
#include "tests/support/Render.h"

namespace BR::Test {

namespace {
// Pixels farther than `tolerance` from the window's background grey (0.4).
double ForegroundFraction(const std::vector<uint8_t>& rgb, int tolerance) {
    size_t count = 0;
    for (size_t i = 0; i + 2 < rgb.size(); i += 3) {
        const int d =
            std::abs(int(rgb[i]) - 102) + std::abs(int(rgb[i + 1]) - 102) + std::abs(int(rgb[i + 2]) - 102);
        if (d > tolerance) ++count;
    }
    return double(count) / double(rgb.size() / 3);
}
}  // namespace

struct ShotCase {
    const char* stem;
    int width, height;
    double minimumDrawn;
};

class WindowPanelScript : public ::testing::TestWithParam<ShotCase> {};

TEST_P(WindowPanelScript, MatchesDocsPicture) {
    const ShotCase& shotCase = GetParam();
    const char* display = SharedDisplay();
    ASSERT_NE(display, nullptr);
    LuaPanelRig rig(shotCase.stem);
    if (std::string(shotCase.stem) == "dc") {
        rig.driver->SetParameterByName("Output Positive L", 0.25f);
        rig.driver->SetParameterByName("Multiplier R", -2.0f);
    }
    rig.Open();
    ASSERT_TRUE(rig.gui->errorLog.empty());
    X11Window window;
    ASSERT_TRUE(window.Open(rig.manager.designWidth, rig.manager.designHeight, "dc", 0, display));
    window.manager = &rig.manager;
    rig.manager.CreateRenderTask(&window);
    for (int i = 0; i < 400 && rig.manager.FrameCount() < 10; ++i)
        window.ProcessEvents(10);
    ASSERT_GE(rig.manager.FrameCount(), 10u);
    int width = 0, height = 0;
    const std::vector<uint8_t> shot = GrabWindow(display, window.WindowId(), width, height);
    rig.manager.DestroyRenderTask();
    window.Close();
    ASSERT_EQ(width, shotCase.width);
    ASSERT_EQ(height, shotCase.height);
    const double drawn = ForegroundFraction(shot, 24);
    EXPECT_GT(drawn, shotCase.minimumDrawn);
    EXPECT_LT(drawn, 0.9);
    const char* source = std::getenv("CORVANE_SOURCE_DIR");
    const std::string path =
        std::string(source ? source : CORVANE_SOURCE_TREE) + "/docs/panels/" + shotCase.stem + ".png";
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

INSTANTIATE_TEST_SUITE_P(Built, WindowPanelScript,
                         ::testing::Values(ShotCase{"dc", 510, 220, 0.15}, ShotCase{"smux", 410, 135, 0.05},
                                           ShotCase{"sync", 673, 217, 0.1}),
                         [](const auto& info) { return std::string(info.param.stem); });

}  // namespace BR::Test
