// Every built module's panel drawn by its script in a window and grabbed from the X server: its size, a
// share of drawn pixels, and a pixel comparison with the picture under docs/panels/ that
// scripts/make-panel-screenshots.sh makes with "corvane screenshot".
#include <gtest/gtest.h>

#include <cstdlib>

#include "editor/PanelScreenshot.h"
#include "modules/ModuleFactory.h"
#include "support/EditorRig.h"
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

std::string DocsPicture(const std::string& stem) {
    const char* source = std::getenv("CORVANE_SOURCE_DIR");
    return std::string(source ? source : CORVANE_SOURCE_TREE) + "/docs/panels/" + stem + ".png";
}
}  // namespace

struct ShotCase {
    const char* stem;
    int width, height;
    double minimumDrawn;  // a little under what the panel draws, so that a panel gone blank fails
};

class WindowPanelScript : public ::testing::TestWithParam<ShotCase> {};

TEST_P(WindowPanelScript, MatchesDocsPicture) {
    const ShotCase& shotCase = GetParam();
    if (!CreateModule(shotCase.stem)) GTEST_SKIP() << shotCase.stem << " is not in this build yet";
    const char* display = SharedDisplay();
    ASSERT_NE(display, nullptr);
    auto driver = MakeDriver(shotCase.stem);
    if (std::string(shotCase.stem) == "dc") {
        driver->SetParameterByName("Output Positive L", 0.25f);
        driver->SetParameterByName("Multiplier R", -2.0f);
    }
    const PanelPicture shot = RenderPanel(driver->Module(), display);
    ASSERT_FALSE(shot.rgb.empty()) << shot.error;
    EXPECT_EQ(shot.error, "");
    ASSERT_EQ(shot.width, shotCase.width);
    ASSERT_EQ(shot.height, shotCase.height);
    const double drawn = ForegroundFraction(shot.rgb, 24);
    EXPECT_GT(drawn, shotCase.minimumDrawn);
    EXPECT_LT(drawn, 0.9);
    const std::string path = DocsPicture(shotCase.stem);
    if (std::getenv("CORVANE_UPDATE_SCREENSHOTS")) {
        ASSERT_TRUE(WritePng(path, shot.rgb, shot.width, shot.height));
    }
    WritePng(std::string(shotCase.stem) + "-panel.png", shot.rgb, shot.width, shot.height);  // for a look
    std::vector<uint8_t> expected;
    int expectedWidth = 0, expectedHeight = 0;
    ASSERT_TRUE(ReadPngRgb(path, expected, expectedWidth, expectedHeight)) << path;
    ASSERT_EQ(expectedWidth, shot.width);
    ASSERT_EQ(expectedHeight, shot.height);
    EXPECT_LT(DifferentPixelFraction(shot.rgb, expected, 48), 0.01);
}

INSTANTIATE_TEST_SUITE_P(
    Built, WindowPanelScript,
    ::testing::Values(ShotCase{"dc", 510, 220, 0.18}, ShotCase{"smux", 410, 135, 0.11},
                      ShotCase{"sync", 673, 217, 0.2}, ShotCase{"acencoder", 510, 220, 0.12},
                      ShotCase{"cvinput", 510, 220, 0.15}, ShotCase{"cvtomidi", 525, 395, 0.19},
                      ShotCase{"cvtoosc", 550, 269, 0.1}, ShotCase{"ardentcontroller", 723, 450, 0.21},
                      ShotCase{"basaltcontroller", 727, 335, 0.24}, ShotCase{"cindercombiner", 650, 155, 0.2},
                      ShotCase{"dunmorecombiner", 630, 200, 0.22}, ShotCase{"lfo", 733, 360, 0.24},
                      ShotCase{"quantizer", 786, 257, 0.16}, ShotCase{"trigger", 714, 315, 0.21},
                      ShotCase{"voicecontroller", 925, 385, 0.27}, ShotCase{"steplfo", 907, 415, 0.3},
                      ShotCase{"follower", 685, 360, 0.29}, ShotCase{"soundplane", 570, 380, 0.1},
                      ShotCase{"learner", 955, 300, 0.05}, ShotCase{"Function", 400, 400, 0.21}),
    [](const auto& info) { return std::string(info.param.stem); });

}  // namespace BR::Test
