// Pictures of module displays in their panels: a module's panel built by its script, drawn in a window
// on the shared display, and the pixels of one element's rectangle cut out of the picture.
#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "EditorRig.h"
#include "LuaPanelRig.h"
#include "PanelWalk.h"
#include "editor/PanelScreenshot.h"

namespace BR::Test {

// The first element of type T in the panel, or null.
template <class T>
T* FindElement(Manager& manager, int32_t id = -1) {
    std::vector<UIElement*> elements;
    CollectElements(manager.rootGroup, elements);
    for (UIElement* element : elements)
        if (auto* found = dynamic_cast<T*>(element))
            if (id < 0 || found->id == id) return found;
    return nullptr;
}

struct Crop {
    std::vector<uint8_t> rgb;
    int width = 0, height = 0;
    const uint8_t* At(int x, int y) const { return &rgb[size_t((y * width + x) * 3)]; }
};

// The pixels of a panel box (y up) in a picture of the whole window (top row first), inset by `inset`.
inline Crop CropBox(const PanelPicture& picture, const Box& box, int inset = 0) {
    Crop crop;
    const int x0 = int(box.v[0]) + inset, x1 = int(box.v[3]) - inset;
    const int top = picture.height - int(box.v[4]) + inset, bottom = picture.height - int(box.v[1]) - inset;
    crop.width = x1 - x0, crop.height = bottom - top;
    for (int y = top; y < bottom; ++y)
        for (int x = x0; x < x1; ++x)
            for (int c = 0; c < 3; ++c)
                crop.rgb.push_back(picture.rgb[size_t((y * picture.width + x) * 3 + c)]);
    return crop;
}

// Crops side by side on a dark ground, `gap` px apart: one picture of several states.
inline Crop SideBySide(const std::vector<Crop>& crops, int gap = 6) {
    Crop all;
    for (const Crop& crop : crops)
        all.width += crop.width + gap, all.height = std::max(all.height, crop.height + 2 * gap);
    all.width += gap;
    all.rgb.assign(size_t(all.width * all.height * 3), 32);
    int left = gap;
    for (const Crop& crop : crops) {
        for (int y = 0; y < crop.height; ++y)
            std::copy_n(crop.At(0, y), crop.width * 3, &all.rgb[size_t(((y + gap) * all.width + left) * 3)]);
        left += crop.width + gap;
    }
    return all;
}

// Where the editor's pictures live in the source tree; written there by a run with
// CORVANE_UPDATE_SCREENSHOTS set (scripts/make-editor-screenshots.sh), and beside the test always.
inline void KeepPicture(const std::string& name, const std::vector<uint8_t>& rgb, int width, int height) {
    WritePng(name, rgb, width, height);
    if (std::getenv("CORVANE_UPDATE_SCREENSHOTS")) {
        const char* source = std::getenv("CORVANE_SOURCE_DIR");
        const std::string path = std::string(source ? source : CORVANE_SOURCE_TREE) + "/docs/editor/" + name;
        EXPECT_TRUE(WritePng(path, rgb, width, height)) << path;
    }
}

}  // namespace BR::Test
