// The Follower's pitch history draws a frame without a detected pitch at the bottom of its axis, even
// when the status block still holds the last frequency; a detected pitch stands at its log position.
#include <gtest/gtest.h>

#include <algorithm>

#include "editor/PanelScreenshot.h"
#include "editor/widgets/InfoDisplays.h"
#include "modules/events/Follower.h"
#include "support/EditorRig.h"
#include "tests/support/Render.h"

namespace BR::Test {

namespace {
BrelCorvaneFollower::FollowerStatus& ReadStatus(HostDriver& driver) {
    ModuleStatusBlock* block = nullptr;
    EXPECT_EQ(driver.Module().GetProperty(kPropertyStatusBlock, &block), kNoErr);
    return block->As<BrelCorvaneFollower::FollowerStatus>();
}

// Rows (from the top of a `width`-wide picture) in columns x0..x1 where the green channel is strong.
std::vector<int> GreenRows(const std::vector<uint8_t>& rgb, int width, int x0, int x1) {
    std::vector<int> rows;
    for (int y = 0; y * width * 3 < int(rgb.size()); ++y)
        for (int x = x0; x <= x1; ++x)
            if (rgb[size_t((y * width + x) * 3 + 1)] > 100) {
                rows.push_back(y);
                break;
            }
    return rows;
}
}  // namespace

TEST(FollowerPitchWithoutPitch, RingEntryIsTheAxisBottom) {
    auto driver = MakeDriver("follower");
    ZPmanager manager(&driver->Module());
    FollowerPitchDisplay display(&manager);
    auto& status = ReadStatus(*driver);
    status.frequency = 880.0f;  // a stale reading: the flag says there is no pitch now
    status.noPitch = 1;
    display.Animate();
    EXPECT_FLOAT_EQ(display.BuildStrip().back(), 0.0f);
    // Anything at or below 0 Hz, or below the axis's 50 Hz, is the bottom as well.
    status.noPitch = 0;
    for (float frequency : {0.0f, -20.0f, 30.0f, 50.0f}) {
        status.frequency = frequency;
        display.Animate();
        EXPECT_FLOAT_EQ(display.BuildStrip().back(), 0.0f) << frequency;
    }
    // A pitch is placed on the logarithmic axis: 500 Hz one decade above 50 Hz, half way up.
    status.frequency = 500.0f;
    display.Animate();
    EXPECT_NEAR(display.BuildStrip().back(), 0.5f, 1e-5f);
    // The strip runs oldest to newest across the rectangle.
    EXPECT_FLOAT_EQ(display.BuildStrip()[display.BuildStrip().size() - 2], 1.0f);
}

TEST(FollowerPitchWithoutPitch, DrawnAtTheBottomRow) {
    const char* displayName = SharedDisplay();
    ASSERT_NE(displayName, nullptr);
    auto driver = MakeDriver("follower");
    int top = -1, bottom = -1;
    auto draw = [&](uint32_t noPitch, float frequency, std::vector<uint8_t>& rgb, int& width) {
        auto& status = ReadStatus(*driver);
        status.noPitch = noPitch;
        status.frequency = frequency;
        ZPmanager manager(&driver->Module());
        manager.SetDesignSize(200, 100);
        manager.SetBannerBounds(0, 0, 0, 0);
        auto* pitch = new FollowerPitchDisplay(&manager);
        pitch->SetRect(20, 20, 160, 60);  // x 20..180, y 20..80 of the panel
        const float blue[4] = {0, 0, 1, 1}, green[4] = {0, 1, 0, 1};
        std::copy(blue, blue + 4, pitch->backgroundColour);
        std::copy(green, green + 4, pitch->lineColour);
        manager.rootGroup->Add(pitch);
        PanelPicture picture = RenderManager(manager, displayName, 12);
        ASSERT_FALSE(picture.rgb.empty()) << picture.error;
        rgb = picture.rgb;
        width = picture.width;
        WritePng(noPitch ? "follower-pitch-none.png" : "follower-pitch-500.png", rgb, width, picture.height);
        // Where the display's blue ground stands in the picture, down its middle column.
        top = bottom = -1;
        for (int y = 0; y < picture.height; ++y) {
            const uint8_t* p = &rgb[size_t((y * width + 100) * 3)];
            if (p[2] > 200 && p[0] < 60 && p[1] < 60) {
                if (top < 0) top = y;
                bottom = y;
            }
        }
        ASSERT_GT(bottom - top, 40);
    };
    // The newest entries are at the right end; columns inside the frame there.
    std::vector<uint8_t> rgb;
    int width = 0;
    draw(1, 880.0f, rgb, width);
    // (The frame's top edge, in the line colour at half strength, lies just above the ground.)
    for (int row : GreenRows(rgb, width, 168, 172)) {
        if (row > top + 1) {
            EXPECT_GE(row, bottom - 1) << "a line above the bottom of the axis without a pitch";
        }
    }
    draw(0, 500.0f, rgb, width);
    const int middle = (top + bottom) / 2;
    const std::vector<int> rows = GreenRows(rgb, width, 168, 172);
    EXPECT_NE(std::find_if(rows.begin(), rows.end(),
                           [middle](int row) { return row >= middle - 3 && row <= middle + 3; }),
              rows.end())
        << "500 Hz is drawn half way up";
}

}  // namespace BR::Test
