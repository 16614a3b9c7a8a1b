// One pass over all knobs of a renderer: each knob's atlas cell, lit by its highlight, then the ring of
// triangles lit up to the value, or the cell itself turned by the value for the textured renderer.
#include "ArcKnobRenderer.h"

#include <GL/glew.h>

#include <cmath>

#include "Knob.h"
#include "editor/GuiTexture.h"
#include "editor/Manager.h"

namespace BR {

namespace {
constexpr float kAtlasWidth = 256.0f, kAtlasHeight = 128.0f;
constexpr int kArcSegments = 48;
// The needle starts at the lower left, 225 degrees counter-clockwise from the right, and turns clockwise.
constexpr float kStartAngle = 3.926991f;
}  // namespace

ArcKnobRenderer::ArcKnobRenderer(GuiTexture* texture_, float x, float y, float size, float x2, float y2)
    : texture(texture_), cellX(x), cellY(y), cellSize(size), maskX(x2), maskY(y2) {}

int32_t ArcKnobRenderer::AddKnob(ArcKnob* knob) {
    slots.push_back(Slot{0, 0, cellSize, 0, {1, 1, 1, 1}, true, knob});
    return int32_t(slots.size()) - 1;
}

void ArcKnobRenderer::Animate() {
    for (Slot& slot : slots) {
        ArcKnob* knob = slot.knob;
        slot.enabled = knob->IsShown();
        slot.angle = knob->normalised * kKnobSpan;
        const float lift = 1.0f + 0.25f * knob->highlight;
        for (int i = 0; i < 3; ++i)
            slot.colour[i] = std::min(1.0f, knob->colour[i] * lift);
        slot.colour[3] = knob->colour[3];
    }
}

void ArcKnobRenderer::DrawCell(const Slot& slot, float cx, float cy, float angle) const {
    const float half = slot.size * 0.5f;
    const float u0 = cellX / kAtlasWidth, u1 = (cellX + cellSize) / kAtlasWidth;
    const float v0 = cellY / kAtlasHeight, v1 = (cellY + cellSize) / kAtlasHeight;
    const float c = std::cos(angle), s = std::sin(angle);
    auto corner = [&](float u, float v, float dx, float dy) {
        glTexCoord2f(u, v);
        glVertex2f(cx + dx * c - dy * s, cy + dx * s + dy * c);
    };
    glBegin(GL_QUADS);
    corner(u0, v0, -half, -half);
    corner(u1, v0, half, -half);
    corner(u1, v1, half, half);
    corner(u0, v1, -half, half);
    glEnd();
}

void ArcKnobRenderer::DrawArc(const Slot& slot) const {
    const float cx = slot.x + slot.size * 0.5f, cy = slot.y + slot.size * 0.5f;
    const float outer = slot.size * 0.5f, inner = outer - std::max(2.0f, slot.size * 0.09f);
    const int lit = int(std::lround(slot.angle / kKnobSpan * kArcSegments));
    glBegin(GL_TRIANGLE_STRIP);
    for (int i = 0; i <= kArcSegments; ++i) {
        const float a = kStartAngle - kKnobSpan * float(i) / kArcSegments;
        if (i <= lit)
            glColor4f(slot.colour[0], slot.colour[1], slot.colour[2], slot.colour[3]);
        else
            glColor4f(0.2f, 0.2f, 0.22f, 0.9f);
        glVertex2f(cx + inner * std::cos(a), cy + inner * std::sin(a));
        glVertex2f(cx + outer * std::cos(a), cy + outer * std::sin(a));
    }
    glEnd();
    // The needle, from the centre to the ring.
    const float a = kStartAngle - slot.angle;
    glLineWidth(2.0f);
    glColor4f(0.95f, 0.95f, 0.95f, 1.0f);
    glBegin(GL_LINES);
    glVertex2f(cx + inner * 0.2f * std::cos(a), cy + inner * 0.2f * std::sin(a));
    glVertex2f(cx + inner * 0.85f * std::cos(a), cy + inner * 0.85f * std::sin(a));
    glEnd();
    glLineWidth(1.0f);
}

void ArcKnobRenderer::Draw() {
    const bool textured = texture && texture->Loaded();
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDisable(GL_LIGHTING);
    if (textured) {
        glEnable(GL_TEXTURE_2D);
        texture->Bind();
        for (const Slot& slot : slots) {
            if (!slot.enabled) continue;
            const float level = 0.85f + 0.15f * slot.knob->highlight;
            glColor4f(level, level, level, 1.0f);
            DrawCell(slot, slot.x + slot.size * 0.5f, slot.y + slot.size * 0.5f, spin ? -slot.angle : 0.0f);
        }
        glDisable(GL_TEXTURE_2D);
    }
    if (spin) return;
    for (const Slot& slot : slots)
        if (slot.enabled) DrawArc(slot);
}

}  // namespace BR
