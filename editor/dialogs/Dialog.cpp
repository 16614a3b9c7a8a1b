// Layout, input and drawing of the editor's own modal dialogs.
#include "Dialog.h"

#include <GL/glew.h>

#include <algorithm>

#include "editor/GuiFont.h"

namespace BR {

namespace {
constexpr float kTitleHeight = 18.0f;

void Frame(const float* r, float grey) {
    glColor3f(grey, grey, grey);
    glBegin(GL_LINE_LOOP);
    glVertex2f(r[0] + 0.5f, r[1] + 0.5f);
    glVertex2f(r[2] - 0.5f, r[1] + 0.5f);
    glVertex2f(r[2] - 0.5f, r[3] - 0.5f);
    glVertex2f(r[0] + 0.5f, r[3] - 0.5f);
    glEnd();
}

// Text left-aligned at x, its baseline placed so that it stands in the middle of [bottom, top].
void Text(GuiFont* font, const std::string& text, float x, float bottom, float top) {
    if (!font || text.empty()) return;
    const float baseline = (bottom + top) * 0.5f - (font->Ascender() + font->Descender()) * 0.5f;
    font->Render(text.c_str(), x, baseline);
}

// The right end of a long text, to fit `width`.
std::string Fit(GuiFont* font, const std::string& text, float width) {
    std::string shown = text;
    while (font && !shown.empty() && font->Advance(shown.c_str()) > width)
        shown.erase(0, 1);
    return shown;
}
}  // namespace

int32_t DialogControl::VisibleRows() const {
    return std::max(1, int32_t((rect[3] - rect[1] - 2.0f) / Dialog::kRowHeight));
}

Dialog::Dialog(std::string title_, float width, float height, int32_t designWidth, int32_t designHeight)
    : title(std::move(title_)) {
    // A dialog never leaves the panel: on a small panel it takes all of it.
    width = std::min(width, float(designWidth) - 4.0f);
    height = std::min(height, float(designHeight) - 4.0f);
    box[0] = float(int((float(designWidth) - width) * 0.5f));
    box[1] = float(int((float(designHeight) - height) * 0.5f));
    box[2] = box[0] + width;
    box[3] = box[1] + height;
}

DialogControl& Dialog::Add(DialogControl::Kind kind, int32_t id, const std::string& text, float x, float y,
                           float w, float h) {
    DialogControl control;
    control.kind = kind;
    control.id = id;
    control.text = text;
    control.rect[0] = box[0] + x;
    control.rect[1] = box[1] + y;
    control.rect[2] = box[0] + x + w;
    control.rect[3] = box[1] + y + h;
    controls.push_back(std::move(control));
    if (focus < 0 && (kind == DialogControl::kEdit || kind == DialogControl::kList))
        focus = int32_t(controls.size()) - 1;
    return controls.back();
}

DialogControl* Dialog::Find(int32_t id) {
    for (DialogControl& control : controls)
        if (control.id == id) return &control;
    return nullptr;
}

Point Dialog::Centre(int32_t id) {
    DialogControl* control = Find(id);
    if (!control) return Point{-1, -1};
    return Point{(control->rect[0] + control->rect[2]) * 0.5f, (control->rect[1] + control->rect[3]) * 0.5f};
}

Point Dialog::RowCentre(int32_t id, int32_t row) {
    DialogControl* control = Find(id);
    if (!control) return Point{-1, -1};
    if (control->kind == DialogControl::kCombo) {
        float r[4];
        OpenListRect(*control, r);
        return Point{(r[0] + r[2]) * 0.5f, r[3] - 1.0f - (float(row) + 0.5f) * kRowHeight};
    }
    const float top = control->rect[3] - 1.0f - float(row - control->firstVisible) * kRowHeight;
    return Point{(control->rect[0] + control->rect[2]) * 0.5f, top - kRowHeight * 0.5f};
}

void Dialog::OpenListRect(const DialogControl& combo, float* r) const {
    const float height = float(combo.items.size()) * kRowHeight + 2.0f;
    r[0] = combo.rect[0];
    r[2] = combo.rect[2];
    if (combo.rect[1] - height >= box[1] - 1.0f || combo.rect[3] + height > box[3]) {
        r[3] = combo.rect[1];
        r[1] = r[3] - height;
    } else {
        r[1] = combo.rect[3];
        r[3] = r[1] + height;
    }
}

void Dialog::MouseDown(Point p, int32_t clickCount) {
    if (openCombo >= 0) {
        // An open list takes the click: a row chooses, anywhere else just closes it.
        DialogControl& combo = controls[size_t(openCombo)];
        float r[4];
        OpenListRect(combo, r);
        openCombo = -1;
        if (p.x >= r[0] && p.x < r[2] && p.y >= r[1] && p.y < r[3]) {
            const int32_t row = int32_t((r[3] - 1.0f - p.y) / kRowHeight);
            if (row >= 0 && row < int32_t(combo.items.size()) && row != combo.selection) {
                combo.selection = row;
                combo.text = combo.items[size_t(row)];
                OnChange(combo);
            }
        }
        return;
    }
    for (size_t i = 0; i < controls.size(); ++i) {
        DialogControl& control = controls[i];
        if (!control.Contains(p)) continue;
        switch (control.kind) {
            case DialogControl::kEdit:
                focus = int32_t(i);
                break;
            case DialogControl::kCheck:
                control.checked = !control.checked;
                OnChange(control);
                break;
            case DialogControl::kCombo:
                if (!control.items.empty()) openCombo = int32_t(i);
                break;
            case DialogControl::kList: {
                focus = int32_t(i);
                const int32_t row =
                    control.firstVisible + int32_t((control.rect[3] - 1.0f - p.y) / kRowHeight);
                if (row < 0 || row >= int32_t(control.items.size())) break;
                control.selection = row;
                OnChange(control);
                if (clickCount >= 2 && !closed) OnListActivated(control);
                break;
            }
            case DialogControl::kButton:
            case DialogControl::kLink:
                OnButton(control.id);
                break;
            case DialogControl::kLabel:
                break;
        }
        return;
    }
}

void Dialog::MouseWheel(Point p, float lines) {
    for (DialogControl& control : controls) {
        if (control.kind != DialogControl::kList || !control.Contains(p)) continue;
        const int32_t last = std::max(0, int32_t(control.items.size()) - control.VisibleRows());
        control.firstVisible = std::clamp(control.firstVisible - int32_t(lines * 3.0f), 0, last);
    }
}

bool Dialog::KeyDown(int32_t character, bool typed) {
    if (character == 13 || character == 3) {
        OnButton(kDialogOK);
        return true;
    }
    if (character == 27) {
        OnButton(kDialogCancel);
        return true;
    }
    if (character == 9) {
        for (size_t step = 1; step <= controls.size(); ++step) {
            const size_t i = (size_t(std::max(focus, 0)) + step) % controls.size();
            if (controls[i].kind == DialogControl::kEdit || controls[i].kind == DialogControl::kList) {
                focus = int32_t(i);
                break;
            }
        }
        return true;
    }
    if (focus < 0) return true;
    DialogControl& control = controls[size_t(focus)];
    if (control.kind == DialogControl::kList) {
        // Up and Down move the selection and keep it in view.
        const int32_t count = int32_t(control.items.size());
        if ((character == 30 || character == 31) && count > 0) {
            control.selection = std::clamp(control.selection + (character == 30 ? -1 : 1), 0, count - 1);
            if (control.selection < control.firstVisible) control.firstVisible = control.selection;
            if (control.selection >= control.firstVisible + control.VisibleRows())
                control.firstVisible = control.selection - control.VisibleRows() + 1;
            OnChange(control);
        }
        return true;
    }
    if (control.kind != DialogControl::kEdit) return true;
    // The key map gives Delete and "." one code (46), and Insert and "-" another (45): typed, they are
    // characters; as keys, Delete removes the last character (the caret stands at the end) and Insert
    // does nothing.
    if (!typed && character == 45) return true;
    if (character == 8 || (character == 46 && !typed)) {
        if (!control.text.empty()) {
            control.text.pop_back();
            OnChange(control);
        }
    } else if (character >= 32 && character <= 126 && character != 28 && character != 29 && character != 30 &&
               character != 31 && control.text.size() < control.maxLength) {
        control.text.push_back(char(character));
        OnChange(control);
    }
    return true;
}

void Dialog::OnButton(int32_t id) {
    if (id == kDialogOK || id == kDialogCancel) Close(id);
}

void Dialog::Close(int32_t result_) {
    closed = true;
    result = result_;
    openCombo = -1;
}

void Dialog::Draw(GuiFont* font, int32_t designWidth, int32_t designHeight) {
    if (font && !font->Loaded()) font = nullptr;
    glDisable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    // The panel behind stays visible but dimmed: it takes no input while the dialog is up.
    glColor4f(0.0f, 0.0f, 0.0f, 0.45f);
    glRectf(0, 0, float(designWidth), float(designHeight));
    glColor3f(0.86f, 0.86f, 0.84f);
    glRectf(box[0], box[1], box[2], box[3]);
    if (!title.empty()) {
        glColor3f(0.22f, 0.26f, 0.34f);
        glRectf(box[0], box[3] - kTitleHeight, box[2], box[3]);
        glColor3f(0.95f, 0.95f, 0.95f);
        Text(font, title, box[0] + 6.0f, box[3] - kTitleHeight, box[3]);
    }
    Frame(box, 0.2f);
    for (size_t i = 0; i < controls.size(); ++i)
        DrawControl(font, controls[i], int32_t(i) == focus);
    if (openCombo >= 0) DrawOpenCombo(font, controls[size_t(openCombo)]);
    glDisable(GL_BLEND);
}

void Dialog::DrawControl(GuiFont* font, const DialogControl& c, bool focused) {
    const float* r = c.rect;
    switch (c.kind) {
        case DialogControl::kLabel:
            glColor3f(0.1f, 0.1f, 0.1f);
            Text(font, c.text, r[0], r[1], r[3]);
            break;
        case DialogControl::kLink:
            glColor3f(0.1f, 0.2f, 0.7f);
            Text(font, c.text, r[0], r[1], r[3]);
            glBegin(GL_LINES);
            glVertex2f(r[0], r[1] + 2.0f);
            glVertex2f(r[0] + (font ? font->Advance(c.text.c_str()) : 0.0f), r[1] + 2.0f);
            glEnd();
            break;
        case DialogControl::kEdit: {
            glColor3f(1.0f, 1.0f, 1.0f);
            glRectf(r[0], r[1], r[2], r[3]);
            Frame(r, focused ? 0.15f : 0.5f);
            glColor3f(0.05f, 0.05f, 0.05f);
            const std::string shown = Fit(font, c.text + (focused ? "|" : ""), r[2] - r[0] - 6.0f);
            Text(font, shown, r[0] + 3.0f, r[1], r[3]);
            break;
        }
        case DialogControl::kCheck: {
            const float side = std::min(r[3] - r[1], 12.0f);
            const float b[4] = {r[0], (r[1] + r[3] - side) * 0.5f, r[0] + side, (r[1] + r[3] + side) * 0.5f};
            glColor3f(1.0f, 1.0f, 1.0f);
            glRectf(b[0], b[1], b[2], b[3]);
            Frame(b, 0.3f);
            if (c.checked) {
                glColor3f(0.1f, 0.1f, 0.1f);
                glRectf(b[0] + 3.0f, b[1] + 3.0f, b[2] - 3.0f, b[3] - 3.0f);
            }
            glColor3f(0.1f, 0.1f, 0.1f);
            Text(font, c.text, b[2] + 5.0f, r[1], r[3]);
            break;
        }
        case DialogControl::kCombo: {
            glColor3f(0.97f, 0.97f, 0.97f);
            glRectf(r[0], r[1], r[2], r[3]);
            Frame(r, 0.4f);
            // The arrow at the right end tells it opens a list.
            const float mx = r[2] - 8.0f, my = (r[1] + r[3]) * 0.5f;
            glColor3f(0.2f, 0.2f, 0.2f);
            glBegin(GL_TRIANGLES);
            glVertex2f(mx - 4.0f, my + 2.0f);
            glVertex2f(mx + 4.0f, my + 2.0f);
            glVertex2f(mx, my - 3.0f);
            glEnd();
            glColor3f(0.05f, 0.05f, 0.05f);
            Text(font, Fit(font, c.text, r[2] - r[0] - 22.0f), r[0] + 3.0f, r[1], r[3]);
            break;
        }
        case DialogControl::kList: {
            glColor3f(1.0f, 1.0f, 1.0f);
            glRectf(r[0], r[1], r[2], r[3]);
            const int32_t rows = c.VisibleRows();
            for (int32_t k = 0; k < rows; ++k) {
                const int32_t row = c.firstVisible + k;
                if (row >= int32_t(c.items.size())) break;
                const float top = r[3] - 1.0f - float(k) * kRowHeight;
                if (row == c.selection) {
                    glColor3f(0.25f, 0.4f, 0.7f);
                    glRectf(r[0] + 1.0f, top - kRowHeight, r[2] - 1.0f, top);
                    glColor3f(1.0f, 1.0f, 1.0f);
                } else {
                    glColor3f(0.05f, 0.05f, 0.05f);
                }
                Text(font, Fit(font, c.items[size_t(row)], r[2] - r[0] - 8.0f), r[0] + 4.0f, top - kRowHeight,
                     top);
            }
            Frame(r, focused ? 0.15f : 0.5f);
            break;
        }
        case DialogControl::kButton: {
            glColor3f(0.74f, 0.75f, 0.78f);
            glRectf(r[0], r[1], r[2], r[3]);
            Frame(r, c.id == kDialogOK ? 0.1f : 0.4f);
            glColor3f(0.05f, 0.05f, 0.05f);
            const float width = font ? font->Advance(c.text.c_str()) : 0.0f;
            Text(font, c.text, (r[0] + r[2] - width) * 0.5f, r[1], r[3]);
            break;
        }
    }
}

void Dialog::DrawOpenCombo(GuiFont* font, const DialogControl& c) {
    float r[4];
    OpenListRect(c, r);
    glColor3f(1.0f, 1.0f, 1.0f);
    glRectf(r[0], r[1], r[2], r[3]);
    for (size_t row = 0; row < c.items.size(); ++row) {
        const float top = r[3] - 1.0f - float(row) * kRowHeight;
        if (int32_t(row) == c.selection) {
            glColor3f(0.25f, 0.4f, 0.7f);
            glRectf(r[0] + 1.0f, top - kRowHeight, r[2] - 1.0f, top);
            glColor3f(1.0f, 1.0f, 1.0f);
        } else {
            glColor3f(0.05f, 0.05f, 0.05f);
        }
        Text(font, c.items[row], r[0] + 4.0f, top - kRowHeight, top);
    }
    Frame(r, 0.2f);
}

}  // namespace BR
