// Script font names resolve through fontconfig to installed faces; a missing font gives a clear message;
// the built-in atlas "buttons.png" is 256 by 128 RGBA with its knob and arc cells; a missing texture
// gives a clear message.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "editor/GuiFont.h"
#include "editor/GuiTexture.h"
#include "support/HeadlessRig.h"

namespace BR::Test {

namespace {
bool Exists(const std::string& path) {
    struct stat info;
    return !path.empty() && stat(path.c_str(), &info) == 0;
}
// Alpha at (x, y) of the atlas, y up from the bottom as the scripts measure it.
int AlphaAt(const std::vector<uint8_t>& rgba, int width, float x, float y) {
    return rgba[(size_t(int(y)) * size_t(width) + size_t(int(x))) * 4 + 3];
}
}  // namespace

TEST(FontsAndAtlas, ScriptFontNamesResolveToInstalledFaces) {
    const std::string verdana = ResolveFontFile("Verdana.ttf");
    const std::string arial = ResolveFontFile("arial.ttf");
    EXPECT_TRUE(Exists(verdana)) << verdana;
    EXPECT_TRUE(Exists(arial)) << arial;
    EXPECT_NE(arial.find("Liberation"), std::string::npos) << arial;
    EXPECT_EQ(ResolveFontFile("/no/such/font.ttf"), "");
}

TEST(FontsAndAtlas, MissingFontGivesMessage) {
    GuiFont font({{"/no/such/font.ttf", 13}});
    testing::internal::CaptureStderr();
    EXPECT_FALSE(font.Load(1.0f));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "font not found: \"/no/such/font.ttf\"; text is not drawn\n");
    EXPECT_FALSE(font.Loaded());
    EXPECT_EQ(font.Advance("abc"), 0.0f);
}

TEST(FontsAndAtlas, AtlasHasTheKnobCells) {
    std::vector<uint8_t> rgba;
    int width = 0, height = 0;
    ASSERT_TRUE(DecodePng("buttons.png", rgba, width, height));
    EXPECT_EQ(width, 256);
    EXPECT_EQ(height, 128);
    // Knob cells: tiny 26 at (2, 2), small 34 at (2, 92), big 92 at (52, 34): opaque at the centre.
    EXPECT_EQ(AlphaAt(rgba, width, 2 + 13, 2 + 13), 255);
    EXPECT_EQ(AlphaAt(rgba, width, 2 + 17, 92 + 17), 255);
    EXPECT_EQ(AlphaAt(rgba, width, 52 + 46, 34 + 46), 255);
    // Arc masks: a ring, open in the middle; tiny at (32, 2), small at (2, 52), big at (162, 34).
    EXPECT_EQ(AlphaAt(rgba, width, 32 + 13, 2 + 13), 0);
    EXPECT_EQ(AlphaAt(rgba, width, 32 + 13, 2 + 1), 255);
    EXPECT_EQ(AlphaAt(rgba, width, 2 + 17, 52 + 17), 0);
    EXPECT_EQ(AlphaAt(rgba, width, 2 + 17, 52 + 1), 255);
    EXPECT_EQ(AlphaAt(rgba, width, 162 + 46, 34 + 46), 0);
    EXPECT_EQ(AlphaAt(rgba, width, 162 + 46, 34 + 2), 255);
    // Between the cells the atlas is clear.
    EXPECT_EQ(AlphaAt(rgba, width, 120, 5), 0);
}

TEST(FontsAndAtlas, MissingTextureGivesMessage) {
    std::vector<uint8_t> rgba;
    int width = 0, height = 0;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(DecodePng("/no/such/skin.png", rgba, width, height));
    const std::string message = testing::internal::GetCapturedStderr();
    EXPECT_EQ(message.rfind("texture \"/no/such/skin.png\" could not be read: ", 0), 0u) << message;
}

}  // namespace BR::Test
