// Pointer and key input of the manager, on the window thread: hover, press, drag, release, wheel,
// window resizing by the lower-right corner, and keys to the focused element.
#include <algorithm>
#include <cmath>

#include "Manager.h"
#include "dialogs/Dialog.h"
#include "widgets/Group.h"

namespace BR {

namespace {
// The rectangle of an element in panel space, through the offsets of its parents.
Box PanelBounds(UIElement* element) {
    Box box;
    element->GetBounds(box);
    const Point offset = element->ParentOffset();
    box.v[0] += offset.x, box.v[3] += offset.x;
    box.v[1] += offset.y, box.v[4] += offset.y;
    return box;
}
}  // namespace

void Manager::MouseMoved(Point point) {
    if (dialog) return;  // the panel under a modal dialog sees no pointer
    gHoverPass = true;
    const Point p = ConvertPoint(point);
    UIElement* hit = rootGroup->HitTest(p);
    if (hit == rootGroup) hit = nullptr;
    for (auto it = hoveredElements.begin(); it != hoveredElements.end();) {
        if (!it->second.Contains(p)) {
            UIElement* element = it->first;
            it = hoveredElements.erase(it);
            element->MouseExit();
            if (tooltipElement == element) tooltipElement = nullptr;
        } else {
            ++it;
        }
    }
    if (hit && !hoveredElements.count(hit)) {
        hoveredElements[hit] = PanelBounds(hit);
        hit->MouseEnter();
        tooltipElement = hit;
    }
    gHoverPass = false;
}

void Manager::MouseDown(Point point, uint32_t modifiers, int32_t clickCount, bool isRightButton) {
    const Point panelPoint = ConvertPoint(point);
    if (WithDialog([&](Dialog& d) { d.MouseDown(panelPoint, clickCount); })) return;
    if (focusedElement) {
        UIElement* focused = focusedElement;
        focusedElement = nullptr;
        focused->FocusLost();
    }
    // The corner triangle at the lower right: x - y above the width less 16, in y-up space.
    if (point.x - point.y > float(windowWidth) - 16.0f) {
        resizing = 1;
        resizeStartX = point.x;
        resizeStartY = float(windowHeight) - point.y;
        resizeStartWidth = windowWidth;
        resizeStartHeight = windowHeight;
        if (setCapture) setCapture(callbackContext);
        return;
    }
    const Point p = ConvertPoint(point);
    UIElement* hit = rootGroup->HitTest(p);
    if (hit == rootGroup) hit = nullptr;
    pressedElement = hit;
    pressedModifiers = modifiers;
    if (!hit) return;
    uint32_t hostState = hostModifiers ? hostModifiers(callbackContext) : 0;
    if (isRightButton) hostState |= kModRightButton;
    if (hostState & kModHostAutomationMask) {
        // The host's automation gesture: touch the parameter, and leave the rest to the host.
        hit->MouseDown(p, 0, 1);
        hit->MouseUp(p, 0);
        if (editedParameter >= 0) EndParameterEdit(editedParameter);
        pressedElement = nullptr;
        return;
    }
    if (isRightButton) modifiers |= kModRightButton;
    pressedModifiers = modifiers;
    hit->MouseDown(p, modifiers, clickCount);
    if (setCapture) setCapture(callbackContext);
}

void Manager::MouseDragged(Point point, uint32_t modifiers) {
    if (dialog) return;
    if (resizing) {
        const float dx = point.x - resizeStartX;
        const float dy = (float(windowHeight) - point.y) - resizeStartY;
        int width, height;
        if (std::fabs(dy) >= std::fabs(dx)) {
            height = std::min(int(float(resizeStartHeight) + dy), 512);
            width = int(aspect * float(height));
            if (width > 1024) {
                width = 1024;
                height = int(1024.0f / aspect);
            }
        } else {
            width = std::min(int(float(resizeStartWidth) + dx), 1024);
            height = int(float(width) / aspect);
            if (height > 512) {
                height = 512;
                width = int(512.0f * aspect);
            }
        }
        width = std::max(width, 16);
        height = std::max(height, 16);
        if (bridge) bridge->ResizeWindow(width, height);
        panelWidth = int32_t(float(panelWidth) * float(width) / float(windowWidth));
        panelHeight = int32_t(float(panelHeight) * float(height) / float(windowHeight));
        windowWidth = width;
        windowHeight = height;
        renderEvents.Signal(kRenderResized);
        return;
    }
    if (!pressedElement) return;
    const Point p = ConvertPoint(point);
    if (modifiers != pressedModifiers) {
        // A fine-adjust modifier in mid-drag restarts the gesture at the current value.
        pressedElement->MouseUp(p, pressedModifiers);
        pressedElement->MouseDown(p, modifiers, 1);
        pressedModifiers = modifiers;
    }
    pressedElement->MouseDragged(p, modifiers);
}

void Manager::MouseUp(Point point, uint32_t modifiers) {
    if (resizing) {
        resizing = 0;
        if (releaseCapture) releaseCapture(callbackContext);
    }
    if (pressedElement) {
        if (releaseCapture) releaseCapture(callbackContext);
        pressedElement->MouseUp(ConvertPoint(point), modifiers);
        if (editedParameter >= 0) EndParameterEdit(editedParameter);
    }
    pressedElement = nullptr;
}

void Manager::MouseWheel(Point point, float lines, uint32_t modifiers) {
    const Point panelPoint = ConvertPoint(point);
    if (WithDialog([&](Dialog& d) { d.MouseWheel(panelPoint, lines); })) return;
    // Each notch acts as a 10-pixel drag upwards on the control under the pointer.
    MouseDown(point, modifiers, 1, false);
    if (resizing) {
        resizing = 0;
        return;
    }
    MouseDragged(Point{point.x, point.y + lines * 10.0f}, modifiers);
    MouseUp(Point{point.x, point.y + lines * 10.0f}, modifiers);
}

bool Manager::KeyDown(int32_t character, bool typed) {
    bool taken = false;
    if (WithDialog([&](Dialog& d) { taken = d.KeyDown(character, typed); })) return taken;
    return focusedElement ? focusedElement->KeyDown(character) : false;
}

}  // namespace BR
