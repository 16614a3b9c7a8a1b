// The textured slider's gesture and drawing.
#include "Slider.h"

#include <GL/glew.h>

#include <algorithm>

#include "editor/GuiTexture.h"

namespace BR {

TexturedSlider::TexturedSlider(Manager* manager, int32_t parameter, bool vertical,
                               TexturedSliderRenderer* renderer_)
    : Slider(manager, parameter, vertical), renderer(renderer_) {
    if (renderer) renderer->sliders.push_back(this);
}

float TexturedSlider::AbsolutePosition(Point point) const {
    const Point offset = ParentOffset();
    const float length = vertical ? Height() : Width();
    if (length <= 0) return 0;
    const float distance = vertical ? point.y - (rect[1] + offset.y) : point.x - (rect[0] + offset.x);
    return std::clamp(distance / length, 0.0f, 1.0f);
}

void TexturedSlider::MouseDown(Point point, uint32_t modifiers, int32_t) {
    if (modifiers & kModAlt) SetValue(info.defaultValue);
    normalised = ValueToNormalised(info, Value());
    pressPoint = point;
    startValue = normalised;
    manager->BeginParameterEdit(parameter);
    if (!(modifiers & (kModAlt | kModShift))) MouseDragged(point, modifiers);
}

void TexturedSlider::MouseDragged(Point point, uint32_t modifiers) {
    if (modifiers & kModAlt) return;
    float n;
    if (modifiers & kModShift) {
        const float moved = vertical ? point.y - pressPoint.y : point.x - pressPoint.x;
        n = std::clamp(startValue + moved * 0.0005f, 0.0f, 1.0f);
    } else {
        n = AbsolutePosition(point);
    }
    if ((modifiers & kModControl) || isInteger) n = Snap(n);
    normalised = n;
    SetValue(NormalisedToValue(info, n));
}

void TexturedSliderRenderer::Draw() {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    for (TexturedSlider* slider : sliders) {
        if (!slider->IsShown()) continue;
        const Point o = slider->ParentOffset();
        const float x0 = slider->rect[0] + o.x, y0 = slider->rect[1] + o.y;
        const float x1 = slider->rect[3] + o.x, y1 = slider->rect[4] + o.y;
        auto quad = [](GuiTexture* texture, float a, float b, float c, float d) {
            const bool textured = texture && texture->Loaded();
            if (textured) {
                glEnable(GL_TEXTURE_2D);
                texture->Bind();
            }
            glBegin(GL_QUADS);
            glTexCoord2f(0, 0), glVertex2f(a, b);
            glTexCoord2f(1, 0), glVertex2f(c, b);
            glTexCoord2f(1, 1), glVertex2f(c, d);
            glTexCoord2f(0, 1), glVertex2f(a, d);
            glEnd();
            if (textured) glDisable(GL_TEXTURE_2D);
        };
        glColor4f(0.3f, 0.3f, 0.3f, 1.0f);
        quad(track, x0, y0, x1, y1);
        const float thumbSize = slider->vertical ? (x1 - x0) : (y1 - y0);
        float tx0, ty0;
        if (slider->vertical) {
            tx0 = x0;
            ty0 = y0 + (y1 - y0 - thumbSize) * slider->normalised;
        } else {
            tx0 = x0 + (x1 - x0 - thumbSize) * slider->normalised;
            ty0 = y0;
        }
        if (slider->hovered) {
            // The hover glow behind the thumb; its brightness is not animated.
            glColor4f(0.5f, 0.5f, 0.1f, 0.4f);
            quad(nullptr, tx0 - 3, ty0 - 3, tx0 + thumbSize + 3, ty0 + thumbSize + 3);
        }
        glColor4f(0.85f, 0.85f, 0.85f, 1.0f);
        quad(thumb, tx0, ty0, tx0 + thumbSize, ty0 + thumbSize);
    }
}

}  // namespace BR
