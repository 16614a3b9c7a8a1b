// Labels: text with an optional background box, drawn into the panel texture with the label font.
#include "Label.h"

#include <GL/glew.h>

#include <algorithm>

#include "editor/GuiFont.h"

namespace BR {

Label::Label(Manager* manager, std::string text_, float x, float y, int32_t align_, float w, float h)
    : ControlBase(manager), text(std::move(text_)), align(align_) {
    SetRect(x, y, w, h);
}

void Label::GetBounds(Box& bounds) {
    if (Height() > 0) {
        UIElement::GetBounds(bounds);
        return;
    }
    // 11 px text: about 6 px per character, 14 px from the top of the capitals to the descenders.
    const float halfWidth = 3.0f * float(text.size());
    const float left = align == 1 ? rect[0] : rect[0] - halfWidth;
    const float right = align == 1 ? rect[0] + 2 * halfWidth : rect[0] + halfWidth;
    bounds.v[0] = std::min(bounds.v[0], left), bounds.v[3] = std::max(bounds.v[3], right);
    bounds.v[1] = std::min(bounds.v[1], rect[1] - 14.0f), bounds.v[4] = std::max(bounds.v[4], rect[1]);
}

void Label::DrawIntoPanel(GuiFont* font) {
    const Point offset = ParentOffset();
    const float width = font->Advance(text.c_str());
    const float x0 = rect[0] + offset.x, y0 = rect[1] + offset.y;
    float x = x0 - width * 0.5f;
    if (align == 1) x = x0;
    if (align == 2) x = rect[3] + offset.x - width;
    float baseline = y0 - font->Ascender();
    if (Height() > 0) baseline = y0 + (Height() - font->Ascender()) * 0.5f;
    if (Width() > 0 && Height() > 0 && backgroundColour[3] > 0) {
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glColor4fv(backgroundColour);
        glRectf(x - 2, baseline + font->Descender() - 2, x + width + 2, baseline + font->Ascender() + 2);
    }
    glColor4fv(foregroundColour);
    font->Render(text.c_str(), x, baseline);
}

}  // namespace BR
