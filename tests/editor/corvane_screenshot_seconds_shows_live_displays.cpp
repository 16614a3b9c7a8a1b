// "corvane screenshot STEM --seconds S" renders S seconds before the picture, so that live displays
// show the state the module reached: the LFO's running marker stands elsewhere after a quarter of a
// cycle than at the start. A time outside 0 to 600 seconds is refused with a message.
#include <gtest/gtest.h>

#include "support/ChildProcess.h"
#include "support/EditorRig.h"
#include "tests/support/RunCommand.h"

namespace BR::Test {

TEST(CorvaneScreenshotSeconds, LiveMarkerMovesWithTheRenderedTime) {
    ChildWithoutLeakCheck child;
    const std::string folder = MakeTempFolder();
    ASSERT_NE(SharedDisplay(), nullptr);
    const std::string common = "screenshot lfo --display " + std::string(SharedDisplay()) +
                               " --set \"Sine L=1\" --set \"Speed L=1\" --out " + folder;
    const CommandResult start = RunCorvane(common + "/start.png");
    ASSERT_EQ(start.status, 0) << start.err;
    const CommandResult later = RunCorvane(common + "/later.png --seconds 0.25");
    ASSERT_EQ(later.status, 0) << later.err;
    const CommandResult again = RunCorvane(common + "/again.png --seconds 0");
    ASSERT_EQ(again.status, 0) << again.err;
    std::vector<uint8_t> a, b, c;
    int width = 0, height = 0;
    ASSERT_TRUE(ReadPngRgb(folder + "/start.png", a, width, height));
    ASSERT_TRUE(ReadPngRgb(folder + "/later.png", b, width, height));
    ASSERT_TRUE(ReadPngRgb(folder + "/again.png", c, width, height));
    // Only the marker moves: a few dozen pixels of the whole panel.
    const double moved = DifferentPixelFraction(a, b, 40) * double(width) * double(height);
    EXPECT_GT(moved, 8.0);
    EXPECT_LT(moved, 2000.0);
    EXPECT_LT(DifferentPixelFraction(a, c, 40) * double(width) * double(height), 8.0);
}

TEST(CorvaneScreenshotSeconds, OutOfRangeIsRefused) {
    ChildWithoutLeakCheck child;
    for (const char* seconds : {"-1", "601", "soon"}) {
        const CommandResult result =
            RunCorvane(std::string("screenshot lfo --out x.png --seconds ") + seconds);
        EXPECT_NE(result.status, 0) << seconds;
        EXPECT_NE(result.err.find("--seconds"), std::string::npos) << result.err;
    }
}

}  // namespace BR::Test
