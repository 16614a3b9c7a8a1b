// Drop-down gesture, placement of the open list inside the panel, and its drawing.
#include "DropDown.h"

#include <GL/glew.h>

#include <algorithm>
#include <cmath>

#include "editor/GuiFont.h"
#include "framework/BrelCorvaneBase.h"

namespace BR {

DropDown::DropDown(Manager* manager, int32_t parameter) : Control(manager, parameter) {
    CountedTextList* list = nullptr;
    if (info.module && info.module->GetParameterValueStrings(parameter, &list) == kNoErr && list) {
        for (const std::string& item : list->Get())
            items.push_back(item.substr(0, 127));
        list->Release();
    }
    for (size_t i = 0; i < items.size(); ++i)
        itemTexts.push_back(new StaticText);
}

DropDown::~DropDown() {
    for (StaticText* text : itemTexts)
        delete text;
}

void DropDown::MouseDown(Point, uint32_t, int32_t) {
    const int32_t count = int32_t(items.size());
    int32_t index = int32_t(Value());
    index = std::clamp(index, 0, std::max(count - 1, 0));
    openIndex = index;
    manager->BeginParameterEdit(parameter);
    if (count == 0) return;
    const Point offset = ParentOffset();
    rowHeight = Height();
    listLeft = rect[0] + offset.x;
    listWidth = Width();
    listHeight = float(count) * rowHeight;
    // The current item's row lies exactly over the control.
    listBottom = rect[1] + offset.y - float(count - 1 - index) * rowHeight;
    if (listBottom < 0) listBottom = 0;
    const float top = float(manager->designHeight);
    if (listBottom + listHeight > top) listBottom -= listBottom + listHeight - top;
    open = true;
    highlighted = index;
    manager->overlayElement = this;
}

int32_t DropDown::RowAt(Point point) const {
    if (!open || point.x < listLeft || point.x > listLeft + listWidth || point.y < listBottom ||
        point.y > listBottom + listHeight)
        return -1;
    const int32_t row = int32_t((listHeight - (point.y - listBottom)) / rowHeight);
    return std::clamp(row, 0, int32_t(items.size()) - 1);
}

void DropDown::MouseDragged(Point point, uint32_t) {
    const int32_t row = RowAt(point);
    if (row >= 0) highlighted = row;
}

void DropDown::MouseUp(Point point, uint32_t modifiers) {
    if (open) {
        const int32_t row = RowAt(point);
        if (row >= 0) SetValue(float(row));
    }
    open = false;
    highlighted = -1;
    if (manager->overlayElement == this) manager->overlayElement = nullptr;
    Control::MouseUp(point, modifiers);
}

void DropDown::DrawBackground(float x0, float y0, float x1, float y1) {
    glColor4f(0.25f, 0.25f, 0.28f, 1.0f);
    glRectf(x0, y0, x1, y1);
    glColor4f(hovered ? 0.9f : 0.6f, hovered ? 0.6f : 0.6f, hovered ? 0.3f : 0.6f, 1.0f);
    glBegin(GL_LINE_LOOP);
    glVertex2f(x0 + 0.5f, y0 + 0.5f), glVertex2f(x1 - 0.5f, y0 + 0.5f);
    glVertex2f(x1 - 0.5f, y1 - 0.5f), glVertex2f(x0 + 0.5f, y1 - 0.5f);
    glEnd();
}

void ZPDropDown::DrawBackground(float x0, float y0, float x1, float y1) {
    // A vertical shade stands for the textured background.
    glBegin(GL_QUADS);
    glColor4f(0.18f, 0.18f, 0.22f, 1.0f), glVertex2f(x0, y0), glVertex2f(x1, y0);
    glColor4f(0.34f, 0.34f, 0.38f, 1.0f), glVertex2f(x1, y1), glVertex2f(x0, y1);
    glEnd();
    DropDown::DrawBackground(x0, y0, x0, y0);
}

void DropDown::Draw() {
    if (!visible) return;
    DrawBackground(rect[0], rect[1], rect[3], rect[4]);
    GuiFont* font = manager->textFieldFont;
    if (!font || !font->Loaded() || items.empty()) return;
    const int32_t index = std::clamp(int32_t(Value()), 0, int32_t(items.size()) - 1);
    itemTexts[size_t(index)]->SetText(font, items[size_t(index)].c_str());
    glColor4f(0.9f, 0.9f, 0.9f, 1.0f);
    itemTexts[size_t(index)]->DrawAt(rect[0] + 3.0f,
                                     rect[1] + 2.0f - std::min(0.0f, font->Descender() + 2.0f));
}

void DropDown::DrawOverlay() {
    if (!open) return;
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColor4f(0.15f, 0.15f, 0.18f, 0.95f);
    glRectf(listLeft, listBottom, listLeft + listWidth, listBottom + listHeight);
    GuiFont* font = manager->textFieldFont;
    for (size_t i = 0; i < items.size(); ++i) {
        const float rowTop = listBottom + listHeight - float(i) * rowHeight;
        if (int32_t(i) == highlighted) {
            glColor4f(0.45f, 0.45f, 0.5f, 1.0f);
            glRectf(listLeft, rowTop - rowHeight, listLeft + listWidth, rowTop);
        }
        if (font && font->Loaded()) {
            itemTexts[i]->SetText(font, items[i].c_str());
            glColor4f(0.95f, 0.95f, 0.95f, 1.0f);
            itemTexts[i]->DrawAt(listLeft + 3.0f, rowTop - rowHeight + 2.0f);
        }
    }
}

}  // namespace BR
