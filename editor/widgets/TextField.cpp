// Value fields and property fields: their key rules, steps and drawing.
#include "TextField.h"

#include <GL/glew.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "editor/GuiFont.h"
#include "framework/BrelCorvaneBase.h"

namespace BR {

TextField::TextField(Manager* manager, int32_t parameter, std::string format_)
    : Control(manager, parameter), format(std::move(format_)) {}

void TextField::RefreshShownText() {
    char value[64] = {};
    if (info.module) info.module->GetParameterValueText(parameter, value);
    shownText = value;
    if (!format.empty() && !shownText.empty() && !std::isalpha(static_cast<unsigned char>(shownText[0]))) {
        char formatted[64];
        std::snprintf(formatted, sizeof formatted, format.c_str(), double(shownValue));
        shownText = formatted;
    }
}

void TextField::Animate() {
    Control::Animate();
    if (Typing()) return;
    const float value = Value();
    if (value != shownValue) {
        shownValue = value;
        RefreshShownText();
    }
}

float TextField::Step() const {
    if (shownText.empty() || std::isalpha(static_cast<unsigned char>(shownText[0]))) return 1.0f;
    const size_t point = shownText.rfind('.');
    if (point == std::string::npos) return 1.0f;
    size_t digits = 0;
    for (size_t i = point + 1; i < shownText.size() && std::isdigit(static_cast<unsigned char>(shownText[i]));
         ++i)
        ++digits;
    return float(std::pow(10.0, -double(digits)));
}

bool TextField::Commit() {
    if (!Typing()) return true;
    float typed = 0;
    if (std::sscanf(buffer, "%f", &typed) != 1) return false;
    SetValue(typed);
    caret = -1;
    shownValue = 1e30f;
    return true;
}

bool TextField::KeyDown(int32_t character) {
    const size_t length = std::strlen(buffer);
    switch (character) {
        case 3:
        case 13:
            Commit();
            return true;
        case 8:
            if (Typing() && length > 0) {
                buffer[length - 1] = '\0';
                caret = int32_t(length) - 2;
            }
            return true;
        case 28:
        case 31:
        case 29:
        case 30: {
            Commit();
            // The step is taken from the text shown before the change.
            if (shownValue == 1e30f) {
                shownValue = Value();
                RefreshShownText();
            }
            const float step = (character == 29 || character == 30) ? Step() : -Step();
            SetValue(Value() + step);
            return true;
        }
        case 45:
            // A minus starts a number; in mid-number it is refused.
            if (Typing()) return true;
            buffer[0] = '-', buffer[1] = '\0';
            caret = 0;
            return true;
        case 46:
            if (!Typing()) {
                buffer[0] = '\0';
            } else if (std::strchr(buffer, '.')) {
                return true;
            }
            break;
        default:
            if (character < '0' || character > '9') return false;
            if (!Typing()) buffer[0] = '\0';
            break;
    }
    const size_t now = std::strlen(buffer);
    if (now + 1 < sizeof buffer) {
        buffer[now] = char(character);
        buffer[now + 1] = '\0';
    }
    caret = int32_t(std::strlen(buffer)) - 1;
    return true;
}

void TextField::MouseDown(Point point, uint32_t, int32_t) {
    manager->SetFocusedElement(this);
    manager->BeginParameterEdit(parameter);
    normalised = ValueToNormalised(info, Value());
    pressPoint = point;
    startValue = normalised;
}

void TextField::MouseDragged(Point point, uint32_t modifiers) {
    if (point.y == pressPoint.y) return;
    const float sensitivity = (modifiers & kModShift) ? 0.0005f : 0.005f;
    float n = std::clamp(startValue + (point.y - pressPoint.y) * sensitivity, 0.0f, 1.0f);
    if ((modifiers & kModControl) || isInteger) n = Snap(n);
    normalised = n;
    SetValue(NormalisedToValue(info, n));
}

void TextField::FocusLost() {
    if (manager->editedParameter == parameter) manager->EndParameterEdit(parameter);
    caret = -1;
    shownValue = 1e30f;
}

void TextField::Draw() {
    if (visible) DrawField();
}

void TextField::DrawField() {
    glColor3f(backgroundColour[0], backgroundColour[1], backgroundColour[2]);
    glRectf(rect[0], rect[1], rect[3], rect[4]);
    if (manager->focusedElement == this) {
        glColor3fv(Typing() ? changedColour : activeColour);
        glRectf(rect[0] + 1, rect[1] + 1, rect[3] - 1, rect[4] - 1);
    }
    GuiFont* font = manager->textFieldFont;
    if (!font || !font->Loaded()) return;
    text.SetText(font, Typing() ? buffer : shownText.c_str());
    textWidth = text.Width();
    glColor4fv(textColour);
    text.DrawAt(rect[3] - textWidth - 1.0f, rect[1] + 2.0f);
}

PropertyTextField::PropertyTextField(Manager* manager, uint32_t property_)
    : ControlBase(manager), property(property_) {}

void PropertyTextField::Animate() {
    if (editing || !manager->module) return;
    // A text property reads as the address of the module's terminated string; it is read with a bound,
    // since another thread may be rewriting it (a garbled frame is accepted).
    const char* read = nullptr;
    if (manager->module->GetProperty(property, &read) == kNoErr && read)
        value.assign(read, strnlen(read, 1024));
}

void PropertyTextField::MouseDown(Point, uint32_t, int32_t) {
    if (editable) manager->SetFocusedElement(this);
}

bool PropertyTextField::KeyDown(int32_t character) {
    if (!editable) return false;
    if (character == 13 || character == 3) {
        // Written as the characters with their terminator.
        if (manager->module)
            manager->module->SetProperty(property, value.c_str(), uint32_t(value.size() + 1));
        editing = false;
        return true;
    }
    if (character == 8) {
        if (!editing) editing = true;
        if (!value.empty()) value.pop_back();
        return true;
    }
    if (character < 32 || character > 126) return false;
    if (!editing) editing = true;
    value.push_back(char(character));
    return true;
}

void PropertyTextField::Draw() {
    if (!visible) return;
    glColor3f(0.8f, 0.8f, 0.8f);
    glRectf(rect[0], rect[1], rect[3], rect[4]);
    GuiFont* font = manager->textFieldFont;
    if (!font || !font->Loaded()) return;
    // A long string shows its right end.
    std::string shown = value;
    while (!shown.empty() && font->Advance(shown.c_str()) > Width() - 4)
        shown.erase(0, 1);
    text.SetText(font, shown.c_str());
    glColor3f(0.1f, 0.1f, 0.1f);
    text.DrawAt(rect[0] + 2.0f, rect[1] + 2.0f);
}

}  // namespace BR
