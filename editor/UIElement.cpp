// The element base: registration with the manager, bounds and the walk through the parent groups.
#include "UIElement.h"

#include <algorithm>

#include "Manager.h"
#include "widgets/Group.h"

namespace BR {

Effect::~Effect() = default;

UIElement::UIElement(Manager* manager_) : manager(manager_) {
    if (manager) manager->elements.push_back(this);
}

UIElement::~UIElement() {
    if (!manager) return;
    auto& list = manager->elements;
    list.erase(std::remove(list.begin(), list.end(), this), list.end());
    manager->hoveredElements.erase(this);
    if (manager->focusedElement == this) manager->focusedElement = nullptr;
    if (manager->pressedElement == this) manager->pressedElement = nullptr;
    if (manager->tooltipElement == this) manager->tooltipElement = nullptr;
    if (manager->overlayElement == this) manager->overlayElement = nullptr;
}

void UIElement::GetBounds(Box& bounds) {
    for (int i = 0; i < 3; ++i) {
        bounds.v[i] = std::min(bounds.v[i], rect[i]);
        bounds.v[i + 3] = std::max(bounds.v[i + 3], rect[i + 3]);
    }
}

void UIElement::SetRect(float x, float y, float w, float h) {
    rect[0] = x, rect[1] = y, rect[2] = 0;
    rect[3] = x + w, rect[4] = y + h, rect[5] = 0;
}

Point UIElement::ParentOffset() const {
    Point offset;
    for (const Group* group = parent; group; group = group->parent) {
        offset.x += group->offsetX;
        offset.y += group->offsetY;
    }
    return offset;
}

bool UIElement::IsShown() const {
    if (!visible) return false;
    for (const Group* group = parent; group; group = group->parent)
        if (!group->visible) return false;
    return true;
}

}  // namespace BR
