// An info display whose font failed to load draws nothing at all, not even its background; with its
// font it draws its background and the hardware bytes.
#include <gtest/gtest.h>

#include "editor/PanelScreenshot.h"
#include "editor/widgets/InfoDisplays.h"
#include "support/EditorRig.h"
#include "tests/support/Render.h"

namespace BR::Test {

namespace {
// Pixels of pure-ish green inside x 20..180, y 20..60 (from the top).
int GreenPixels(const std::vector<uint8_t>& rgb, int width) {
    int count = 0;
    for (int y = 22; y < 58; ++y)
        for (int x = 22; x < 178; ++x) {
            const uint8_t* p = &rgb[size_t((y * width + x) * 3)];
            if (p[1] > 200 && p[0] < 60 && p[2] < 60) ++count;
        }
    return count;
}

int Draw(HostDriver& driver, bool fontMissing) {
    ZPmanager manager(&driver.Module());
    manager.SetDesignSize(200, 80);
    manager.SetBannerBounds(0, 0, 0, 0);
    if (fontMissing) manager.SetFontChoices({"/nonexistent/corvane-no-such-font.ttf"}, 13, 11, 11);
    auto* info = new InfoDisplay(&manager, 4);
    info->SetRect(20, 20, 160, 40);
    const float green[4] = {0, 1, 0, 1};
    std::copy(green, green + 4, info->backgroundColour);
    manager.rootGroup->Add(info);
    PanelPicture picture = RenderManager(manager, SharedDisplay(), 8);
    EXPECT_FALSE(picture.rgb.empty()) << picture.error;
    if (picture.rgb.empty()) return -1;
    return GreenPixels(picture.rgb, picture.width);
}
}  // namespace

TEST(InfoDisplayWithoutFont, DrawsNothing) {
    ASSERT_NE(SharedDisplay(), nullptr);
    auto driver = MakeDriver("acencoder");
    ASSERT_NE(driver, nullptr);
    EXPECT_EQ(Draw(*driver, true), 0);
    EXPECT_GT(Draw(*driver, false), 1000);
}

}  // namespace BR::Test
