// Rendering a panel off screen: the private server, the window grab and the PNG file.
#include "PanelScreenshot.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <fcntl.h>
#include <png.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <memory>

#include "GenericPanel.h"
#include "PluginLuaGui.h"
#include "X11Window.h"
#include "ZPmanager.h"
#include "framework/BrelCorvaneBase.h"

extern char** environ;

namespace BR {

PrivateXServer::PrivateXServer() {
    int ready[2];
    if (pipe(ready) != 0) return;
    fcntl(ready[0], F_SETFD, FD_CLOEXEC);
    std::vector<std::string> words = {"Xvfb",      "-displayfd", std::to_string(ready[1]),
                                      "-screen",   "0",          "1280x1024x24",
                                      "-nolisten", "tcp",        "-noreset"};
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t child = -1;
    if (posix_spawnp(&child, "Xvfb", &actions, nullptr, argv.data(), environ) != 0) child = -1;
    posix_spawn_file_actions_destroy(&actions);
    close(ready[1]);
    std::string number;
    if (child > 0) {
        // The server writes its display number once it accepts clients; ten seconds on a busy machine.
        pollfd wait{ready[0], POLLIN, 0};
        char c = 0;
        while (poll(&wait, 1, 10000) > 0 && read(ready[0], &c, 1) == 1 && c != '\n')
            number += c;
    }
    close(ready[0]);
    if (child <= 0) return;
    if (number.empty()) {
        kill(child, SIGTERM);
        int status = 0;
        waitpid(child, &status, 0);
        return;
    }
    display = ":" + number;
    pid = child;
}

PrivateXServer::~PrivateXServer() {
    if (pid <= 0) return;
    kill(pid, SIGTERM);
    int status = 0;
    waitpid(pid, &status, 0);
}

std::vector<uint8_t> GrabWindowRgb(const char* displayName, unsigned long window, int& width, int& height) {
    std::vector<uint8_t> rgb;
    Display* display = XOpenDisplay(displayName);
    if (!display) return rgb;
    XWindowAttributes attributes;
    XGetWindowAttributes(display, Window(window), &attributes);
    width = attributes.width;
    height = attributes.height;
    XImage* image =
        XGetImage(display, Window(window), 0, 0, unsigned(width), unsigned(height), AllPlanes, ZPixmap);
    if (image) {
        rgb.resize(size_t(width) * size_t(height) * 3);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const unsigned long pixel = XGetPixel(image, x, y);
                uint8_t* out = &rgb[(size_t(y) * size_t(width) + size_t(x)) * 3];
                out[0] = uint8_t((pixel >> 16) & 0xFF);
                out[1] = uint8_t((pixel >> 8) & 0xFF);
                out[2] = uint8_t(pixel & 0xFF);
            }
        XDestroyImage(image);
    }
    XCloseDisplay(display);
    return rgb;
}

bool WritePng(const std::string& path, const std::vector<uint8_t>& rgb, int width, int height) {
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    image.width = png_uint_32(width);
    image.height = png_uint_32(height);
    image.format = PNG_FORMAT_RGB;
    return png_image_write_to_file(&image, path.c_str(), 0, rgb.data(), 0, nullptr) != 0;
}

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
