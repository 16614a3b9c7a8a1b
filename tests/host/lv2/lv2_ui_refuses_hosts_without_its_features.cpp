// A host that offers no instance-access, no parent window or no idle interface gets null from the UI's
// instantiate with a message naming what is missing, and no crash; the plug-in keeps running and
// following its control ports without its editor.
#include <gtest/gtest.h>

#include "support/Lv2TestHost.h"
#include "support/Lv2UiHost.h"

namespace BR::Test {

namespace {
struct RefusalCase {
    UiFeatures offer;
    const char* named;
};
}  // namespace

TEST(Lv2UiRefusal, MissingFeatureGivesClearRefusal) {
    Lv2TestHost plugin(CorvaneLibrary(), "urn:brelmont:corvane:dc");
    ASSERT_TRUE(plugin.Valid());
    Lv2UiHost ui;
    ASSERT_NE(ui.display, nullptr);
    const RefusalCase cases[] = {
        {{false, true, true, true, true},
         "the host offers no instance-access (http://lv2plug.in/ns/ext/instance-access)"},
        {{true, false, true, true, true},
         "the host offers no parent window (http://lv2plug.in/ns/extensions/ui#parent)"},
        {{true, true, false, true, true},
         "the host offers no idle interface (http://lv2plug.in/ns/extensions/ui#idleInterface)"},
    };
    for (const RefusalCase& c : cases) {
        testing::internal::CaptureStderr();
        EXPECT_FALSE(ui.Open(&plugin.Instance(), c.offer));
        const std::string said = testing::internal::GetCapturedStderr();
        EXPECT_NE(said.find(std::string("corvane: the editor cannot open: ") + c.named +
                            "; the plug-in keeps running without its editor"),
                  std::string::npos)
            << said;
        // The plug-in goes on: a port change reaches its output at the next block.
        plugin.Control("output_positive_l") = 0.375f;
        plugin.Run(256);
        EXPECT_EQ(plugin.outputs[0][255], 0.375f);
        plugin.Control("output_positive_l") = 0.0f;
        plugin.Run(256);
    }
    // Optional features left out change nothing: it opens without touch and resize.
    EXPECT_TRUE(ui.Open(&plugin.Instance(), {true, true, true, false, false}));
    EXPECT_EQ(ui.Idle(50), 0);
    ui.Close();
}

}  // namespace BR::Test
