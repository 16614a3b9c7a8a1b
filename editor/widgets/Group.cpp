// Groups: translation, hit testing from the last child, visibility passed down, and the named group's
// eased frame with its title in the panel texture.
#include "Group.h"

#include <GL/glew.h>

#include <algorithm>

#include "editor/GuiFont.h"
#include "editor/Manager.h"

namespace BR {

float gGroupActiveColour[4] = {0.7f, 0.7f, 0.7f, 1.0f};
float gGroupInactiveColour[4] = {0.6f, 0.6f, 0.6f, 1.0f};

void Group::Add(UIElement* child) {
    child->parent = this;
    children.push_back(child);
}

void Group::Animate() {
    for (UIElement* child : children)
        child->Animate();
}

void Group::Draw() {
    if (!visible) return;
    glPushMatrix();
    glTranslatef(offsetX, offsetY, 0);
    for (UIElement* child : children)
        child->Draw();
    glPopMatrix();
}

void Group::DrawOverlay() {
    for (UIElement* child : children)
        child->DrawOverlay();
}

void Group::PrepareGL() {
    for (UIElement* child : children)
        child->PrepareGL();
}

void Group::CreateGLResources() {}

void Group::SetVisible(bool flag) {
    visible = flag ? 1 : 0;
    for (UIElement* child : children)
        child->SetVisible(flag);
}

void Group::GetBounds(Box& bounds) {
    Box own;
    for (UIElement* child : children)
        child->GetBounds(own);
    if (children.empty()) {
        UIElement::GetBounds(bounds);
        return;
    }
    own.v[0] += offsetX, own.v[3] += offsetX;
    own.v[1] += offsetY, own.v[4] += offsetY;
    for (int i = 0; i < 3; ++i) {
        bounds.v[i] = std::min(bounds.v[i], own.v[i]);
        bounds.v[i + 3] = std::max(bounds.v[i + 3], own.v[i + 3]);
    }
}

UIElement* Group::HitTest(Point point) {
    if (!visible) return nullptr;
    const Point local{point.x - offsetX, point.y - offsetY};
    for (auto it = children.rbegin(); it != children.rend(); ++it)
        if (UIElement* hit = (*it)->HitTest(local)) return hit;
    if (gHoverPass && children.empty()) {
        Box own;
        UIElement::GetBounds(own);
        if (own.Contains(point)) return this;
    }
    return nullptr;
}

NamedGroup::NamedGroup(Manager* manager, std::string title_, float padding_)
    : Group(manager), title(std::move(title_)), padding(padding_) {
    for (float& side : sides)
        side = padding_;
}

void NamedGroup::ContentBounds(Box& bounds) {
    for (UIElement* child : children)
        child->GetBounds(bounds);
    if (children.empty()) bounds = Box{{0, 0, 0, 0, 0, 0}};
    bounds.v[0] -= sides[0], bounds.v[1] -= sides[1];
    bounds.v[3] += sides[2], bounds.v[4] += sides[3] + 6.0f;
}

void NamedGroup::GetBounds(Box& bounds) {
    Box own;
    ContentBounds(own);
    own.v[0] += offsetX, own.v[3] += offsetX;
    own.v[1] += offsetY, own.v[4] += offsetY;
    for (int i = 0; i < 2; ++i) {
        bounds.v[i] = std::min(bounds.v[i], own.v[i]);
        bounds.v[i + 3] = std::max(bounds.v[i + 3], own.v[i + 3]);
    }
}

UIElement* NamedGroup::HitTest(Point point) {
    if (UIElement* hit = Group::HitTest(point)) return hit;
    if (!visible || !gHoverPass) return nullptr;
    // In a hover pass the frame itself is a target, so that its colour follows the pointer.
    Box own;
    GetBounds(own);
    return own.Contains(point) ? this : nullptr;
}

void NamedGroup::CreateGLResources() {
    Box b;
    ContentBounds(b);
    // Open at the top, where the title stands: title gap from x0 + 6 to x0 + 12 + title width.
    const float titleWidth =
        manager && manager->labelFont ? manager->labelFont->Advance(title.c_str()) : 0.0f;
    const float gapLeft = b.v[0] + 6.0f, gapRight = std::min(b.v[3], b.v[0] + 12.0f + titleWidth);
    const float points[12] = {gapLeft, b.v[4], b.v[0], b.v[4], b.v[0],   b.v[1],
                              b.v[3],  b.v[1], b.v[3], b.v[4], gapRight, b.v[4]};
    std::copy(points, points + 12, frame);
}

void NamedGroup::Animate() {
    Group::Animate();
    const float* target = hovered ? gGroupActiveColour : gGroupInactiveColour;
    for (int i = 0; i < 4; ++i)
        colour[i] = 0.85f * colour[i] + 0.15f * target[i];
}

void NamedGroup::Draw() {
    if (!visible) return;
    Group::Draw();
    glPushMatrix();
    glTranslatef(offsetX, offsetY, 0);
    glColor4fv(colour);
    glBegin(GL_LINE_STRIP);
    for (int i = 0; i < 6; ++i)
        glVertex2f(frame[2 * i] + 0.5f, frame[2 * i + 1] + 0.5f);
    glEnd();
    glPopMatrix();
}

void NamedGroup::DrawIntoPanel(GuiFont* font) {
    const Point offset = ParentOffset();
    glColor4f(0.9f, 0.9f, 0.9f, 1.0f);
    font->Render(title.c_str(), offset.x + offsetX + frame[0] + 3.0f, offset.y + offsetY + frame[1] - 3.0f);
}

}  // namespace BR
