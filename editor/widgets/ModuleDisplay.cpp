// Display frames, unit-space strips, and the envelope, waveform, transfer and calibration curves.
#include "ModuleDisplay.h"

#include <GL/glew.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "editor/widgets/Control.h"
#include "framework/BrelCorvaneBase.h"
#include "modules/simple/Function.h"
#include "modules/simple/LFO.h"

namespace BR {

namespace {
constexpr uint32_t kPropertyCalibrationTable = 64016;
constexpr uint32_t kPropertyCalibrationCount = 64018;
constexpr float kTwoPi = 6.2831853f;
}  // namespace

int32_t FindRow(Manager* manager, const char* format, int32_t number, const char* suffix) {
    char name[96];
    std::snprintf(name, sizeof name, format, int(number), suffix);
    return manager->FindParameter(name);
}

ModuleDisplay::ModuleDisplay(Manager* manager) : UIElement(manager) {}

ModuleStatusBlock* ModuleDisplay::StatusBlock() const {
    ModuleStatusBlock* block = nullptr;
    if (!manager->module || manager->module->GetProperty(kPropertyStatusBlock, &block) != kNoErr)
        return nullptr;
    return block;
}

void ModuleDisplay::Draw() {
    if (!visible) return;
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColor4fv(backgroundColour);
    glRectf(rect[0], rect[1], rect[3], rect[4]);
    DrawContent();
    glColor4f(lineColour[0], lineColour[1], lineColour[2], 0.5f * lineColour[3]);
    glBegin(GL_LINE_LOOP);
    glVertex2f(rect[0] + 0.5f, rect[1] + 0.5f), glVertex2f(rect[3] - 0.5f, rect[1] + 0.5f);
    glVertex2f(rect[3] - 0.5f, rect[4] - 0.5f), glVertex2f(rect[0] + 0.5f, rect[4] - 0.5f);
    glEnd();
}

void ModuleDisplay::DrawUnitStrip(const std::vector<float>& xy, const float* colour) const {
    if (xy.size() < 4) return;
    glPushMatrix();
    glTranslatef(rect[0], rect[1], 0);
    glScalef(Width(), Height(), 1);
    glEnable(GL_LINE_SMOOTH);
    glColor4fv(colour);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(2, GL_FLOAT, 0, xy.data());
    glDrawArrays(GL_LINE_STRIP, 0, GLsizei(xy.size() / 2));
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisable(GL_LINE_SMOOTH);
    glPopMatrix();
}

void ModuleDisplay::FillUnitStrip(const std::vector<float>& xy, float base, const float* colour) const {
    if (xy.size() < 4) return;
    glPushMatrix();
    glTranslatef(rect[0], rect[1], 0);
    glScalef(Width(), Height(), 1);
    glColor4fv(colour);
    glBegin(GL_QUAD_STRIP);
    for (size_t i = 0; i + 1 < xy.size(); i += 2) {
        glVertex2f(xy[i], base);
        glVertex2f(xy[i], xy[i + 1]);
    }
    glEnd();
    glPopMatrix();
}

void ModuleDisplay::DrawMarker(float ux, float uy, float size, const float* colour) const {
    const float x = rect[0] + ux * Width();
    const float y = std::clamp(rect[1] + uy * Height(), rect[1] + size, rect[4] - size);
    glColor4fv(colour);
    glBegin(GL_LINE_LOOP);
    glVertex2f(x - size, y - size), glVertex2f(x + size, y - size);
    glVertex2f(x + size, y + size), glVertex2f(x - size, y + size);
    glEnd();
}

CurveDisplay::CurveDisplay(Manager* manager, std::vector<int32_t> watched_)
    : ModuleDisplay(manager),
      watched(std::move(watched_)),
      shownValues(watched.size(), 0.0f),
      newValues(watched.size(), 0.0f) {}

void CurveDisplay::Animate() {
    for (size_t i = 0; i < watched.size(); ++i)
        newValues[i] = watched[i] >= 0 ? manager->GetParameterValue(watched[i]) : 0.0f;
    if (std::memcmp(newValues.data(), shownValues.data(), newValues.size() * sizeof(float)) != 0) {
        shownValues = newValues;
        dirty = true;
    }
}

void CurveDisplay::DrawContent() {
    if (dirty) {
        ComputeCurve(shownValues);
        dirty = false;
    }
    if (filled) FillUnitStrip(vertices, fillBase, fillColour);
    DrawUnitStrip(vertices, lineColour);
    DrawLive();
}

// Rows: five times (A1, A2, A3, R1, R2), five shapes, then the levels A1, A2, Sustain, R1.
EnvDisplay::EnvDisplay(Manager* manager, int32_t id_) : CurveDisplay(manager, {}), id(id_) {
    const char* stages[5] = {"A1", "A2", "A3", "R1", "R2"};
    for (const char* stage : stages)
        watched.push_back(FindRow(manager, "Env %d Time %s", id + 1, stage));
    for (const char* stage : stages)
        watched.push_back(FindRow(manager, "Env %d Shape %s", id + 1, stage));
    watched.push_back(FindRow(manager, "Env %d Level %s", id + 1, "A1"));
    watched.push_back(FindRow(manager, "Env %d Level %s", id + 1, "A2"));
    watched.push_back(FindRow(manager, "Env %d Sustain%s", id + 1, ""));
    watched.push_back(FindRow(manager, "Env %d Level %s", id + 1, "R1"));
    shownValues.assign(watched.size(), 0.0f);
    newValues.assign(watched.size(), 0.0f);
    filled = true;
}

void EnvDisplay::ComputeCurve(const std::vector<float>& values) {
    auto level = [&](size_t k) {
        const int32_t row = watched[10 + k];
        return row >= 0 ? ValueToNormalised(manager->ParameterInfo(row), values[10 + k]) : 0.0f;
    };
    auto shape = [&](size_t k) {
        const int32_t row = watched[5 + k];
        return row >= 0 ? ValueToNormalised(manager->ParameterInfo(row), values[5 + k]) : 0.5f;
    };
    // Stage ends: A1, A2, A3 (to the sustain), a held sustain, R1, R2 (to zero).
    const float targets[5] = {level(0), level(1), level(2), level(3), 0.0f};
    float times[5], total = 0;
    for (size_t k = 0; k < 5; ++k)
        total += times[k] = std::max(values[k], 0.0f) + 1e-3f;
    const float hold = 0.2f * total;
    total += hold;
    vertices.assign({0.0f, 0.0f});
    float t = 0, from = 0;
    for (size_t k = 0; k < 5; ++k) {
        // A segment's curve: the shape's position bends it from convex to concave.
        const float exponent = std::pow(4.0f, 2.0f * shape(k) - 1.0f);
        for (int i = 1; i <= 8; ++i) {
            const float u = float(i) / 8.0f;
            vertices.push_back((t + u * times[k]) / total);
            vertices.push_back(from + (targets[k] - from) * std::pow(u, exponent));
        }
        t += times[k];
        from = targets[k];
        if (k == 2) {
            t += hold;
            vertices.push_back(t / total), vertices.push_back(from);
        }
    }
}

// The nine rows of a channel that shape its wave.
WaveformDisplay::WaveformDisplay(Manager* manager, int32_t id_) : CurveDisplay(manager, {}), id(id_) {
    const char* lr = id == 0 ? "L" : "R";
    const char* names[9] = {"Sine",  "Triangle", "Square",      "Saw",      "Random",
                            "Noise", "Offset",   "Pulse Width", "Asymmetry"};
    for (const char* name : names)
        watched.push_back(manager->FindParameter(std::string(name) + " " + lr));
    shownValues.assign(watched.size(), 0.0f);
    newValues.assign(watched.size(), 0.0f);
}

void WaveformDisplay::ComputeCurve(const std::vector<float>& v) {
    const float sine = v[0], triangle = v[1], square = v[2], saw = v[3], offset = v[6];
    const float width = std::clamp(v[7] > 1.0f ? v[7] * 0.01f : v[7], 0.01f, 0.99f);
    const float asymmetry = std::clamp(v[8] > 1.0f ? v[8] * 0.01f : v[8], 0.01f, 0.99f);
    vertices.clear();
    for (int i = 0; i <= 128; ++i) {
        const float p = float(i) / 128.0f;
        // The asymmetry moves the middle of the cycle.
        const float q =
            p < asymmetry ? 0.5f * p / asymmetry : 0.5f + 0.5f * (p - asymmetry) / (1 - asymmetry);
        const float tri = q < 0.25f ? 4 * q : q < 0.75f ? 2 - 4 * q : 4 * q - 4;
        const float y = sine * std::sin(kTwoPi * q) + triangle * tri + square * (p < width ? 1.0f : -1.0f) +
                        saw * (2 * q - 1) + offset;
        vertices.push_back(p);
        vertices.push_back(std::clamp(0.5f + 0.5f * y, 0.0f, 1.0f));
    }
}

void WaveformDisplay::DrawLive() {
    ModuleStatusBlock* block = StatusBlock();
    if (!block || manager->FindParameter("Sine L") < 0) return;
    const auto& status = block->As<BrelCorvaneLFO::LfoStatus>();
    const float phase = status.displayPhase[id & 1] - std::floor(status.displayPhase[id & 1]);
    const float marker[4] = {0.3f, 1.0f, 0.5f, 1.0f};
    DrawMarker(phase, 0.5f + 0.5f * status.displayLevel[id & 1], 3, marker);
}

FunctionDisplay::FunctionDisplay(Manager* manager, int32_t id_) : CurveDisplay(manager, {}), id(id_) {
    const char* lr = id == 0 ? "L" : "R";
    for (const char* name : {"Function", "Input Scale", "Input Offset", "Output Scale", "Output Offset"})
        watched.push_back(manager->FindParameter(std::string(name) + " " + lr));
    shownValues.assign(watched.size(), 0.0f);
    newValues.assign(watched.size(), 0.0f);
}

float FunctionDisplay::Transfer(int32_t function, float x, float s, float o, float g, float h) {
    const float u = x * s + o;
    switch (function) {
        case BrelCorvaneFunction::kLogarithm:
            return (u > 1e-10f ? std::log(u) * 1.442695f + 1.0f : 0.0f) * g + h;
        case BrelCorvaneFunction::kExponential:
            return std::exp((x * s + o - 1.0f) * 0.6931472f) * g + h;
        case BrelCorvaneFunction::kAbsolute:
            return std::fabs(u) * g + h;
        default:
            return u * g + h;
    }
}

void FunctionDisplay::ComputeCurve(const std::vector<float>& v) {
    std::vector<float> ys;
    lowY = -1, highY = 1;
    for (int i = 0; i <= 64; ++i) {
        const float y = Transfer(int32_t(v[0]), -1.0f + float(i) / 32.0f, v[1], v[2], v[3], v[4]);
        ys.push_back(std::isfinite(y) ? y : 0.0f);
        lowY = std::min(lowY, ys.back()), highY = std::max(highY, ys.back());
    }
    vertices.clear();
    for (size_t i = 0; i < ys.size(); ++i) {
        vertices.push_back(float(i) / 64.0f);
        vertices.push_back((ys[i] - lowY) / (highY - lowY));
    }
}

void FunctionDisplay::DrawLive() {
    ModuleStatusBlock* block = StatusBlock();
    if (!block || manager->FindParameter("Function L") < 0) return;
    const auto& status = block->As<BrelCorvaneFunction::FunctionStatus>();
    const float x = std::clamp(0.5f + 0.5f * status.displayInput[id & 1], 0.0f, 1.0f);
    const float y = (status.displayOutput[id & 1] - lowY) / (highY - lowY);
    const float marker[4] = {0.3f, 1.0f, 0.5f, 1.0f};
    DrawMarker(x, y, 2, marker);
}

CalibrationDisplay::CalibrationDisplay(Manager* manager) : ModuleDisplay(manager) {}

bool CalibrationDisplay::ReadTable(const float*& pairs, int32_t& count) const {
    pairs = nullptr, count = 0;
    if (!manager->module) return false;
    const void* address = nullptr;
    if (manager->module->GetProperty(kPropertyCalibrationTable, &address) != kNoErr || !address) return false;
    if (manager->module->GetProperty(kPropertyCalibrationCount, &count) != kNoErr) return false;
    pairs = static_cast<const float*>(address);
    return count > 0;
}

void CalibrationDisplay::DrawContent() {
    const float* pairs = nullptr;
    int32_t count = 0;
    // A module without a table draws only the background.
    if (!ReadTable(pairs, count)) return;
    std::vector<float>& xy = points;
    xy.clear();
    const int32_t shown = std::min(count, int32_t(128));
    for (int32_t i = 0; i < shown; ++i) {
        xy.push_back(pairs[2 * i] * 0.0078125f);
        xy.push_back(std::clamp(0.5f + 0.5f * pairs[2 * i + 1], 0.0f, 1.0f));
    }
    DrawUnitStrip(xy, lineColour);
}

}  // namespace BR
