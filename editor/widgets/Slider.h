// Sliders: an absolute thumb, a relative fine drag with Shift, Alt to the default; drawn by a renderer
// that stretches the track texture and places the thumb.
#pragma once

#include <vector>

#include "Control.h"

namespace BR {

class GuiTexture;
class TexturedSliderRenderer;

class Slider : public Control {
public:
    Slider(Manager* manager, int32_t parameter, bool vertical)
        : Control(manager, parameter), vertical(vertical) {}
    bool vertical;
};

class TexturedSlider : public Slider {
public:
    TexturedSlider(Manager* manager, int32_t parameter, bool vertical, TexturedSliderRenderer* renderer);
    void MouseDown(Point point, uint32_t modifiers, int32_t clickCount) override;
    void MouseDragged(Point point, uint32_t modifiers) override;

    TexturedSliderRenderer* renderer;
    Point pressPoint;
    float startValue = 0;

private:
    float AbsolutePosition(Point point) const;
};

class TexturedSliderRenderer : public Effect {
public:
    TexturedSliderRenderer(GuiTexture* track, GuiTexture* thumb) : track(track), thumb(thumb) {}
    void Draw() override;

    GuiTexture* track;
    GuiTexture* thumb;
    std::vector<TexturedSlider*> sliders;
};

}  // namespace BR
