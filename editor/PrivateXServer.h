// An X server of the process's own: Xvfb started on a display it picks itself, for pictures of panels
// drawn off screen and for the editor's tests; and the window grab and PNG files that go with it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace BR {

// Xvfb on a free display (-displayfd), so that programs running side by side, or another X server
// on the machine, never share one; stopped at destruction. Without GLX it stands for a display on
// which the editor cannot draw.
class PrivateXServer {
public:
    explicit PrivateXServer(bool withGlx = true, int width = 1280, int height = 1024);
    ~PrivateXServer();
    PrivateXServer(const PrivateXServer&) = delete;
    PrivateXServer& operator=(const PrivateXServer&) = delete;
    bool Running() const { return pid > 0; }
    // ":N", or empty when the server did not start.
    const std::string& Name() const { return display; }

private:
    std::string display;
    int pid = -1;
};

// RGB rows, top row first, of a window on `display`; empty when it cannot be read.
std::vector<uint8_t> GrabWindowRgb(const char* display, unsigned long window, int& width, int& height);
bool WritePng(const std::string& path, const std::vector<uint8_t>& rgb, int width, int height);
bool ReadPng(const std::string& path, std::vector<uint8_t>& rgb, int& width, int& height);

}  // namespace BR
