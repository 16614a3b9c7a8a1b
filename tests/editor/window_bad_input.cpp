// Bad input around the window: no X display, a display without GLX, a missing font and a missing
// texture each give a clear message and no crash; the controls keep working and the module keeps
// rendering.
#include <gtest/gtest.h>

#include <cstdlib>

#include "editor/GuiFont.h"
#include "support/WindowRigs.h"

namespace BR::Test {

TEST(WindowBadInput, NoDisplay) {
    X11Window window;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(window.Open(400, 200, "x", 0, ":4242"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "editor: cannot open the X display \":4242\"\n");
    EXPECT_FALSE(window.IsOpen());
    EXPECT_FALSE(window.ProcessEvents(1));
    auto driver = MakeDriver("dc");
    driver->SetParameterByName("Output Positive L", 0.5f);
    const Channels out = RenderFrames(*driver, 512, 256);
    EXPECT_FLOAT_EQ(out[0][511], 0.5f);
}

TEST(WindowBadInput, NoGlx) {
    XvfbServer noGlx(false);
    ASSERT_TRUE(noGlx.Running());
    const std::string name = noGlx.Name();
    X11Window window;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(window.Open(400, 200, "x", 0, name.c_str()));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "editor: the X display \"" + name + "\" has no GLX extension\n");
    EXPECT_EQ(window.LastError(), "the X display \"" + name + "\" has no GLX extension");
}

TEST(WindowBadInput, MissingFontLeavesTextUndrawnAndControlsWork) {
    DCWindow w;
    w.rig->manager->SetFontChoices({"/no/such/Verdana.ttf"}, 13, 11, 11);
    testing::internal::CaptureStderr();
    ASSERT_TRUE(w.rig->Open()) << w.rig->window.LastError();
    w.rig->WaitFrames(3);
    const std::string messages = testing::internal::GetCapturedStderr();
    EXPECT_NE(messages.find("font not found: \"/no/such/Verdana.ttf\"; text is not drawn\n"),
              std::string::npos)
        << messages;
    EXPECT_FALSE(w.rig->manager->mainFont->Loaded());
    int x = 0, y = 0;
    w.Centre(w.rig->panel.knob, x, y);
    w.rig->MoveTo(x, y);
    w.rig->Press();
    w.rig->MoveTo(x, y - 200);
    w.rig->Release();
    EXPECT_EQ(w.Value(w.level), 1.0f);
    EXPECT_TRUE(w.rig->WaitFrames(3));
}

TEST(WindowBadInput, MissingTextureDrawsWithoutIt) {
    DCWindow w;
    w.rig->manager->AddTexture("/no/such/skin.png");
    w.rig->manager->SetBackgroundTexture("/no/such/skin.png", 1);
    testing::internal::CaptureStderr();
    ASSERT_TRUE(w.rig->Open()) << w.rig->window.LastError();
    EXPECT_TRUE(w.rig->WaitFrames(3));
    const std::string messages = testing::internal::GetCapturedStderr();
    EXPECT_NE(messages.find("texture \"/no/such/skin.png\" could not be read: "), std::string::npos)
        << messages;
    w.driver->Module().SetTableValue(w.level, 0.4f);
    EXPECT_TRUE(w.rig->WaitFrames(2));
    EXPECT_FLOAT_EQ(w.rig->panel.knob->normalised, 0.4f);
}

TEST(WindowBadInput, BannerTextByMode) {
    DCWindow w;
    ASSERT_TRUE(w.rig->Open()) << w.rig->window.LastError();
    EXPECT_EQ(w.rig->manager->bannerText->Text(), "brelmont : corvane 2.6.1");
    DCWindow named;
    named.rig->manager->SetBannerMode("nameOnly");
    ASSERT_TRUE(named.rig->Open());
    EXPECT_EQ(named.rig->manager->bannerText->Text(), "corvane 2.6.1");
}

}  // namespace BR::Test
