// A text item: draws one run of text with a font, keeping the run and its width until the text changes.
#pragma once

#include <string>

#include "UIElement.h"

namespace BR {

class StaticText : public Effect {
public:
    // Changes the text; the width is measured again only when it differs.
    void SetText(GuiFont* font, const char* text);
    // Draws at (x, y), the baseline at y, in the current colour.
    void DrawAt(float x, float y) const;
    float Width() const { return width; }
    const std::string& Text() const { return text; }

    GuiFont* font = nullptr;

private:
    std::string text;
    float width = 0;
};

}  // namespace BR
