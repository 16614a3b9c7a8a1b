// The process's own Xvfb, started with -displayfd and stopped at the end; window grabs and PNG files.
#include "PrivateXServer.h"

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

extern char** environ;

namespace BR {

PrivateXServer::PrivateXServer(bool withGlx, int width, int height) {
    int ready[2];
    if (pipe(ready) != 0) return;
    fcntl(ready[0], F_SETFD, FD_CLOEXEC);
    std::vector<std::string> words = {
        "Xvfb",      "-displayfd", std::to_string(ready[1]),
        "-screen",   "0",          std::to_string(width) + "x" + std::to_string(height) + "x24",
        "-nolisten", "tcp",        "-noreset"};
    if (!withGlx) words.insert(words.end(), {"-extension", "GLX"});
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

bool ReadPng(const std::string& path, std::vector<uint8_t>& rgb, int& width, int& height) {
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str())) return false;
    image.format = PNG_FORMAT_RGB;
    width = int(image.width);
    height = int(image.height);
    rgb.resize(PNG_IMAGE_SIZE(image));
    return png_image_finish_read(&image, nullptr, rgb.data(), 0, nullptr) != 0;
}

}  // namespace BR
