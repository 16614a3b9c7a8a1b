// A text drawn once into the panel texture, never per frame.
#pragma once

#include <string>

#include "Control.h"

namespace BR {

class Label : public ControlBase {
public:
    // align 0 centres the text at x; 1 left-aligns in the box (x, y, w, h); 2 right-aligns in it.
    Label(Manager* manager, std::string text, float x, float y, int32_t align = 0, float w = 0, float h = 0);
    void DrawIntoPanel(GuiFont* font) override;
    UIElement* HitTest(Point) override { return nullptr; }
    // A label placed by a point hangs below it: its layout box is the text's estimated extent, so that
    // a group's frame encloses it.
    void GetBounds(Box& bounds) override;

    std::string text;
    int32_t align;
    float backgroundColour[4] = {0.1f, 0.1f, 0.15f, 0.3f};
    float foregroundColour[4] = {0.9f, 0.9f, 0.9f, 1.0f};
};

}  // namespace BR
