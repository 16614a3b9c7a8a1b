// What the editor tests share: an Xvfb of their own on a free display, a small test panel built in code,
// an editor window around a module, synthetic input through XTest, and screenshots.
#pragma once

#include <X11/Xlib.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "editor/PrivateXServer.h"
#include "editor/X11Window.h"
#include "editor/ZPmanager.h"
#include "editor/widgets/ArcKnobRenderer.h"
#include "editor/widgets/DropDown.h"
#include "editor/widgets/Group.h"
#include "editor/widgets/Knob.h"
#include "editor/widgets/TextField.h"
#include "host/HostDriver.h"

namespace BR::Test {

// Xvfb on a display it finds free, with GLX or without it (the editor library's own starter).
using XvfbServer = PrivateXServer;

// The process's shared server, started at first use.
const char* SharedDisplay();

// The controls of the test panel, 400 by 200: a group "Channel" at (20, 20) with a knob and its field,
// a drop-down, and a button; the banner across the top.
struct TestPanel {
    NamedGroup* group = nullptr;
    ArcKnob* knob = nullptr;
    TextField* field = nullptr;
    DropDown* dropDown = nullptr;
    ArcKnob* secondKnob = nullptr;
};
// Knob and field on `knobParameter`, the second knob on `secondParameter`, the drop-down on
// `dropParameter` (any may be -1 to leave it out).
TestPanel BuildTestPanel(Manager& manager, int32_t knobParameter, int32_t secondParameter,
                         int32_t dropParameter);

// The centre of a control in window coordinates (y down), for pointer events.
void WindowCentre(Manager& manager, UIElement* element, int& x, int& y);

// A module in a window: the manager, the window, and the window thread's event loop run by the test.
class EditorWindowRig {
public:
    EditorWindowRig(BrelCorvaneBase& module, int32_t knobParameter, int32_t secondParameter,
                    int32_t dropParameter);
    // Around a panel that `build` makes in the manager (a module's script, say).
    EditorWindowRig(BrelCorvaneBase& module, const std::function<void(ZPmanager&)>& build);
    ~EditorWindowRig();
    bool Open();
    // Runs the window thread's event loop for `milliseconds`.
    void Pump(int milliseconds);
    // Waits until the render thread has drawn `frames` more frames.
    bool WaitFrames(int frames);

    // Where the window stands on the 1024 by 768 screen.
    static constexpr int kOriginX = 300, kOriginY = 300;
    // XTest input on a connection of the test's own, then the events are pumped; points are in the
    // window's coordinates, y down.
    void MoveTo(int x, int y);
    void Press(int button = 1);
    void Release(int button = 1);
    void Key(unsigned long keysym, bool down);
    void Type(const std::string& text);
    // RGB rows of the window, top row first.
    std::vector<uint8_t> Grab(int& width, int& height);

    std::unique_ptr<ZPmanager> manager;
    X11Window window;
    TestPanel panel;
    Display* input = nullptr;
};

// RGB rows of a window, top row first, through a connection of its own to `display`.
inline std::vector<uint8_t> GrabWindow(const char* display, unsigned long window, int& width, int& height) {
    return GrabWindowRgb(display, window, width, height);
}

// Writes and reads RGB images as PNG.
inline bool WritePngRgb(const std::string& path, const std::vector<uint8_t>& rgb, int width, int height) {
    return WritePng(path, rgb, width, height);
}
inline bool ReadPngRgb(const std::string& path, std::vector<uint8_t>& rgb, int& width, int& height) {
    return ReadPng(path, rgb, width, height);
}
// Pixels whose channels differ by more than `tolerance`, as a fraction of all.
double DifferentPixelFraction(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b, int tolerance);

// The threads of this process, from /proc/self/task (a sanitizer's own background thread included
// from the first call on).
int CountThreads();

}  // namespace BR::Test
