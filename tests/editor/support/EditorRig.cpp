// The shared display, the test panel, the window rig with XTest input, and the thread count.
#include "EditorRig.h"

#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <dirent.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "editor/widgets/Label.h"

namespace BR::Test {

const char* SharedDisplay() {
    // 1024 by 768: room for drags 200 px beyond a window at (300, 300).
    static XvfbServer server(true, 1024, 768);
    return server.Running() ? server.Name().c_str() : nullptr;
}

TestPanel BuildTestPanel(Manager& manager, int32_t knobParameter, int32_t secondParameter,
                         int32_t dropParameter) {
    TestPanel panel;
    manager.SetDesignSize(400, 200);
    manager.SetBannerBounds(10, 175, 390, 190);
    manager.SetBannerContent("full", 20, -1);
    GuiTexture* atlas = manager.AddTexture("buttons.png");
    auto* renderer = new ArcKnobRenderer(atlas, 2, 128 - 2 - 34, 34, 2, 128 - 42 - 34);
    manager.animatedElements.push_back(renderer);
    panel.group = new NamedGroup(&manager, "Channel");
    panel.group->SetPosition(20, 20);
    if (knobParameter >= 0) {
        panel.field = new TextField(&manager, knobParameter, "%.2f");
        panel.field->SetRect(10, 10, 40, 12);
        panel.group->Add(panel.field);
        panel.knob = new ArcKnob(&manager, knobParameter, renderer);
        panel.knob->SetRect(13, 23, 34, 34);
        panel.group->Add(panel.knob);
        panel.group->Add(new Label(&manager, "Level", 30, 7));
    }
    if (secondParameter >= 0) {
        panel.secondKnob = new ArcKnob(&manager, secondParameter, renderer);
        panel.secondKnob->SetRect(70, 23, 34, 34);
        panel.group->Add(panel.secondKnob);
        panel.group->Add(new Label(&manager, "Other", 87, 7));
    }
    manager.rootGroup->Add(panel.group);
    if (dropParameter >= 0) {
        panel.dropDown = new ZPDropDown(&manager, dropParameter);
        panel.dropDown->SetRect(200, 60, 60, 12);
        manager.rootGroup->Add(panel.dropDown);
        manager.rootGroup->Add(new Label(&manager, "Mode", 230, 57));
    }
    return panel;
}

void WindowCentre(Manager& manager, UIElement* element, int& x, int& y) {
    const Point offset = element->ParentOffset();
    const float cx = (element->rect[0] + element->rect[3]) * 0.5f + offset.x;
    const float cy = (element->rect[1] + element->rect[4]) * 0.5f + offset.y;
    x = int(cx);
    y = manager.windowHeight - int(cy);
}

EditorWindowRig::EditorWindowRig(BrelCorvaneBase& module, int32_t knobParameter, int32_t secondParameter,
                                 int32_t dropParameter)
    : manager(std::make_unique<ZPmanager>(&module)) {
    panel = BuildTestPanel(*manager, knobParameter, secondParameter, dropParameter);
}

EditorWindowRig::EditorWindowRig(BrelCorvaneBase& module, const std::function<void(ZPmanager&)>& build)
    : manager(std::make_unique<ZPmanager>(&module)) {
    build(*manager);
}

EditorWindowRig::~EditorWindowRig() {
    manager->DestroyRenderTask();
    window.Close();
    if (input) XCloseDisplay(input);
}

bool EditorWindowRig::Open() {
    const char* display = SharedDisplay();
    if (!display) return false;
    if (!window.Open(manager->designWidth, manager->designHeight, "corvane test", 0, display)) return false;
    window.manager = manager.get();
    manager->CreateRenderTask(&window);
    input = XOpenDisplay(display);
    if (!input) return false;
    // Room around the window, so that drags may go 200 px beyond its edges.
    XMoveWindow(input, Window(window.WindowId()), kOriginX, kOriginY);
    Pump(50);
    return input != nullptr && WaitFrames(2);
}

void EditorWindowRig::Pump(int milliseconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    if (input) XSync(input, False);
    do {
        window.ProcessEvents(5);
    } while (std::chrono::steady_clock::now() < end);
}

bool EditorWindowRig::WaitFrames(int frames) {
    const uint64_t target = manager->FrameCount() + uint64_t(frames);
    for (int i = 0; i < 1000 && manager->FrameCount() < target; ++i)
        Pump(10);
    return manager->FrameCount() >= target;
}

void EditorWindowRig::MoveTo(int x, int y) {
    XTestFakeMotionEvent(input, -1, x + kOriginX, y + kOriginY, CurrentTime);
    Pump(30);
}

void EditorWindowRig::Press(int button) {
    XTestFakeButtonEvent(input, unsigned(button), True, CurrentTime);
    Pump(30);
}

void EditorWindowRig::Release(int button) {
    XTestFakeButtonEvent(input, unsigned(button), False, CurrentTime);
    Pump(30);
}

void EditorWindowRig::Key(unsigned long keysym, bool down) {
    XTestFakeKeyEvent(input, XKeysymToKeycode(input, keysym), down ? True : False, CurrentTime);
    Pump(20);
}

void EditorWindowRig::Type(const std::string& text) {
    for (char c : text) {
        unsigned long keysym = c == '.' ? XK_period : c == '-' ? XK_minus : (unsigned long)(unsigned char)c;
        Key(keysym, true);
        Key(keysym, false);
    }
}

std::vector<uint8_t> EditorWindowRig::Grab(int& width, int& height) {
    return GrabWindow(SharedDisplay(), window.WindowId(), width, height);
}

double DifferentPixelFraction(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b, int tolerance) {
    if (a.size() != b.size() || a.empty()) return 1.0;
    size_t different = 0;
    for (size_t i = 0; i < a.size(); i += 3) {
        for (size_t k = 0; k < 3; ++k) {
            if (std::abs(int(a[i + k]) - int(b[i + k])) > tolerance) {
                ++different;
                break;
            }
        }
    }
    return double(different) / double(a.size() / 3);
}

int CountThreads() {
    // ThreadSanitizer starts a background thread of its own at the process's first thread creation:
    // one thread made and joined before the first count has it there already, so that a count before
    // and after the code under test differs only by the threads that code left behind.
    static const bool settled = [] {
        std::thread([] {}).join();
        return true;
    }();
    (void)settled;
    int count = 0;
    if (DIR* dir = opendir("/proc/self/task")) {
        while (dirent* entry = readdir(dir))
            if (entry->d_name[0] != '.') ++count;
        closedir(dir);
    }
    return count;
}

}  // namespace BR::Test
