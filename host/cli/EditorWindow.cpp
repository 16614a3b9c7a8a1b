// The editor of one module in a window of its own, for `corvane edit` and `corvane live --edit`.
#include "EditorWindow.h"

#include "editor/GenericPanel.h"
#include "editor/PluginLuaGui.h"
#include "editor/X11Window.h"
#include "editor/ZPmanager.h"
#include "framework/BrelCorvaneBase.h"

namespace BR {

struct EditorWindow::Parts {
    explicit Parts(BrelCorvaneBase& module) : manager(&module), gui(&module) {}
    ZPmanager manager;
    PluginLuaGui gui;
    X11Window window;
    bool open = false;
};

EditorWindow::EditorWindow() = default;

EditorWindow::~EditorWindow() {
    Close();
}

bool EditorWindow::Open(BrelCorvaneBase& module, const std::string& title) {
    Close();
    parts = std::make_unique<Parts>(module);
    // The panel script of the module; the plain grid only where no script is built in yet.
    if (FindBuiltInScript(module.GetGuiScriptName()))
        parts->gui.OpenPanel(&parts->manager);
    else
        BuildGenericPanel(parts->manager);
    if (!parts->window.Open(parts->manager.designWidth, parts->manager.designHeight, title, 0, nullptr)) {
        error = parts->window.LastError();
        parts.reset();
        return false;
    }
    parts->window.manager = &parts->manager;
    parts->manager.CreateRenderTask(&parts->window);
    parts->open = true;
    return true;
}

bool EditorWindow::Pump(int milliseconds) {
    if (!parts || !parts->open) return false;
    if (!parts->window.ProcessEvents(milliseconds)) Close();
    return parts && parts->open;
}

void EditorWindow::Close() {
    if (!parts) return;
    if (parts->open) {
        // The render thread stops before its window goes.
        parts->manager.DestroyRenderTask();
        parts->window.Close();
        parts->open = false;
    }
    parts.reset();
}

}  // namespace BR
