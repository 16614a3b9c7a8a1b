// The host side of the editor UI for the tests: the features a host offers (each can be left out), a
// parent window on the tests' Xvfb, and records of the UI's port writes, touches and size requests.
#pragma once

#include <lv2/instance-access/instance-access.h>
#include <lv2/ui/ui.h>

#include <chrono>
#include <cstdlib>
#include <thread>
#include <vector>

// The atom forge before Xlib: Xlib's "Bool" macro would break the forge's field of that name.
#include "Lv2TestHost.h"
#include "host/lv2/Lv2Ui.h"
#include "tests/editor/support/EditorRig.h"

namespace BR::Test {

struct UiFeatures {
    bool instanceAccess = true, parent = true, idle = true, touch = true, resize = true;
};

class Lv2UiHost {
public:
    struct Write {
        uint32_t port;
        float value;
    };
    struct Touch {
        uint32_t port;
        bool grabbed;
    };

    // A parent window of 600 by 300 at (100, 100) on the tests' server, which becomes $DISPLAY.
    Lv2UiHost() {
        const char* name = SharedDisplay();
        if (!name) return;
        setenv("DISPLAY", name, 1);
        display = XOpenDisplay(name);
        if (!display) return;
        parent = XCreateSimpleWindow(display, DefaultRootWindow(display), 100, 100, 600, 300, 0, 0, 0);
        XMapWindow(display, parent);
        XSync(display, False);
    }
    ~Lv2UiHost() {
        Close();
        if (display) {
            XDestroyWindow(display, parent);
            XCloseDisplay(display);
        }
    }

    // Instantiates the UI for `instance` with the features asked for; false when it refused.
    bool Open(void* instance, const UiFeatures& offer = {}) {
        descriptor = CorvaneUiDescriptor(0);
        features.clear();
        if (offer.instanceAccess) features.push_back(&instanceFeature);
        if (offer.parent) features.push_back(&parentFeature);
        if (offer.idle) features.push_back(&idleFeature);
        if (offer.touch) features.push_back(&touchFeature);
        if (offer.resize) features.push_back(&resizeFeature);
        features.push_back(nullptr);
        instanceFeature.data = instance;
        parentFeature.data = reinterpret_cast<void*>(uintptr_t(parent));
        widget = nullptr;
        handle = descriptor->instantiate(descriptor, "urn:brelmont:corvane:dc", "", WriteFunction, this,
                                         &widget, features.data());
        if (handle)
            idle =
                static_cast<const LV2UI_Idle_Interface*>(descriptor->extension_data(LV2_UI__idleInterface));
        return handle != nullptr;
    }
    void Close() {
        if (handle) descriptor->cleanup(handle);
        handle = nullptr;
    }
    // Calls idle every 10 ms for `milliseconds`, as a host's timer would; the last result.
    int Idle(int milliseconds) {
        int result = 0;
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
        do {
            if (display) XSync(display, False);
            result = idle->idle(handle);
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        } while (std::chrono::steady_clock::now() < end);
        return result;
    }
    // A drag with the first button through XTest, from (x, y) on the screen, `dy` pixels up in steps of
    // 20, with idle calls between the events.
    void DragUp(int x, int y, int dy);
    void PortEvent(uint32_t port, float value) {
        descriptor->port_event(handle, port, sizeof value, 0, &value);
    }
    unsigned long Widget() const { return (unsigned long)(uintptr_t(widget)); }

    Display* display = nullptr;
    unsigned long parent = 0;
    LV2UI_Handle handle = nullptr;
    std::vector<Write> writes;
    std::vector<Touch> touches;
    int width = 0, height = 0;

private:
    static void WriteFunction(LV2UI_Controller controller, uint32_t port, uint32_t size, uint32_t format,
                              const void* buffer) {
        if (format == 0 && size == sizeof(float))
            static_cast<Lv2UiHost*>(controller)->writes.push_back({port, *static_cast<const float*>(buffer)});
    }
    static void TouchFunction(LV2UI_Feature_Handle handle, uint32_t port, bool grabbed) {
        static_cast<Lv2UiHost*>(handle)->touches.push_back({port, grabbed});
    }
    static int ResizeFunction(LV2UI_Feature_Handle handle, int w, int h) {
        auto* self = static_cast<Lv2UiHost*>(handle);
        self->width = w, self->height = h;
        return 0;
    }

    const LV2UI_Descriptor* descriptor = nullptr;
    const LV2UI_Idle_Interface* idle = nullptr;
    LV2UI_Widget widget = nullptr;
    LV2UI_Touch touch{this, TouchFunction};
    LV2UI_Resize resize{this, ResizeFunction};
    LV2_Feature instanceFeature{LV2_INSTANCE_ACCESS_URI, nullptr};
    LV2_Feature parentFeature{LV2_UI__parent, nullptr};
    LV2_Feature idleFeature{LV2_UI__idleInterface, nullptr};
    LV2_Feature touchFeature{LV2_UI__touch, &touch};
    LV2_Feature resizeFeature{LV2_UI__resize, &resize};
    std::vector<const LV2_Feature*> features;
};

}  // namespace BR::Test
