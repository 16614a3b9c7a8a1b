// Rendering a panel off screen: a window on the given or a private server, drawn and grabbed.
#include "PanelScreenshot.h"

#include <memory>

#include "GenericPanel.h"
#include "PluginLuaGui.h"
#include "PrivateXServer.h"
#include "X11Window.h"
#include "ZPmanager.h"
#include "framework/BrelCorvaneBase.h"

namespace BR {

PanelPicture RenderManager(ZPmanager& manager, const char* display, int frames) {
    PanelPicture picture;
    std::unique_ptr<PrivateXServer> server;
    if (!display) {
        server = std::make_unique<PrivateXServer>();
        if (!server->Running()) {
            picture.error = "no display given and Xvfb could not be started";
            return picture;
        }
        display = server->Name().c_str();
    }
    X11Window window;
    if (!window.Open(manager.designWidth, manager.designHeight, "corvane panel", 0, display)) {
        picture.error = "the editor cannot open: " + window.LastError();
        return picture;
    }
    window.manager = &manager;
    manager.CreateRenderTask(&window);
    // The frame counter starts with the render thread; easing colours settle within a few frames.
    for (int i = 0; i < 500 && manager.FrameCount() < uint64_t(frames); ++i)
        window.ProcessEvents(10);
    if (manager.FrameCount() >= uint64_t(frames))
        picture.rgb = GrabWindowRgb(display, window.WindowId(), picture.width, picture.height);
    else
        picture.error = "the render thread drew no frames";
    manager.DestroyRenderTask();
    window.Close();
    return picture;
}

PanelPicture RenderPanel(BrelCorvaneBase& module, const char* display, int frames) {
    ZPmanager manager(&module);
    PluginLuaGui gui(&module);
    if (FindBuiltInScript(module.GetGuiScriptName()))
        gui.OpenPanel(&manager);
    else
        BuildGenericPanel(manager);
    PanelPicture picture = RenderManager(manager, display, frames);
    // A script's first logged line comes before any trouble of the window.
    if (!gui.errorLog.empty()) picture.error = gui.errorLog.front();
    return picture;
}

}  // namespace BR
