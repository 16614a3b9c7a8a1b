// The editor offers text on the X11 CLIPBOARD selection: another client pastes it as UTF-8 and sees
// the targets offered; once another owner takes the selection the text is dropped.
#include <X11/Xatom.h>
#include <gtest/gtest.h>

#include "support/WindowRigs.h"

namespace BR::Test {

namespace {
// Asks for the selection from a window of the test's own, pumping the editor until the answer comes.
bool Paste(EditorWindowRig& rig, Display* client, Window requestor, Atom target,
           std::vector<unsigned char>& data, Atom& type, int& format) {
    const Atom clipboard = XInternAtom(client, "CLIPBOARD", False);
    const Atom property = XInternAtom(client, "CORVANE_PASTE", False);
    XConvertSelection(client, clipboard, target, property, requestor, CurrentTime);
    XFlush(client);
    for (int i = 0; i < 200; ++i) {
        rig.Pump(10);
        XEvent event;
        if (!XCheckTypedWindowEvent(client, requestor, SelectionNotify, &event)) continue;
        if (event.xselection.property == None) return false;
        unsigned long count = 0, after = 0;
        unsigned char* bytes = nullptr;
        XGetWindowProperty(client, requestor, property, 0, 1 << 16, True, AnyPropertyType, &type, &format,
                           &count, &after, &bytes);
        const size_t size = format == 32 ? count * sizeof(long) : count * size_t(format / 8);
        data.assign(bytes, bytes + size);
        if (bytes) XFree(bytes);
        return true;
    }
    return false;
}
}  // namespace

TEST(WindowClipboard, OtherClientPastesText) {
    DCWindow w;
    ASSERT_TRUE(w.rig->Open()) << w.rig->window.LastError();
    const std::string path = "/brel/dc/1/Output Positive L";
    w.rig->window.SetClipboardText(path);
    Display* client = XOpenDisplay(SharedDisplay());
    ASSERT_NE(client, nullptr);
    const Window requestor = XCreateSimpleWindow(client, DefaultRootWindow(client), 0, 0, 1, 1, 0, 0, 0);
    std::vector<unsigned char> data;
    Atom type = 0;
    int format = 0;
    ASSERT_TRUE(
        Paste(*w.rig, client, requestor, XInternAtom(client, "UTF8_STRING", False), data, type, format));
    EXPECT_EQ(std::string(data.begin(), data.end()), path);
    EXPECT_EQ(format, 8);
    ASSERT_TRUE(Paste(*w.rig, client, requestor, XInternAtom(client, "TARGETS", False), data, type, format));
    EXPECT_EQ(type, XA_ATOM);
    EXPECT_EQ(data.size(), 3 * sizeof(long));
    // Another owner takes the selection.
    XSetSelectionOwner(client, XInternAtom(client, "CLIPBOARD", False), requestor, CurrentTime);
    XSync(client, False);
    w.rig->Pump(50);
    EXPECT_EQ(w.rig->window.ClipboardText(), "");
    XDestroyWindow(client, requestor);
    XCloseDisplay(client);
}

}  // namespace BR::Test
