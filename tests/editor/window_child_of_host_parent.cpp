// The editor's window as the child of a host's window (as an LV2 UI is): it opens inside the parent,
// draws, and a resize of the editor resizes the parent by the same difference so the host's frame follows.
#include <gtest/gtest.h>

#include "support/WindowRigs.h"

namespace BR::Test {

TEST(WindowChildOfHost, ResizeCarriesParent) {
    const char* display = SharedDisplay();
    ASSERT_NE(display, nullptr);
    Display* host = XOpenDisplay(display);
    ASSERT_NE(host, nullptr);
    const Window parent = XCreateSimpleWindow(host, DefaultRootWindow(host), 0, 0, 450, 260, 0, 0, 0);
    XMapWindow(host, parent);
    XSync(host, False);
    auto driver = MakeDriver("dc");
    {
        EditorWindowRig rig(driver->Module(), 0, 1, -1);
        ASSERT_TRUE(rig.window.Open(400, 200, "child", parent, display));
        rig.window.manager = rig.manager.get();
        rig.manager->CreateRenderTask(&rig.window);
        for (int i = 0; i < 400 && rig.manager->FrameCount() < 3; ++i)
            rig.window.ProcessEvents(10);
        EXPECT_GE(rig.manager->FrameCount(), 3u);
        Window root = 0, parentOfChild = 0, *children = nullptr;
        unsigned count = 0;
        XQueryTree(host, Window(rig.window.WindowId()), &root, &parentOfChild, &children, &count);
        if (children) XFree(children);
        EXPECT_EQ(parentOfChild, parent);
        rig.window.ResizeWindow(500, 250);
        XSync(host, False);
        XWindowAttributes attributes;
        XGetWindowAttributes(host, parent, &attributes);
        EXPECT_EQ(attributes.width, 550);
        EXPECT_EQ(attributes.height, 310);
        EXPECT_EQ(rig.window.GetWindowHeight(), 250);
    }
    XDestroyWindow(host, parent);
    XCloseDisplay(host);
}

}  // namespace BR::Test
