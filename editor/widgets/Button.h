// Buttons: plain callback buttons, stateful toggle and push buttons, property buttons (toggle, push,
// indicator), and the two-state parameter button.
#pragma once

#include <functional>
#include <string>

#include "Control.h"
#include "editor/StaticText.h"

namespace BR {

class Button : public ControlBase {
public:
    Button(Manager* manager, std::string caption, std::string tooltip, std::function<void()> callback);
    void MouseEnter() override;
    void MouseExit() override;
    void MouseUp(Point point, uint32_t modifiers) override;
    void Draw() override;

    std::string caption;
    int32_t messageId;
    std::function<void()> callback;
    bool hovered = false;
};

// The translucent quad under a centred caption, easing towards its hover colour.
class ZephButton : public Button {
public:
    using Button::Button;
    void Animate() override;
    void Draw() override;
    float colour[4] = {0.3f, 0.3f, 0.3f, 0.4f};

protected:
    void DrawQuadAndCaption(const float* quadColour);
    StaticText text;
};

class MIDIBrowseButton : public ZephButton {
public:
    using ZephButton::ZephButton;
};

class StatefulButton : public Button {
public:
    enum Mode { kToggle, kPush };
    StatefulButton(Manager* manager, std::string caption, std::string tooltip, std::function<void()> callback,
                   Mode mode)
        : Button(manager, std::move(caption), std::move(tooltip), std::move(callback)), mode(mode) {}
    void MouseDown(Point point, uint32_t modifiers, int32_t clickCount) override;
    void MouseUp(Point point, uint32_t modifiers) override;
    int32_t GetState() const { return state; }
    void SetState(int32_t value) { state = value; }

    Mode mode;
    int32_t state = 0;
};

class ZephStatefulButton : public StatefulButton {
public:
    using StatefulButton::StatefulButton;
    void Animate() override;
    void Draw() override;
    float colour[4] = {0.3f, 0.3f, 0.3f, 0.4f};

private:
    StaticText text;
};

class PropertyButton : public Button {
public:
    enum Mode { kPush = 0, kToggle = 1, kIndicator = 2 };
    PropertyButton(Manager* manager, uint32_t property, std::string caption, std::string tooltip, Mode mode);
    void Animate() override;
    void MouseDown(Point point, uint32_t modifiers, int32_t clickCount) override;
    void MouseUp(Point point, uint32_t modifiers) override;
    UIElement* HitTest(Point point) override;

    uint32_t property;
    Mode mode;
    int32_t state = 0;

private:
    void WriteProperty();
};

class ZephPropertyButton : public PropertyButton {
public:
    using PropertyButton::PropertyButton;
    void Animate() override;
    void Draw() override;
    float colour[4] = {0.3f, 0.3f, 0.3f, 0.4f};

private:
    StaticText text;
};

// A click toggles a parameter between its minimum and maximum.
class CorvButton : public Control {
public:
    CorvButton(Manager* manager, int32_t parameter, std::string caption);
    void MouseDown(Point point, uint32_t modifiers, int32_t clickCount) override;
    void Draw() override;
    bool Lit() const { return normalised >= 0.5f; }

    std::string caption;

private:
    StaticText text;
};

// Eases `colour` towards the idle or hovered target, new = 0.85 × old + 0.15 × target.
void EaseButtonColour(float* colour, bool hovered);
// A blended quad in `quadColour` over the rectangle, with the caption centred in grey 0.8.
void DrawButtonFace(Manager* manager, const float* rect, const float* quadColour, StaticText& text,
                    const std::string& caption);

}  // namespace BR
