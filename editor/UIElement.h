// What every element of a panel's tree offers to the manager, and the base of the batch renderers.
#pragma once

#include <cstdint>

namespace BR {

class Manager;
class Group;
class GuiFont;

// A point in the y-up panel space, one unit per design pixel.
struct Point {
    float x = 0;
    float y = 0;
};

// x0, y0, z0, x1, y1, z1.
struct Box {
    float v[6] = {1e10f, 1e10f, 1e10f, -1e10f, -1e10f, -1e10f};
    bool Contains(Point p) const { return p.x >= v[0] && p.x <= v[3] && p.y >= v[1] && p.y <= v[4]; }
};

// Modifier bits shared by every control.
enum ModifierBits : uint32_t {
    kModAlt = 0x100,
    kModShift = 0x200,
    kModControl = 0x800,
    kModRightButton = 0x1000,
    // The host's automation modifiers: a press with any of these is handed to the host.
    kModHostAutomationMask = 0x1A,
};

// A renderer or text item: it draws a batch of controls in one pass, on the render thread.
class Effect {
public:
    virtual ~Effect();
    virtual void Animate() {}
    virtual void Draw() {}
    virtual void Draw3D() {}
    virtual void InitGL() {}
    virtual void ReleaseGL() {}
};

class UIElement {
public:
    // Enters itself into the manager's list of elements, which deletes it at the end.
    explicit UIElement(Manager* manager);
    virtual ~UIElement();
    virtual void Animate() {}
    virtual void Draw() {}
    virtual void DrawOverlay() {}
    // Widens `bounds` by this element's rectangle.
    virtual void GetBounds(Box& bounds);
    virtual void MouseDown(Point point, uint32_t modifiers, int32_t clickCount) {
        (void)point, (void)modifiers, (void)clickCount;
    }
    virtual void MouseDragged(Point point, uint32_t modifiers) { (void)point, (void)modifiers; }
    virtual void MouseUp(Point point, uint32_t modifiers) { (void)point, (void)modifiers; }
    virtual void MouseEnter() {}
    virtual void MouseExit() {}
    virtual UIElement* HitTest(Point point) {
        (void)point;
        return nullptr;
    }
    virtual void CreateGLResources() {}
    virtual void PrepareGL() {}
    virtual void DrawIntoPanel(GuiFont* font) { (void)font; }
    virtual bool KeyDown(int32_t character) {
        (void)character;
        return false;
    }
    virtual void FocusLost() {}
    virtual void SetVisible(bool flag) { visible = flag ? 1 : 0; }

    // Sets the rectangle in the z = 0 plane, relative to the parent group.
    void SetRect(float x, float y, float w, float h);
    float Width() const { return rect[3] - rect[0]; }
    float Height() const { return rect[4] - rect[1]; }
    // The sum of the offsets of all enclosing groups.
    Point ParentOffset() const;
    // True when this element and all its parents are visible.
    bool IsShown() const;

    Manager* manager;
    Group* parent = nullptr;
    uint8_t visible = 1;
    float rect[6] = {0, 0, 0, 0, 0, 0};
};

}  // namespace BR
