// A module's panel (its script, or controls made by a Lua snippet) in a window under Xvfb, with XTest
// input in panel coordinates, for the tests of the dialogs the editor draws over its panel.
#pragma once

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <chrono>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "LuaPanelRig.h"
#include "editor/dialogs/Dialogs.h"
#include "editor/widgets/Button.h"
#include "framework/PreferenceStore.h"

namespace BR::Test {

struct DialogWindowRig {
    static constexpr int kOriginX = 100, kOriginY = 100;

    explicit DialogWindowRig(const std::string& stem) : panel(stem) {}
    ~DialogWindowRig() {
        panel.manager.DestroyRenderTask();
        window.Close();
        if (input) XCloseDisplay(input);
    }
    // The module's own panel script.
    bool OpenScript() {
        panel.Open();
        return OpenWindow();
    }
    // An empty panel of the given size with the controls `code` makes.
    bool OpenSnippet(int width, int height, const std::string& code) {
        panel.InitOnly();
        panel.manager.SetDesignSize(width, height);
        const std::string error = panel.Run(code);
        if (!error.empty()) {
            ADD_FAILURE() << error;
            return false;
        }
        panel.gui->ApplyFonts();
        // A module without a panel script of its own logs that to the status line: not part of these
        // pictures.
        panel.manager.hoveredParameter = -1;
        return OpenWindow();
    }
    bool OpenWindow() {
        const char* display = SharedDisplay();
        if (!display) return false;
        Manager& m = panel.manager;
        if (!window.Open(m.designWidth, m.designHeight, "dialog test", 0, display)) return false;
        window.manager = &m;
        m.CreateRenderTask(&window);
        input = XOpenDisplay(display);
        if (!input) return false;
        XMoveWindow(input, Window(window.WindowId()), kOriginX, kOriginY);
        Pump(50);
        return WaitFrames(3);
    }
    void Pump(int milliseconds) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
        if (input) XSync(input, False);
        do {
            window.ProcessEvents(5);
        } while (std::chrono::steady_clock::now() < end);
    }
    bool WaitFrames(int frames) {
        const uint64_t target = panel.manager.FrameCount() + uint64_t(frames);
        for (int i = 0; i < 1000 && panel.manager.FrameCount() < target; ++i)
            Pump(10);
        return panel.manager.FrameCount() >= target;
    }
    // A click at a point of the panel (y up), as the pointer and button of the X server give it.
    void Click(Point p, int button = 1) {
        const int x = int(p.x), y = panel.manager.designHeight - int(p.y) - 1;
        XTestFakeMotionEvent(input, -1, x + kOriginX, y + kOriginY, CurrentTime);
        Pump(20);
        XTestFakeButtonEvent(input, unsigned(button), True, CurrentTime);
        Pump(20);
        XTestFakeButtonEvent(input, unsigned(button), False, CurrentTime);
        Pump(30);
    }
    void Key(unsigned long keysym) {
        XTestFakeKeyEvent(input, XKeysymToKeycode(input, keysym), True, CurrentTime);
        Pump(10);
        XTestFakeKeyEvent(input, XKeysymToKeycode(input, keysym), False, CurrentTime);
        Pump(10);
    }
    void Type(const std::string& text) {
        for (char c : text) {
            const unsigned long keysym = c == '.'   ? XK_period
                                         : c == '-' ? XK_minus
                                         : c == '/' ? XK_slash
                                         : c == ' ' ? XK_space
                                         : c == '_' ? XK_underscore
                                         : c == ':' ? XK_colon
                                                    : (unsigned long)(unsigned char)c;
            // Capitals and ":" are the shifted level of their keys.
            if ((c >= 'A' && c <= 'Z') || c == ':') {
                XTestFakeKeyEvent(input, XKeysymToKeycode(input, XK_Shift_L), True, CurrentTime);
                Key(keysym);
                XTestFakeKeyEvent(input, XKeysymToKeycode(input, XK_Shift_L), False, CurrentTime);
                Pump(10);
            } else if (c == '_') {
                XTestFakeKeyEvent(input, XKeysymToKeycode(input, XK_Shift_L), True, CurrentTime);
                Key(XK_minus);
                XTestFakeKeyEvent(input, XKeysymToKeycode(input, XK_Shift_L), False, CurrentTime);
                Pump(10);
            } else {
                Key(keysym);
            }
        }
    }
    Dialog* ActiveDialog() { return panel.manager.ActiveDialog(); }
    // The centre of a control of the showing dialog; of row `row` of a list (or an open combo box) when
    // `row` is 0 or more.
    Point DialogPoint(int32_t id, int32_t row = -1) {
        Dialog* d = ActiveDialog();
        if (!d) return Point{-1, -1};
        return row < 0 ? d->Centre(id) : d->RowCentre(id, row);
    }
    // The centre of the first element of the root group drawn with `caption` (a button), panel space.
    Point ButtonCentre(const std::string& caption) {
        for (UIElement* element : panel.manager.elements)
            if (auto* button = dynamic_cast<Button*>(element); button && button->caption == caption) {
                const Point offset = element->ParentOffset();
                return Point{(element->rect[0] + element->rect[3]) * 0.5f + offset.x,
                             (element->rect[1] + element->rect[4]) * 0.5f + offset.y};
            }
        ADD_FAILURE() << "no button \"" << caption << "\"";
        return Point{-1, -1};
    }
    std::vector<uint8_t> Grab(int& width, int& height) {
        return GrabWindow(SharedDisplay(), window.WindowId(), width, height);
    }
    // Writes the picture under docs/editor/ when CORVANE_UPDATE_SCREENSHOTS is set.
    void SaveShot(const std::string& name) {
        if (!std::getenv("CORVANE_UPDATE_SCREENSHOTS")) return;
        WaitFrames(3);
        int width = 0, height = 0;
        const std::vector<uint8_t> rgb = Grab(width, height);
        WritePngRgb(std::string(CORVANE_SOURCE_TREE) + "/docs/editor/" + name, rgb, width, height);
    }

    LuaPanelRig panel;
    X11Window window;
    Display* input = nullptr;
};

// The preference file as name to value.
inline std::map<std::string, std::string> ReadPreferenceFile() {
    std::map<std::string, std::string> values;
    std::ifstream file(PreferenceStore::FilePath());
    std::string line;
    while (std::getline(file, line)) {
        const size_t equals = line.find('=');
        if (equals != std::string::npos) values[line.substr(0, equals)] = line.substr(equals + 1);
    }
    return values;
}

// A string property of a module, read as the modules hand them out.
inline std::string StringProperty(BrelCorvaneBase& module, uint32_t property) {
    const char* text = nullptr;
    if (module.GetProperty(property, &text) != kNoErr || !text) return "<none>";
    return text;
}

}  // namespace BR::Test
