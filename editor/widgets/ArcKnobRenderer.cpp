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
// The cell's colour with a specular spot: it sits up and left of the centre, grows with the knob's
// highlight and drifts slowly round with the phase, so a hovered knob seems to catch the light.
const char* kKnobVertexShader =
    "varying vec2 uv;\nvarying vec2 local;\nvoid main()\n{\ngl_Position = ftransform();\n"
    "uv = gl_MultiTexCoord0.st;\nlocal = gl_MultiTexCoord1.st;\ngl_FrontColor = gl_Color;\n}\n";
const char* kKnobFragmentShader =
    "uniform sampler2D tex;\nuniform float glow;\nuniform float phase;\nvarying vec2 uv;\nvarying vec2 "
    "local;\n"
    "void main()\n{\nvec4 base = texture2D( tex, uv ) * gl_Color;\n"
    "vec2 spot = vec2( -0.3 + 0.05 * sin( phase ), 0.3 + 0.05 * cos( phase ) );\n"
    "float d = length( local - spot );\nfloat shine = ( 0.15 + 0.35 * glow ) * exp( -d * d * 18.0 );\n"
    "gl_FragColor = vec4( base.rgb + vec3( shine ), base.a );\n}\n";
// The needle starts at the lower left, 225 degrees counter-clockwise from the right, and turns clockwise.
constexpr float kStartAngle = 3.926991f;
}  // namespace

ArcKnobRenderer::ArcKnobRenderer(GuiTexture* texture_, float x, float y, float size, float x2, float y2)
    : texture(texture_), cellX(x), cellY(y), cellSize(size), maskX(x2), maskY(y2) {}

void ArcKnobRenderer::InitGL() {
    if (!manager || !manager->haveShaders || !gEyeCandy) return;
    vertexShader = glCreateShader(GL_VERTEX_SHADER);
    glShaderSource(vertexShader, 1, &kKnobVertexShader, nullptr);
    glCompileShader(vertexShader);
    fragmentShader = glCreateShader(GL_FRAGMENT_SHADER);
    glShaderSource(fragmentShader, 1, &kKnobFragmentShader, nullptr);
    glCompileShader(fragmentShader);
    program = glCreateProgram();
    glAttachShader(program, vertexShader);
    glAttachShader(program, fragmentShader);
    glLinkProgram(program);
    GLint linked = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (!linked) {
        // A driver that cannot build it gets the plain quads.
        ReleaseGL();
        return;
    }
    texUniform = glGetUniformLocation(program, "tex");
    glowUniform = glGetUniformLocation(program, "glow");
    phaseUniform = glGetUniformLocation(program, "phase");
}

void ArcKnobRenderer::ReleaseGL() {
    if (program) {
        glDetachShader(program, vertexShader);
        glDetachShader(program, fragmentShader);
        glDeleteProgram(program);
    }
    if (vertexShader) glDeleteShader(vertexShader);
    if (fragmentShader) glDeleteShader(fragmentShader);
    program = vertexShader = fragmentShader = 0;
}

int32_t ArcKnobRenderer::AddKnob(ArcKnob* knob) {
    if (!manager) manager = knob->manager;
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
        glMultiTexCoord2f(GL_TEXTURE1, dx / half, dy / half);
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
        if (program) {
            glUseProgram(program);
            glUniform1i(texUniform, 0);
            glUniform1f(phaseUniform, manager ? float(manager->renderTime) : 0.0f);
        }
        for (const Slot& slot : slots) {
            if (!slot.enabled) continue;
            const float level = 0.85f + 0.15f * slot.knob->highlight;
            glColor4f(level, level, level, 1.0f);
            if (program) glUniform1f(glowUniform, slot.knob->highlight);
            DrawCell(slot, slot.x + slot.size * 0.5f, slot.y + slot.size * 0.5f, spin ? -slot.angle : 0.0f);
        }
        if (program) glUseProgram(0);
        glDisable(GL_TEXTURE_2D);
    }
    if (spin) return;
    for (const Slot& slot : slots)
        if (slot.enabled) DrawArc(slot);
}

}  // namespace BR
