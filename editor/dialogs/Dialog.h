// A modal dialog drawn by the editor over its own panel: a titled box of labels, edit fields, check
// boxes, combo boxes, list boxes and buttons. The window thread delivers input and changes it under
// the manager's dialog lock; the render thread draws it under the same lock, between its frames' other
// work, so a dialog never stops the drawing.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "editor/UIElement.h"

namespace BR {

class GuiFont;

// The ids of the two buttons every dialog closes with.
constexpr int32_t kDialogOK = 1;
constexpr int32_t kDialogCancel = 2;

struct DialogControl {
    enum Kind { kLabel, kEdit, kCheck, kCombo, kList, kButton, kLink };
    Kind kind = kLabel;
    int32_t id = 0;
    std::string text;                // caption, or the edit field's contents
    float rect[4] = {0, 0, 0, 0};    // left, bottom, right, top in panel space
    bool checked = false;            // check boxes
    std::vector<std::string> items;  // combo and list boxes
    int32_t selection = -1;          // combo and list boxes; -1 for none
    int32_t firstVisible = 0;        // list boxes: the row at the top
    size_t maxLength = 259;          // edit fields: characters at most

    bool Contains(Point p) const {
        return p.x >= rect[0] && p.x < rect[2] && p.y >= rect[1] && p.y < rect[3];
    }
    // List boxes: rows that fit.
    int32_t VisibleRows() const;
};

class Dialog {
public:
    static constexpr float kRowHeight = 16.0f;

    // A box of `width` by `height` centred on a panel of the design size; an empty title draws none.
    Dialog(std::string title, float width, float height, int32_t designWidth, int32_t designHeight);
    virtual ~Dialog() = default;

    // Adds a control at (x, y) from the box's lower left, `w` by `h`.
    DialogControl& Add(DialogControl::Kind kind, int32_t id, const std::string& text, float x, float y,
                       float w, float h);
    DialogControl* Find(int32_t id);
    // The centre of a control in panel space, for synthetic input.
    Point Centre(int32_t id);
    // The centre of row `row` of a list box, or of the open list of a combo box.
    Point RowCentre(int32_t id, int32_t row);

    // Window thread, panel space (y up).
    void MouseDown(Point point, int32_t clickCount);
    void MouseWheel(Point point, float lines);
    // Characters and the keys of the view's key map; Return is OK, Escape is Cancel, Tab moves the focus
    // between the edit fields and list boxes. Always true: a modal dialog takes every key.
    bool KeyDown(int32_t character, bool typed = false);

    // Render thread: dims the panel and draws the box and its controls.
    void Draw(GuiFont* font, int32_t designWidth, int32_t designHeight);

    // Ends the dialog with `result` (kDialogOK, kDialogCancel or another button's id).
    void Close(int32_t result);
    bool Closed() const { return closed; }
    int32_t Result() const { return result; }
    const std::string& Title() const { return title; }
    int32_t FocusedControl() const { return focus; }

protected:
    // A check box, combo box or edit field changed: on the window thread, with `lock` held.
    virtual void OnChange(DialogControl& control) { (void)control; }
    // A button or link was pressed; the default closes with OK and Cancel.
    virtual void OnButton(int32_t id);
    // A list row was double-clicked; the default acts as OK.
    virtual void OnListActivated(DialogControl& list) {
        (void)list;
        OnButton(kDialogOK);
    }

    std::string title;
    float box[4];  // left, bottom, right, top
    std::vector<DialogControl> controls;
    int32_t focus = -1;      // index of the control with the keyboard, -1 for none
    int32_t openCombo = -1;  // index of a combo box whose list is open
    bool closed = false;
    int32_t result = 0;

private:
    void DrawControl(GuiFont* font, const DialogControl& control, bool focused);
    void DrawOpenCombo(GuiFont* font, const DialogControl& combo);
    // The rectangle of the open list of a combo box: below it, or above where the box has no room.
    void OpenListRect(const DialogControl& combo, float* rect) const;
};

}  // namespace BR
