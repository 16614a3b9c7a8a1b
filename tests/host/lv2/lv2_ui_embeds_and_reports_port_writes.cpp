// The editor UI in a host's parent window under Xvfb: its window is a child of the parent, sized to the
// panel (asked of the host through resize), drawn by its render thread; a knob dragged by synthetic
// input is reported through the port write of its control port inside a touch gesture, so a host
// records it; a value the host sets itself is never written back.
#include <gtest/gtest.h>

#include "support/Lv2TestHost.h"
#include "support/Lv2UiHost.h"

namespace BR::Test {

TEST(Lv2UiEmbedded, KnobDragBecomesPortWriteInTouchGesture) {
    Lv2TestHost plugin(CorvaneLibrary(), "urn:brelmont:corvane:dc");
    ASSERT_TRUE(plugin.Valid());
    plugin.Run(256);
    Lv2UiHost ui;
    ASSERT_NE(ui.display, nullptr);
    ASSERT_TRUE(ui.Open(&plugin.Instance()));
    EXPECT_EQ(ui.width, 510);
    EXPECT_EQ(ui.height, 220);
    Window root = 0, parentOfWidget = 0, *children = nullptr;
    unsigned count = 0;
    ASSERT_TRUE(XQueryTree(ui.display, Window(ui.Widget()), &root, &parentOfWidget, &children, &count));
    if (children) XFree(children);
    EXPECT_EQ(parentOfWidget, Window(ui.parent));
    EXPECT_EQ(ui.Idle(100), 0);

    // The render thread draws on its own: wait up to 10 s for the panel to cover the window.
    int width = 0, height = 0;
    std::vector<uint8_t> shot;
    double drawnShare = 0;
    for (int attempt = 0; attempt < 100 && drawnShare <= 0.8; ++attempt) {
        ui.Idle(100);
        shot = GrabWindow(SharedDisplay(), ui.Widget(), width, height);
        size_t drawn = 0;  // pixels away from the window's black background
        for (size_t i = 0; i + 2 < shot.size(); i += 3)
            if (shot[i] + shot[i + 1] + shot[i + 2] > 60) ++drawn;
        drawnShare = double(drawn) / double(std::max(1, width * height));
    }
    ASSERT_EQ(width, 510);
    ASSERT_EQ(height, 220);
    EXPECT_GT(drawnShare, 0.8);
    if (std::getenv("CORVANE_UPDATE_SCREENSHOTS"))
        WritePngRgb(std::string(CORVANE_SOURCE_TREE) + "/docs/editor/lv2-ui-dc.png", shot, width, height);

    // The left "Out 0->1" knob of the DC panel, dragged 100 px up: half its range.
    const uint32_t port = plugin.PortIndex("output_positive_l");
    ui.DragUp(100 + 38, 100 + 62, 100);

    ASSERT_FALSE(ui.writes.empty());
    EXPECT_EQ(ui.writes.back().port, port);
    EXPECT_FLOAT_EQ(ui.writes.back().value, 0.5f);
    for (const Lv2UiHost::Write& write : ui.writes)
        EXPECT_EQ(write.port, port);
    ASSERT_GE(ui.touches.size(), 2u);
    EXPECT_EQ(ui.touches.front().port, port);
    EXPECT_TRUE(ui.touches.front().grabbed);
    EXPECT_EQ(ui.touches.back().port, port);
    EXPECT_FALSE(ui.touches.back().grabbed);

    // The host applies the write to its port and echoes it as a port event: no further writes.
    plugin.Control("output_positive_l") = ui.writes.back().value;
    ui.PortEvent(port, ui.writes.back().value);
    plugin.Run(256);
    EXPECT_FLOAT_EQ(plugin.outputs[0][255], 0.5f);
    ui.writes.clear();
    ui.Idle(50);
    EXPECT_TRUE(ui.writes.empty());

    // Host automation: the port changes and the UI hears of it before the block applies it. Neither the
    // old value seen before the block nor the new one after it is written back.
    plugin.Control("output_positive_l") = 0.25f;
    ui.PortEvent(port, 0.25f);
    ui.Idle(30);
    plugin.Run(256);
    ui.Idle(30);
    EXPECT_TRUE(ui.writes.empty());
    EXPECT_FLOAT_EQ(plugin.Module().GetTableValue(0), 0.25f);

    // A change from elsewhere (OSC, Lua, the Learner) goes to the host too.
    plugin.Module().GetParameter(1 + 1)->SetValue(-0.5f);  // "Output Symmetric L"
    ui.Idle(30);
    ASSERT_EQ(ui.writes.size(), 1u);
    EXPECT_EQ(ui.writes[0].port, plugin.PortIndex("output_symmetric_l"));
    EXPECT_FLOAT_EQ(ui.writes[0].value, -0.5f);
    ui.Close();
}

}  // namespace BR::Test
