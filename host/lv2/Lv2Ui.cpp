// The LV2 UI: instantiate refuses a host without instance-access, a parent window or the idle
// interface; otherwise builds the panel in a child window of the parent and starts its render thread.
// Idle calls handle the window's events and report parameter changes as port writes.
#include "Lv2Ui.h"

#include <lv2/instance-access/instance-access.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "editor/GenericPanel.h"
#include "editor/PluginLuaGui.h"
#include "editor/X11Window.h"
#include "editor/ZPmanager.h"
#include "host/lv2/Lv2Bundle.h"
#include "host/lv2/Lv2Instance.h"

namespace BR {

namespace {

class Lv2Ui {
public:
    Lv2Ui(Lv2Instance& instance, LV2UI_Write_Function write, LV2UI_Controller controller,
          const LV2UI_Touch* touch)
        : module(instance.Driver().Module()), write(write), controller(controller), touch(touch) {}

    ~Lv2Ui() {
        // The render thread stops before its window goes; then the panel's state, then the elements.
        if (manager) manager->DestroyRenderTask();
        window.Close();
        gui.reset();
        manager.reset();
    }

    bool Open(unsigned long parent, const LV2UI_Resize* resize) {
        manager = std::make_unique<ZPmanager>(&module);
        gui = std::make_unique<PluginLuaGui>(&module);
        if (FindBuiltInScript(module.GetGuiScriptName()))
            gui->OpenPanel(manager.get());
        else
            BuildGenericPanel(*manager);
        if (!window.Open(manager->designWidth, manager->designHeight, module.GetModuleName(), parent,
                         nullptr)) {
            std::fprintf(stderr, "corvane: the editor cannot open: %s\n", window.LastError().c_str());
            return false;
        }
        window.manager = manager.get();
        manager->callbackContext = this;
        manager->beginEdit = [](int32_t parameter, void* context) {
            static_cast<Lv2Ui*>(context)->Touch(parameter, true);
        };
        manager->endEdit = [](int32_t parameter, void* context) {
            static_cast<Lv2Ui*>(context)->Touch(parameter, false);
        };
        const int32_t count = module.NumTableParameters();
        lastSeen.resize(size_t(count));
        lastPort.resize(size_t(count));
        for (int32_t k = 0; k < count; ++k)
            lastSeen[size_t(k)] = lastPort[size_t(k)] = module.GetTableValue(k);
        if (resize) resize->ui_resize(resize->handle, manager->designWidth, manager->designHeight);
        manager->CreateRenderTask(&window);
        return true;
    }

    unsigned long WindowId() const { return window.WindowId(); }

    // The host's value of a control port: port k + 1 is table row k; port 0, the bypass, the panel never
    // shows.
    void PortEvent(uint32_t port, uint32_t size, uint32_t format, const void* buffer) {
        if (format != 0 || size != sizeof(float) || port == 0 || port > lastPort.size()) return;
        std::memcpy(&lastPort[port - 1], buffer, sizeof(float));
    }

    // The host's UI thread: the window's events, then every row the editor (or OSC, Lua, the Learner)
    // changed since the last call, unless the host itself already holds that value. 1 once the window
    // is gone.
    int Idle() {
        if (!window.ProcessEvents(0)) return 1;
        for (size_t k = 0; k < lastSeen.size(); ++k) {
            const float value = module.GetTableValue(int32_t(k));
            if (value == lastSeen[k]) continue;
            lastSeen[k] = value;
            if (value == lastPort[k]) continue;
            lastPort[k] = value;
            write(controller, uint32_t(k + 1), sizeof(float), 0, &value);
        }
        return 0;
    }

private:
    void Touch(int32_t parameter, bool grabbed) {
        if (touch && parameter >= 0) touch->touch(touch->handle, uint32_t(parameter + 1), grabbed);
    }

    BrelCorvaneBase& module;
    LV2UI_Write_Function write;
    LV2UI_Controller controller;
    const LV2UI_Touch* touch;
    std::unique_ptr<ZPmanager> manager;
    std::unique_ptr<PluginLuaGui> gui;
    X11Window window;
    std::vector<float> lastSeen;  // each row's value at the last idle call
    std::vector<float> lastPort;  // each control port's value as the host last told or was told
};

const void* FindFeature(const LV2_Feature* const* features, const char* uri, bool& found) {
    found = false;
    for (const LV2_Feature* const* f = features; f && *f; ++f)
        if (std::strcmp((*f)->URI, uri) == 0) {
            found = true;
            return (*f)->data;
        }
    return nullptr;
}

void Refuse(const char* what) {
    std::fprintf(stderr,
                 "corvane: the editor cannot open: the host offers no %s; the plug-in keeps running without "
                 "its editor\n",
                 what);
}

LV2UI_Handle Instantiate(const LV2UI_Descriptor*, const char*, const char*, LV2UI_Write_Function write,
                         LV2UI_Controller controller, LV2UI_Widget* widget,
                         const LV2_Feature* const* features) {
    bool found = false;
    auto* instance =
        static_cast<Lv2Instance*>(const_cast<void*>(FindFeature(features, LV2_INSTANCE_ACCESS_URI, found)));
    if (!found || !instance) {
        Refuse("instance-access (" LV2_INSTANCE_ACCESS_URI ")");
        return nullptr;
    }
    const void* parent = FindFeature(features, LV2_UI__parent, found);
    if (!found || !parent) {
        Refuse("parent window (" LV2_UI__parent ")");
        return nullptr;
    }
    FindFeature(features, LV2_UI__idleInterface, found);
    if (!found) {
        Refuse("idle interface (" LV2_UI__idleInterface ")");
        return nullptr;
    }
    if (!write || !widget) {
        Refuse("port write function");
        return nullptr;
    }
    const auto* touch = static_cast<const LV2UI_Touch*>(FindFeature(features, LV2_UI__touch, found));
    const auto* resize = static_cast<const LV2UI_Resize*>(FindFeature(features, LV2_UI__resize, found));
    auto ui = std::make_unique<Lv2Ui>(*instance, write, controller, touch);
    if (!ui->Open(reinterpret_cast<uintptr_t>(parent), resize)) return nullptr;
    *widget = reinterpret_cast<LV2UI_Widget>(uintptr_t(ui->WindowId()));
    return ui.release();
}

void Cleanup(LV2UI_Handle handle) {
    delete static_cast<Lv2Ui*>(handle);
}

void PortEvent(LV2UI_Handle handle, uint32_t port, uint32_t size, uint32_t format, const void* buffer) {
    static_cast<Lv2Ui*>(handle)->PortEvent(port, size, format, buffer);
}

int Idle(LV2UI_Handle handle) {
    return static_cast<Lv2Ui*>(handle)->Idle();
}

const LV2UI_Idle_Interface kIdleInterface = {Idle};

const void* ExtensionData(const char* uri) {
    return std::strcmp(uri, LV2_UI__idleInterface) == 0 ? &kIdleInterface : nullptr;
}

const LV2UI_Descriptor kDescriptor = {kCorvaneUiUri, Instantiate, Cleanup, PortEvent, ExtensionData};

}  // namespace

const LV2UI_Descriptor* CorvaneUiDescriptor(uint32_t index) {
    return index == 0 ? &kDescriptor : nullptr;
}

}  // namespace BR
