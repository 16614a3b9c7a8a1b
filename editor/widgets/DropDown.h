// A drop-down of a parameter's value names: press to open with the current row over the control, drag to
// highlight, release to choose.
#pragma once

#include <string>
#include <vector>

#include "Control.h"
#include "editor/StaticText.h"

namespace BR {

class DropDown : public Control {
public:
    DropDown(Manager* manager, int32_t parameter);
    ~DropDown() override;
    void MouseDown(Point point, uint32_t modifiers, int32_t clickCount) override;
    void MouseDragged(Point point, uint32_t modifiers) override;
    void MouseUp(Point point, uint32_t modifiers) override;
    void Draw() override;
    void DrawOverlay() override;

    bool IsOpen() const { return open; }
    // Index of the row under a panel point while open, or -1.
    int32_t RowAt(Point point) const;

    std::vector<std::string> items;
    std::vector<StaticText*> itemTexts;
    bool open = false;
    int32_t highlighted = -1;
    int32_t openIndex = 0;
    // The open list in panel space: left, bottom, width, height, and its row height.
    float listLeft = 0, listBottom = 0, listWidth = 0, listHeight = 0, rowHeight = 0;

protected:
    virtual void DrawBackground(float x0, float y0, float x1, float y1);
};

// The same drop-down over a textured background.
class ZPDropDown : public DropDown {
public:
    using DropDown::DropDown;

protected:
    void DrawBackground(float x0, float y0, float x1, float y1) override;
};

}  // namespace BR
