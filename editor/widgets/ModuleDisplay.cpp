// Display frames, unit-space strips, and the envelope, waveform, transfer and calibration curves.
#include "ModuleDisplay.h"

#include <GL/glew.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "editor/widgets/Control.h"
#include "framework/BrelCorvaneBase.h"
#include "framework/PolySine.h"
#include "framework/RandomGenerator.h"
#include "modules/sequencing/Envelope.h"
#include "modules/sequencing/Trigger.h"
#include "modules/sequencing/VoiceController.h"
#include "modules/simple/Function.h"
#include "modules/simple/LFO.h"

namespace BR {

namespace {
constexpr uint32_t kCalibrationTableProperty = 64016;
constexpr uint32_t kCalibrationCountProperty = 64018;
constexpr uint32_t kEnvelopeLayoutProperty = 64015;
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

void CurveDisplay::PrepareCurve() {
    if (!dirty) return;
    ComputeCurve(shownValues);
    dirty = false;
    ++recomputations;
}

void CurveDisplay::DrawContent() {
    PrepareCurve();
    if (filled) FillUnitStrip(vertices, fillBase, fillColour);
    DrawUnitStrip(vertices, lineColour);
    DrawLive();
}

// Rows from the module's layout (property 64015: the row of "Env 1 Time A1" and the distance to the
// next envelope's, the row of "Env 1 Type A1" and its distance): fourteen rows from the first (five
// times, five shapes, "Level A1", "Level A2", "Sustain", "Level R1"), then the five types.
EnvDisplay::EnvDisplay(Manager* manager, int32_t id_) : CurveDisplay(manager, {}), id(id_) {
    int32_t layout[4] = {-1, 0, -1, 0};
    if (!manager->module || manager->module->GetProperty(kEnvelopeLayoutProperty, layout) != kNoErr)
        layout[0] = layout[2] = -1;
    auto row = [&](int32_t base, int32_t stride, int32_t k) {
        const int32_t index = base < 0 ? -1 : base + id * stride + k;
        return index >= 0 && index < manager->NumParameters() ? index : -1;
    };
    for (int32_t k = 0; k < 14; ++k)
        watched.push_back(row(layout[0], layout[1], k));
    for (int32_t k = 0; k < kNumEnvSegments; ++k)
        watched.push_back(row(layout[2], layout[3], k));
    shownValues.assign(watched.size(), 0.0f);
    newValues.assign(watched.size(), 0.0f);
    filled = true;
    voiceController = manager->FindParameter("Env 2 Time A1") >= 0;
}

void EnvDisplay::ComputeCurve(const std::vector<float>& values) {
    vertices.clear();
    if (watched.empty() || watched[0] < 0) return;
    // The rows as the module reads them, with the multiplier at "1" (the times as set), full velocity
    // and a start from zero: the shape of a note from silence.
    EnvParameters p;
    for (int32_t k = 0; k < kNumEnvSegments; ++k) {
        p.time[k] = std::max(values[size_t(k)], 0.0f);
        p.shape[k] = values[size_t(5 + k)];
        p.type[k] = watched[size_t(14 + k)] >= 0 ? int32_t(values[size_t(14 + k)]) : kEnvExponential;
    }
    p.levelA1 = values[10], p.levelA2 = values[11], p.sustain = values[12], p.levelR1 = values[13];
    p.velocityDepth = 0;
    p.resetToZero = true;
    p.multiplier = 1;
    totalSeconds = 1.0f + p.time[kSegA1] + p.time[kSegA2] + p.time[kSegA3] + p.time[kSegR1] + p.time[kSegR2];
    const float rate = CurveRate(totalSeconds);
    // Each stage gets the slot of its nominal length (a segment lasts at least one sample, as in the
    // module); one that reaches its target early holds its last level for the rest of the slot.
    auto slot = [&](float seconds) { return std::max(uint32_t(seconds * rate), uint32_t(1)); };
    const int32_t stages[5] = {kEnvA1, kEnvA2, kEnvA3, kEnvR1, kEnvR2};
    const uint32_t slots[6] = {slot(p.time[kSegA1]), slot(p.time[kSegA2]), slot(p.time[kSegA3]),
                               uint32_t(rate),       slot(p.time[kSegR1]), slot(p.time[kSegR2])};
    uint32_t total = 0;
    for (uint32_t n : slots)
        total += n;
    Envelope envelope;
    EnvDisplayValues unused;
    envNoteOn(envelope, 1.0f, p, rate);
    float level = 0;
    uint32_t index = 0;
    vertices.push_back(0.0f), vertices.push_back(0.0f);
    for (int32_t s = 0; s < 6; ++s) {
        if (s == 3) {
            // The held note: the module's block update sets the sustain level.
            envBlockUpdate(envelope, p, rate, unused);
            level = envelope.level;
        }
        if (s == 4) envNoteOff(envelope, p, rate);
        const int32_t stage = s == 3 ? int32_t(kEnvSustain) : stages[s < 3 ? s : s - 1];
        for (uint32_t i = 0; i < slots[s]; ++i) {
            if (envelope.stageIndex == stage) renderEnvelope(envelope, &level, 1);
            ++index;
            vertices.push_back(float(index) / float(total));
            vertices.push_back(level);
        }
    }
}

void EnvDisplay::DrawLive() {
    // Where the module's envelope runs now: its position along the same time axis, and its level.
    ModuleStatusBlock* block = StatusBlock();
    if (!block || watched.empty() || watched[0] < 0) return;
    const EnvDisplayValues& live =
        voiceController ? block->As<BrelCorvaneVoiceController::VoiceControllerStatus>().envelope[id % 3]
                        : block->As<BrelCorvaneTrigger::TriggerStatus>().envelope;
    if (!(live.position > 0)) return;
    const float marker[4] = {0.3f, 1.0f, 0.5f, 1.0f};
    DrawMarker(std::min(live.position, 1.0f), std::clamp(live.level, 0.0f, 1.0f), 2, marker);
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
    using namespace BrelCorvaneLFO;
    // Rows: Sine, Triangle, Square, Saw, Random, Noise, Offset, Pulse Width (%), Asymmetry (%).
    const WaveMix mix = MakeWaveMix(v[0], v[1], v[2], v[3], v[4], v[5], v[6], PulseWidthFraction(v[7]),
                                    AsymmetryMiddle(v[8]));
    // The random and noise parts from a fixed seed, so that the picture stands still: the held random
    // value of this cycle, and the noise running through it.
    uint32_t seed = NextRandomState(kCurveSeed);
    const float held = RandomStateToFloat(seed);
    vertices.clear();
    for (int i = 0; i <= kCurvePoints; ++i) {
        const float f = float(i) / float(kCurvePoints);
        const float p = WarpedPhase(mix, f);
        seed = NextRandomState(seed);
        const float noise = RandomStateToFloat(seed);
        const float w = PeriodicWaves(mix, p, PolySine(p)) + held * mix.random + noise * mix.noise;
        vertices.push_back(float(i) / float(kCurvePoints));
        vertices.push_back(std::clamp(0.5f + 0.5f * (w + mix.offset), 0.0f, 1.0f));
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
    return BrelCorvaneFunction::TransferSample(function, x, s, o, g, h);
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
    if (manager->module->GetProperty(kCalibrationTableProperty, &address) != kNoErr || !address) return false;
    if (manager->module->GetProperty(kCalibrationCountProperty, &count) != kNoErr) return false;
    pairs = static_cast<const float*>(address);
    return count > 0;
}

void CalibrationDisplay::Draw() {
    const float* pairs = nullptr;
    int32_t count = 0;
    if (ReadTable(pairs, count)) ModuleDisplay::Draw();
}

void CalibrationDisplay::DrawContent() {
    const float* pairs = nullptr;
    int32_t count = 0;
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
