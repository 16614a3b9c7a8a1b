// "corvane screenshot STEM --out FILE.png": the panel drawn off screen under a private Xvfb (or on the
// display named) into a PNG that matches the committed picture; bad arguments fail with a message.
// And "corvane edit" opens each module with its own panel script, not the plain fallback.
#include <gtest/gtest.h>

#include <cstdlib>

#include "editor/LuaGui.h"
#include "framework/ModuleCatalogue.h"
#include "modules/ModuleFactory.h"
#include "support/ChildProcess.h"
#include "support/EditorRig.h"
#include "tests/support/RunCommand.h"

namespace BR::Test {

namespace {
std::string DocsPicture(const std::string& stem) {
    const char* source = std::getenv("CORVANE_SOURCE_DIR");
    return std::string(source ? source : CORVANE_SOURCE_TREE) + "/docs/panels/" + stem + ".png";
}

}  // namespace

TEST(CorvaneScreenshotCommand, PrivateServerPictureMatchesDocs) {
    ChildWithoutLeakCheck child;
    const std::string folder = MakeTempFolder();
    unsetenv("DISPLAY");
    const CommandResult shot =
        RunCorvane("screenshot dc --out " + folder +
                   "/dc.png --set \"Output Positive L=0.25\" --set \"Multiplier R=-2\"");
    ASSERT_EQ(shot.status, 0) << shot.err;
    EXPECT_EQ(shot.err, "");
    std::vector<uint8_t> rgb, expected;
    int width = 0, height = 0, expectedWidth = 0, expectedHeight = 0;
    ASSERT_TRUE(ReadPngRgb(folder + "/dc.png", rgb, width, height));
    ASSERT_TRUE(ReadPngRgb(DocsPicture("dc"), expected, expectedWidth, expectedHeight));
    EXPECT_EQ(width, 510);
    EXPECT_EQ(height, 220);
    ASSERT_EQ(width, expectedWidth);
    ASSERT_EQ(height, expectedHeight);
    EXPECT_LT(DifferentPixelFraction(rgb, expected, 48), 0.01);
    // Without the settings the first knob stands elsewhere: the picture differs.
    const CommandResult plain = RunCorvane("screenshot dc --out " + folder + "/plain.png");
    ASSERT_EQ(plain.status, 0) << plain.err;
    std::vector<uint8_t> plainRgb;
    ASSERT_TRUE(ReadPngRgb(folder + "/plain.png", plainRgb, width, height));
    EXPECT_GT(DifferentPixelFraction(plainRgb, expected, 48), 0.0005);
}

TEST(CorvaneScreenshotCommand, NamedDisplayIsUsed) {
    ChildWithoutLeakCheck child;
    const char* display = SharedDisplay();
    ASSERT_NE(display, nullptr);
    const std::string folder = MakeTempFolder();
    const CommandResult shot =
        RunCorvane("screenshot smux --display " + std::string(display) + " --out " + folder + "/smux.png");
    ASSERT_EQ(shot.status, 0) << shot.err;
    std::vector<uint8_t> rgb;
    int width = 0, height = 0;
    ASSERT_TRUE(ReadPngRgb(folder + "/smux.png", rgb, width, height));
    EXPECT_EQ(width, 410);
    EXPECT_EQ(height, 135);
    const CommandResult missing = RunCorvane("screenshot smux --display :4242 --out " + folder + "/x.png");
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.err.find("corvane: screenshot: the editor cannot open"), std::string::npos)
        << missing.err;
}

TEST(CorvaneScreenshotCommand, BadArguments) {
    const CommandResult noOut = RunCorvane("screenshot dc");
    EXPECT_EQ(noOut.status, 2);
    EXPECT_NE(noOut.err.find("screenshot needs --out FILE.png"), std::string::npos) << noOut.err;
    const CommandResult unknown = RunCorvane("screenshot nosuchmodule --out /tmp/x.png");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_NE(unknown.err.find("unknown module \"nosuchmodule\""), std::string::npos);
    const CommandResult badSet = RunCorvane("screenshot dc --out /tmp/x.png --set Multiplier");
    EXPECT_EQ(badSet.status, 2);
    EXPECT_NE(badSet.err.find("--set: expected \"NAME=VALUE\""), std::string::npos) << badSet.err;
    const CommandResult option = RunCorvane("screenshot dc --frames 3");
    EXPECT_EQ(option.status, 2);
    EXPECT_NE(option.err.find("screenshot: unknown option \"--frames\""), std::string::npos);
}

// Each module of the catalogue that this build has names a panel script that is built in, so that
// "corvane edit" opens it with its panel; and one edit of a large panel runs without a word on stderr.
TEST(CorvaneEditCommand, EveryModuleOpensWithItsPanel) {
    const CatalogueEntry* entries = CatalogueEntries();
    int built = 0;
    for (int i = 0; i < kNumCatalogueEntries; ++i) {
        std::unique_ptr<BrelCorvaneBase> module = CreateModule(entries[i].stem);
        if (!module) continue;
        ++built;
        EXPECT_NE(FindBuiltInScript(module->GetGuiScriptName()), nullptr) << entries[i].stem;
        EXPECT_STREQ(module->GetGuiScriptName(), entries[i].guiScriptName) << entries[i].stem;
    }
    EXPECT_GE(built, 17);
    ChildWithoutLeakCheck child;
    const char* display = SharedDisplay();
    ASSERT_NE(display, nullptr);
    setenv("DISPLAY", display, 1);
    const CommandResult edit = RunCorvane("edit voicecontroller --seconds 0.5");
    unsetenv("DISPLAY");
    EXPECT_EQ(edit.status, 0) << edit.err;
    EXPECT_EQ(edit.err, "");
}

}  // namespace BR::Test
