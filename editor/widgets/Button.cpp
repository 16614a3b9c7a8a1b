// Button gestures, property reads and writes, and the translucent button face.
#include "Button.h"

#include <GL/glew.h>

#include "editor/GuiFont.h"
#include "framework/BrelCorvaneBase.h"

namespace BR {

void EaseButtonColour(float* colour, bool hovered) {
    static const float idle[4] = {0.3f, 0.3f, 0.3f, 0.4f};
    static const float over[4] = {0.8f, 0.4f, 0.1f, 0.3f};
    const float* target = hovered ? over : idle;
    for (int i = 0; i < 4; ++i)
        colour[i] = 0.85f * colour[i] + 0.15f * target[i];
}

void DrawButtonFace(Manager* manager, const float* rect, const float* quadColour, StaticText& text,
                    const std::string& caption) {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColor4fv(quadColour);
    glRectf(rect[0], rect[1], rect[3], rect[4]);
    GuiFont* font = manager->mainFont;
    if (!font || !font->Loaded()) return;
    text.SetText(font, caption.c_str());
    glColor4f(0.8f, 0.8f, 0.8f, 1.0f);
    const float height = font->Ascender() + font->Descender();
    text.DrawAt((rect[0] + rect[3] - text.Width()) * 0.5f, (rect[1] + rect[4] - height) * 0.5f);
}

Button::Button(Manager* manager, std::string caption_, std::string tooltip, std::function<void()> callback_)
    : ControlBase(manager), caption(std::move(caption_)), callback(std::move(callback_)) {
    messageId = manager ? manager->MessageIdForText(tooltip) : -1;
}

void Button::MouseEnter() {
    hovered = true;
    manager->hoveredParameter = messageId;
    manager->tooltipElement = this;
}

void Button::MouseExit() {
    hovered = false;
    if (manager->hoveredParameter == messageId) manager->hoveredParameter = -1;
}

void Button::MouseUp(Point, uint32_t) {
    if (callback) callback();
}

void Button::Draw() {
    if (!visible) return;
    // The base look is a debug outline that every drawn button replaces.
    glColor3f(0, 1, 0);
    glBegin(GL_LINE_LOOP);
    glVertex2f(rect[0], rect[1]), glVertex2f(rect[3], rect[1]);
    glVertex2f(rect[3], rect[4]), glVertex2f(rect[0], rect[4]);
    glEnd();
}

void ZephButton::Animate() {
    EaseButtonColour(colour, hovered);
}

void ZephButton::DrawQuadAndCaption(const float* quadColour) {
    DrawButtonFace(manager, rect, quadColour, text, caption);
}

void ZephButton::Draw() {
    if (visible) DrawQuadAndCaption(colour);
}

void StatefulButton::MouseDown(Point, uint32_t, int32_t) {
    if (mode == kPush) state = 1;
}

void StatefulButton::MouseUp(Point, uint32_t) {
    if (mode == kToggle)
        state = state ? 0 : 1;
    else
        state = 0;
    if (callback) callback();
}

void ZephStatefulButton::Animate() {
    EaseButtonColour(colour, hovered || state != 0);
}

void ZephStatefulButton::Draw() {
    if (visible) DrawButtonFace(manager, rect, colour, text, caption);
}

PropertyButton::PropertyButton(Manager* manager, uint32_t property_, std::string caption, std::string tooltip,
                               Mode mode_)
    : Button(manager, std::move(caption), std::move(tooltip), nullptr), property(property_), mode(mode_) {}

UIElement* PropertyButton::HitTest(Point point) {
    // An indicator takes no clicks; in a hover pass it still shows its text.
    if (mode == kIndicator && !gHoverPass) return nullptr;
    return Button::HitTest(point);
}

void PropertyButton::WriteProperty() {
    if (!manager->module) return;
    const uint8_t flag = state ? 1 : 0;
    manager->module->SetProperty(property, &flag, 1);
}

void PropertyButton::Animate() {
    if (mode != kIndicator || !manager->module) return;
    uint8_t flag = 0;
    if (manager->module->GetProperty(property, &flag) == kNoErr) state = flag ? 1 : 0;
}

void PropertyButton::MouseDown(Point, uint32_t, int32_t) {
    if (mode != kPush) return;
    state = 1;
    WriteProperty();
}

void PropertyButton::MouseUp(Point, uint32_t) {
    if (mode == kIndicator) return;
    state = mode == kToggle ? (state ? 0 : 1) : 0;
    WriteProperty();
}

void ZephPropertyButton::Animate() {
    PropertyButton::Animate();
    EaseButtonColour(colour, hovered || state != 0);
}

void ZephPropertyButton::Draw() {
    if (visible) DrawButtonFace(manager, rect, colour, text, caption);
}

CorvButton::CorvButton(Manager* manager, int32_t parameter, std::string caption_)
    : Control(manager, parameter), caption(std::move(caption_)) {}

void CorvButton::MouseDown(Point point, uint32_t modifiers, int32_t clickCount) {
    Control::MouseDown(point, modifiers, clickCount);
    SetValue(Value() >= (info.minimum + info.maximum) * 0.5f ? info.minimum : info.maximum);
    normalised = ValueToNormalised(info, Value());
}

void CorvButton::Draw() {
    if (!visible) return;
    static const float lit[4] = {0.9f, 0.5f, 0.1f, 0.6f}, dark[4] = {0.3f, 0.3f, 0.3f, 0.4f};
    DrawButtonFace(manager, rect, Lit() ? lit : dark, text, caption);
}

}  // namespace BR
