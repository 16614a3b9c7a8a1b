// Under Xvfb with synthetic input, the X events become the manager's messages as the window table has
// them: a press of any of the three buttons is a click count 1, a second one close in time and place a
// double click (2), a third starts over; the right button adds its bit; Shift, Control and Alt read at
// the press give 0x200, 0x800 and 0x100; the wheel (no button down) is a press, a 10-pixel drag up and
// a release; keys of the key map and characters reach the focused element; losing the keyboard focus
// ends the element's focus.
#include <gtest/gtest.h>

#include "support/DialogRig.h"

namespace BR::Test {

namespace {
struct Recorder : UIElement {
    using UIElement::UIElement;
    UIElement* HitTest(Point p) override {
        return p.x >= rect[0] && p.x < rect[3] && p.y >= rect[1] && p.y < rect[4] ? this : nullptr;
    }
    void MouseDown(Point p, uint32_t modifiers, int32_t clickCount) override {
        log.push_back("down " + std::to_string(clickCount) + " " + std::to_string(modifiers));
        downY = p.y;
    }
    void MouseDragged(Point p, uint32_t) override {
        log.push_back("drag " + std::to_string(int(p.y - downY)));
    }
    void MouseUp(Point, uint32_t) override { log.push_back("up"); }
    bool KeyDown(int32_t character) override {
        log.push_back("key " + std::to_string(character));
        return true;
    }
    void FocusLost() override { log.push_back("focus lost"); }
    std::vector<std::string> log;
    float downY = 0;
};
}  // namespace

TEST(WindowXEvents, ButtonsClickCountsModifiersWheelKeysAndFocus) {
    DialogWindowRig w("dc");
    w.panel.InitOnly();
    w.panel.manager.SetDesignSize(300, 150);
    auto* recorder = new Recorder(&w.panel.manager);
    recorder->SetRect(20, 20, 200, 100);
    w.panel.manager.rootGroup->Add(recorder);
    ASSERT_TRUE(w.OpenWindow()) << w.window.LastError();
    std::vector<std::string>& log = recorder->log;

    w.Click(Point{60, 60});
    w.Click(Point{60, 60});
    w.Click(Point{60, 60});
    EXPECT_EQ(log, (std::vector<std::string>{"down 1 0", "up", "down 2 0", "up", "down 1 0", "up"}));
    log.clear();
    w.Pump(500);  // past the double-click time

    w.Click(Point{60, 60}, 2);
    w.Click(Point{60, 60}, 2);
    w.Pump(500);
    w.Click(Point{60, 60}, 3);
    EXPECT_EQ(log, (std::vector<std::string>{"down 1 0", "up", "down 2 0", "up", "down 1 4096", "up"}));
    log.clear();
    w.Pump(500);

    const unsigned long modifierKeys[] = {XK_Shift_L, XK_Control_L, XK_Alt_L};
    for (unsigned long key : modifierKeys) {
        XTestFakeKeyEvent(w.input, XKeysymToKeycode(w.input, key), True, CurrentTime);
        w.Pump(20);
        w.Click(Point{60, 60});
        XTestFakeKeyEvent(w.input, XKeysymToKeycode(w.input, key), False, CurrentTime);
        w.Pump(500);
    }
    EXPECT_EQ(log, (std::vector<std::string>{"down 1 512", "up", "down 1 2048", "up", "down 1 256", "up"}));
    log.clear();

    w.Click(Point{60, 60}, 4);  // one wheel notch up: press and release of button 4
    EXPECT_EQ(log, (std::vector<std::string>{"down 1 0", "drag 10", "up"}));
    log.clear();
    w.Pump(500);

    // The press took the keyboard; keys go to the focused element.
    Window focus = 0;
    int revert = 0;
    XGetInputFocus(w.input, &focus, &revert);
    EXPECT_EQ(focus, Window(w.window.WindowId()));
    w.panel.manager.SetFocusedElement(recorder);
    w.Key(XK_Left);
    w.Key(XK_Up);
    w.Key(XK_Right);
    w.Key(XK_Down);
    w.Key(XK_BackSpace);
    w.Key(XK_Insert);
    w.Key(XK_Delete);
    w.Key(XK_KP_Delete);
    w.Type("a7");
    EXPECT_EQ(log, (std::vector<std::string>{"key 28", "key 30", "key 29", "key 31", "key 8", "key 45",
                                             "key 46", "key 46", "key 97", "key 55"}));
    log.clear();
    XSetInputFocus(w.input, DefaultRootWindow(w.input), RevertToNone, CurrentTime);
    w.Pump(100);
    EXPECT_EQ(log, (std::vector<std::string>{"focus lost"}));
    EXPECT_EQ(w.panel.manager.focusedElement, nullptr);
}

}  // namespace BR::Test
