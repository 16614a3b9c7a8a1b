// Draws all the knobs attached to it in one pass over the atlas texture: the knob's cell, and a ring of
// triangles lit up to the value (the arc renderer), or the cell rotated (the textured renderer).
#pragma once

#include <vector>

#include "editor/UIElement.h"

namespace BR {

class GuiTexture;
class ArcKnob;

// The knob sweeps 270 degrees, starting at the lower left.
constexpr float kKnobSpan = 4.712389f;

class ArcKnobRenderer : public Effect {
public:
    struct Slot {
        float x, y, size;
        float angle;
        float colour[4];
        bool enabled;
        ArcKnob* knob;
    };

    // The cell (x, y) and its arc mask (x2, y2) of `size`, with y measured up from the atlas's bottom.
    ArcKnobRenderer(GuiTexture* texture, float x, float y, float size, float x2, float y2);
    void Animate() override;
    void Draw() override;
    // With "Enable eye candy" and GLSL: the shader that adds a moving specular highlight to the cells.
    void InitGL() override;
    void ReleaseGL() override;
    int32_t AddKnob(ArcKnob* knob);
    bool HasShader() const { return program != 0; }

    GuiTexture* texture;
    float cellX, cellY, cellSize, maskX, maskY;
    std::vector<Slot> slots;
    bool spin = false;  // the textured renderer: the cell itself turns
    Manager* manager = nullptr;

protected:
    uint32_t program = 0, vertexShader = 0, fragmentShader = 0;
    int32_t texUniform = -1, glowUniform = -1, phaseUniform = -1;
    void DrawCell(const Slot& slot, float cx, float cy, float angle) const;
    void DrawArc(const Slot& slot) const;
};

class TexturedKnobRenderer : public ArcKnobRenderer {
public:
    TexturedKnobRenderer(GuiTexture* texture, float x, float y, float size)
        : ArcKnobRenderer(texture, x, y, size, x, y) {
        spin = true;
    }
};

}  // namespace BR
