// Text items with their cached run.
#include "StaticText.h"

#include "GuiFont.h"

namespace BR {

void StaticText::SetText(GuiFont* newFont, const char* newText) {
    if (newFont == font && text == newText) return;
    font = newFont;
    text = newText;
    width = font ? font->Advance(text.c_str()) : 0.0f;
}

void StaticText::DrawAt(float x, float y) const {
    if (font && !text.empty()) font->Render(text.c_str(), x, y);
}

}  // namespace BR
