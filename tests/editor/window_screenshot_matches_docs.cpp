// A screenshot of the test panel, grabbed from the X server, matches the committed picture under docs/
// within a tolerance for rasteriser differences: knobs at their values, labels, banner and status line.
// CORVANE_UPDATE_SCREENSHOTS=1 writes the pictures anew.
#include <gtest/gtest.h>

#include <cstdlib>

#include "support/WindowRigs.h"

namespace BR::Test {

namespace {
std::string DocsPath(const std::string& name) {
    const char* source = std::getenv("CORVANE_SOURCE_DIR");
    return std::string(source ? source : CORVANE_SOURCE_TREE) + "/docs/editor/" + name;
}

// Grabs the panel with both knobs set and the pointer on the first knob, once the easing has settled.
std::vector<uint8_t> GrabPanel(DCWindow& w, int& width, int& height) {
    w.driver->Module().SetTableValue(w.level, 0.5f);
    w.driver->Module().SetTableValue(w.multiplier, -1.0f);
    int x = 0, y = 0;
    w.Centre(w.rig->panel.knob, x, y);
    w.rig->MoveTo(x, y);
    w.rig->WaitFrames(90);
    return w.rig->Grab(width, height);
}

void CompareWithDocs(const std::vector<uint8_t>& shot, int width, int height, const std::string& name,
                     bool mayUpdate) {
    const std::string path = DocsPath(name);
    WritePngRgb(name, shot, width, height);  // beside the test, for a look after a failure
    if (mayUpdate && std::getenv("CORVANE_UPDATE_SCREENSHOTS")) {
        ASSERT_TRUE(WritePngRgb(path, shot, width, height));
    }
    std::vector<uint8_t> expected;
    int expectedWidth = 0, expectedHeight = 0;
    ASSERT_TRUE(ReadPngRgb(path, expected, expectedWidth, expectedHeight)) << path;
    ASSERT_EQ(expectedWidth, width);
    ASSERT_EQ(expectedHeight, height);
    EXPECT_LT(DifferentPixelFraction(shot, expected, 48), 0.01) << name;
}

// Mean brightness of a rectangle of the grab (window coordinates, y down).
double Brightness(const std::vector<uint8_t>& rgb, int width, int x0, int y0, int x1, int y1) {
    double sum = 0;
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x)
            for (int k = 0; k < 3; ++k)
                sum += rgb[(size_t(y) * size_t(width) + size_t(x)) * 3 + size_t(k)];
    return sum / (3.0 * (x1 - x0) * (y1 - y0));
}
// The brightest pixel of the label "Level" under the first knob's field, drawn in the panel texture.
double LabelBrightness(const std::vector<uint8_t>& rgb, int width) {
    double most = 0;
    for (int y = 200 - 28; y < 200 - 14; ++y)
        for (int x = 35; x < 65; ++x)
            most = std::max(most, Brightness(rgb, width, x, y, x + 1, y + 1));
    return most;
}
}  // namespace

TEST(WindowScreenshot, TestPanelMatchesDocs) {
    DCWindow w;
    ASSERT_TRUE(w.rig->Open()) << w.rig->window.LastError();
    int width = 0, height = 0;
    const std::vector<uint8_t> shot = GrabPanel(w, width, height);
    ASSERT_EQ(width, 400);
    ASSERT_EQ(height, 200);
    // "Enable eye candy" is on by default and llvmpipe has GLSL: the knobs are drawn with their shader.
    auto* renderer = dynamic_cast<ArcKnobRenderer*>(w.rig->manager->animatedElements.at(0));
    ASSERT_NE(renderer, nullptr);
    EXPECT_TRUE(renderer->HasShader());
    EXPECT_NE(w.rig->manager->shaderProgram, 0u);
    // Plain background (grey 0.4) in an empty corner; text in the banner and in the status line.
    EXPECT_NEAR(Brightness(shot, width, 300, 120, 380, 160), 0.4 * 255, 3);
    // The banner: (0.1, 0.1, 0.15) at alpha 0.3 over the background, between its text and the status.
    EXPECT_NEAR(Brightness(shot, width, 196, 11, 212, 24), (0.7 * 0.4 + 0.3 * 0.1167) * 255, 4);
    auto brightest = [&](int x0, int x1) {
        double most = 0;
        for (int x = x0; x < x1; ++x)
            for (int y = 10; y < 25; ++y)
                most = std::max(most, Brightness(shot, width, x, y, x + 1, y + 1));
        return most;
    };
    EXPECT_GT(brightest(20, 190), 200.0);   // "brelmont : corvane 2.6.1" in grey 0.9
    EXPECT_GT(brightest(215, 390), 200.0);  // the status line of the hovered knob
    EXPECT_EQ(w.rig->manager->hoveredParameter, w.level);
    EXPECT_GT(LabelBrightness(shot, width), 180.0);
    CompareWithDocs(shot, width, height, "test-panel.png", true);
}

TEST(WindowScreenshot, WithoutFramebuffersOrShadersTheLabelsStillShow) {
    setenv("CORVANE_NO_FBO", "1", 1);
    setenv("CORVANE_NO_GLSL", "1", 1);
    DCWindow w;
    ASSERT_TRUE(w.rig->Open()) << w.rig->window.LastError();
    EXPECT_FALSE(w.rig->manager->haveFramebuffers);
    EXPECT_FALSE(w.rig->manager->haveShaders);
    EXPECT_EQ(w.rig->manager->shaderProgram, 0u);
    EXPECT_FALSE(dynamic_cast<ArcKnobRenderer*>(w.rig->manager->animatedElements.at(0))->HasShader());
    int width = 0, height = 0;
    const std::vector<uint8_t> shot = GrabPanel(w, width, height);
    unsetenv("CORVANE_NO_FBO");
    unsetenv("CORVANE_NO_GLSL");
    EXPECT_GT(LabelBrightness(shot, width), 180.0);
    EXPECT_NEAR(Brightness(shot, width, 300, 120, 380, 160), 0.4 * 255, 3);
    CompareWithDocs(shot, width, height, "test-panel.png", false);
}

}  // namespace BR::Test
