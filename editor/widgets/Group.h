// Groups of elements: a plain translated group, and a named one with a frame and a title.
#pragma once

#include <string>
#include <vector>

#include "editor/StaticText.h"
#include "editor/UIElement.h"

namespace BR {

class Group : public UIElement {
public:
    explicit Group(Manager* manager) : UIElement(manager) {}
    void Animate() override;
    void Draw() override;
    void DrawOverlay() override;
    void GetBounds(Box& bounds) override;
    UIElement* HitTest(Point point) override;
    void CreateGLResources() override;
    void PrepareGL() override;
    void SetVisible(bool flag) override;

    void Add(UIElement* child);
    void SetPosition(float x, float y) {
        offsetX = x;
        offsetY = y;
    }

    std::vector<UIElement*> children;
    float offsetX = 0;
    float offsetY = 0;
};

// Process-wide frame colours of named groups, from the scripts' setters.
extern float gGroupActiveColour[4];
extern float gGroupInactiveColour[4];

class NamedGroup : public Group {
public:
    NamedGroup(Manager* manager, std::string title, float padding = 5);
    void Draw() override;
    void Animate() override;
    void GetBounds(Box& bounds) override;
    UIElement* HitTest(Point point) override;
    void MouseEnter() override { hovered = true; }
    void MouseExit() override { hovered = false; }
    void CreateGLResources() override;
    void DrawIntoPanel(GuiFont* font) override;

    std::string title;
    float padding;
    // Left, bottom, right, top; all `padding` unless a script gives them one by one.
    float sides[4];
    // The content's bounds with the padding, in group space.
    void PaddedBounds(Box& bounds) { ContentBounds(bounds); }
    bool hovered = false;
    float colour[4] = {0.6f, 0.6f, 0.6f, 1.0f};
    float frame[12] = {};  // six vertices of the open frame, in group space

private:
    void ContentBounds(Box& bounds);
};

}  // namespace BR
