// Value fields: show a parameter's value, take typed numbers and arrow-key steps, and drag like a knob;
// and the string field of a property.
#pragma once

#include <string>

#include "Knob.h"
#include "editor/StaticText.h"

namespace BR {

class TextField : public Control {
public:
    TextField(Manager* manager, int32_t parameter, std::string format = "");
    void Animate() override;
    void Draw() override;
    void MouseDown(Point point, uint32_t modifiers, int32_t clickCount) override;
    void MouseDragged(Point point, uint32_t modifiers) override;
    bool KeyDown(int32_t character) override;
    void FocusLost() override;
    virtual void DrawField();

    bool Typing() const { return caret >= 0; }
    // The step of the arrow keys: 10 to the minus the digits after the last point, or 1.
    float Step() const;
    const std::string& ShownText() const { return shownText; }

    int32_t caret = -1;
    char buffer[32] = {};
    float shownValue = 1e30f;
    float textWidth = 0;
    float backgroundColour[4] = {0.8f, 0.8f, 0.8f, 1.0f};
    float activeColour[4] = {0.9f, 0.9f, 0.75f, 1.0f};
    float changedColour[4] = {1.0f, 0.85f, 0.6f, 1.0f};
    float textColour[4] = {0.1f, 0.1f, 0.1f, 1.0f};
    std::string format;

private:
    // Enter: reads the buffer as a number, writes it and ends typing. False when it does not read.
    bool Commit();
    void RefreshShownText();
    std::string shownText;
    StaticText text;
    Point pressPoint;
    float startValue = 0;
};

class PropertyTextField : public ControlBase {
public:
    PropertyTextField(Manager* manager, uint32_t property);
    void Animate() override;
    void Draw() override;
    void MouseDown(Point point, uint32_t modifiers, int32_t clickCount) override;
    bool KeyDown(int32_t character) override;
    void FocusLost() override { editing = false; }
    void SetEditable(bool flag) { editable = flag; }

    uint32_t property;
    // The caption of the Enter Property dialog; "Message:" when empty.
    std::string tooltip;
    bool editable = true;
    bool editing = false;
    std::string value;

private:
    StaticText text;
};

}  // namespace BR
