// Off-screen pictures of a module's panel: a private Xvfb when no display is given, the panel built by
// its script in a window there, drawn by the render thread, grabbed and written as a PNG.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "PrivateXServer.h"

class BrelCorvaneBase;

namespace BR {

struct PanelPicture {
    std::vector<uint8_t> rgb;
    int width = 0, height = 0;
    // The first line the panel's scripts logged, or the reason there is no picture.
    std::string error;
};

class ZPmanager;

// Opens a window of `manager`'s design size on `display` (null: a private Xvfb), lets the render thread
// draw `frames` frames, and grabs the window.
PanelPicture RenderManager(ZPmanager& manager, const char* display, int frames = 10);

// Opens `module`'s panel in a window on `display` (null: a private Xvfb), lets the render thread draw
// `frames` frames, and grabs the window.
PanelPicture RenderPanel(BrelCorvaneBase& module, const char* display, int frames = 10);

}  // namespace BR
