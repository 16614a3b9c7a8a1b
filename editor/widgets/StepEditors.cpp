// Row gestures: a press takes the step under the pointer, a drag fills every step it crosses, Control
// holds the first step, Shift adjusts finely, Alt restores defaults; and the random register's cells.
#include "StepEditors.h"

#include <GL/glew.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "framework/BrelCorvaneBase.h"
#include "modules/sequencing/StepLFO.h"

namespace BR {

namespace {
constexpr uint32_t kPropertyRegisterEdit = 64152;
// Value per pixel of a Shift drag: 2000 px cover a unit, as the knobs' fine mode does.
constexpr float kFineSensitivity = 0.0005f;

const BrelCorvaneStepLFO::StepLFOStatus* StepStatus(Manager* manager) {
    ModuleStatusBlock* block = nullptr;
    if (!manager->module || manager->FindParameter("Step 1 L") < 0 ||
        manager->module->GetProperty(kPropertyStatusBlock, &block) != kNoErr || !block)
        return nullptr;
    return &block->As<BrelCorvaneStepLFO::StepLFOStatus>();
}

std::vector<int32_t> Rows(Manager* manager, const char* stem, int32_t first, int32_t count, int32_t id) {
    std::vector<int32_t> rows;
    for (int32_t n = first; n < first + count; ++n)
        rows.push_back(FindRow(manager, stem, n, id == 0 ? " L" : " R"));
    return rows;
}

std::vector<int32_t> Named(Manager* manager, std::initializer_list<const char*> names, int32_t id) {
    std::vector<int32_t> rows;
    for (const char* name : names)
        rows.push_back(manager->FindParameter(std::string(name) + (id == 0 ? " L" : " R")));
    return rows;
}
}  // namespace

RowEditor::RegionReceiver::RegionReceiver(Manager* manager, RowEditor* editor_, int32_t step_)
    : UIElement(manager), editor(editor_), step(step_) {}

void RowEditor::RegionReceiver::GetBounds(Box& bounds) {
    // The cell's width at the editor's full height, in panel space: the receiver has no parent group.
    const Point offset = editor->ParentOffset();
    const float cell = editor->Width() / float(std::max(editor->ShownSteps(), int32_t(1)));
    const float x0 = offset.x + editor->rect[0] + float(step) * cell;
    bounds.v[0] = std::min(bounds.v[0], x0);
    bounds.v[3] = std::max(bounds.v[3], x0 + cell);
    bounds.v[1] = std::min(bounds.v[1], offset.y + editor->rect[1]);
    bounds.v[4] = std::max(bounds.v[4], offset.y + editor->rect[4]);
    bounds.v[2] = std::min(bounds.v[2], 0.0f);
    bounds.v[5] = std::max(bounds.v[5], 0.0f);
}

void RowEditor::RegionReceiver::MouseDown(Point point, uint32_t modifiers, int32_t clickCount) {
    editor->MouseDown(point, modifiers, clickCount);
}

void RowEditor::RegionReceiver::MouseDragged(Point point, uint32_t modifiers) {
    editor->MouseDragged(point, modifiers);
}

void RowEditor::RegionReceiver::MouseUp(Point point, uint32_t modifiers) {
    editor->MouseUp(point, modifiers);
}

void RowEditor::RegionReceiver::MouseEnter() {
    manager->hoveredParameter = editor->parameters[size_t(step)];
    manager->tooltipElement = this;
}

void RowEditor::RegionReceiver::MouseExit() {
    if (manager->hoveredParameter == editor->parameters[size_t(step)]) manager->hoveredParameter = -1;
}

RowEditor::RowEditor(Manager* manager, std::vector<int32_t> parameters_, std::vector<int32_t> controls,
                     bool bipolar_)
    : ControlBase(manager),
      parameters(std::move(parameters_)),
      controlParameters(std::move(controls)),
      shownValues(parameters.size(), 0.0f),
      newValues(parameters.size(), 0.0f),
      shownControls(controlParameters.size(), 0.0f),
      bipolar(bipolar_) {
    for (size_t i = 0; i < parameters.size(); ++i)
        regions.push_back(new RegionReceiver(manager, this, int32_t(i)));
}

void RowEditor::Animate() {
    for (size_t i = 0; i < parameters.size(); ++i)
        newValues[i] = parameters[i] >= 0 ? manager->GetParameterValue(parameters[i]) : 0.0f;
    bool changed = std::memcmp(newValues.data(), shownValues.data(), newValues.size() * sizeof(float)) != 0;
    if (changed) shownValues = newValues;
    for (size_t i = 0; i < controlParameters.size(); ++i) {
        const float value = controlParameters[i] >= 0 ? manager->GetParameterValue(controlParameters[i]) : 0;
        if (value != shownControls[i]) shownControls[i] = value, changed = true;
    }
    const int32_t step = CurrentStep();
    if (changed || step != shownStep) {
        shownStep = step;
        dirty = true;
    }
}

void RowEditor::Draw() {
    if (!visible || parameters.empty()) return;
    const size_t count = size_t(std::clamp(ShownSteps(), int32_t(1), int32_t(parameters.size())));
    const float base = bipolar ? 0.5f : 0.0f;
    if (dirty) {
        // A stepped outline: two vertices a step, each at the step's level.
        outline.clear();
        for (size_t i = 0; i < count; ++i) {
            const int32_t row = parameters[i];
            const float h = row >= 0 ? ValueToNormalised(manager->ParameterInfo(row), shownValues[i]) : base;
            outline.push_back(float(i) / float(count)), outline.push_back(h);
            outline.push_back(float(i + 1) / float(count)), outline.push_back(h);
        }
        dirty = false;
        ++recomputations;
    }
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColor4fv(backgroundColour);
    glRectf(rect[0], rect[1], rect[3], rect[4]);
    glPushMatrix();
    glTranslatef(rect[0], rect[1], 0);
    glScalef(Width(), Height(), 1);
    for (size_t i = 0; i < count; ++i) {
        // The step playing now is drawn brighter.
        const float lift = int32_t(i) == shownStep ? 0.3f : 0.0f;
        glColor4f(std::min(fillColour[0] + lift, 1.0f), std::min(fillColour[1] + lift, 1.0f),
                  std::min(fillColour[2] + lift, 1.0f), fillColour[3]);
        glRectf(outline[4 * i], base, outline[4 * i + 2], outline[4 * i + 1]);
    }
    glEnable(GL_LINE_SMOOTH);
    glColor4fv(lineColour);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(2, GL_FLOAT, 0, outline.data());
    glDrawArrays(GL_LINE_STRIP, 0, GLsizei(outline.size() / 2));
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisable(GL_LINE_SMOOTH);
    glPopMatrix();
}

UIElement* RowEditor::HitTest(Point point) {
    if (!ControlBase::HitTest(point) || parameters.empty()) return nullptr;
    int32_t step = 0;
    float value = 0;
    PointToStep(Point{point.x + ParentOffset().x, point.y + ParentOffset().y}, step, value);
    return regions[size_t(step)];
}

void RowEditor::PointToStep(Point point, int32_t& step, float& value) const {
    const Point offset = ParentOffset();
    const float x = point.x - offset.x - rect[0], y = point.y - offset.y - rect[1];
    const int32_t count = std::clamp(ShownSteps(), int32_t(1), int32_t(parameters.size()));
    step = std::clamp(int32_t(std::floor(x / Width() * float(count))), int32_t(0), count - 1);
    value = bipolar ? (y - 0.5f * Height()) / (0.5f * Height()) : y / Height();
    value = std::clamp(value, bipolar ? -1.0f : 0.0f, 1.0f);
}

void RowEditor::MouseDown(Point point, uint32_t modifiers, int32_t) {
    float value = 0;
    PointToStep(point, pressStep, value);
    lastStep = pressStep;
    pressPoint = point;
    const int32_t row = parameters[size_t(pressStep)];
    startValue = row >= 0 ? manager->GetParameterValue(row) : 0.0f;
    MouseDragged(point, modifiers);
}

void RowEditor::MouseDragged(Point point, uint32_t modifiers) {
    if (pressStep < 0) return;
    int32_t step = 0;
    float value = 0;
    PointToStep(point, step, value);
    if (modifiers & kModControl) step = pressStep;
    if (modifiers & kModShift)
        value = std::clamp(startValue + (point.y - pressPoint.y) * kFineSensitivity, bipolar ? -1.0f : 0.0f,
                           1.0f);
    // Every column between the last event and this one, so that a fast drag leaves no gap.
    const int32_t direction = step >= lastStep ? 1 : -1;
    for (int32_t s = lastStep;; s += direction) {
        const int32_t row = parameters[size_t(s)];
        if (row >= 0) {
            const ParameterUiInfo& info = manager->ParameterInfo(row);
            const float written =
                std::clamp((modifiers & kModAlt) ? info.defaultValue : value, info.minimum, info.maximum);
            // Each step's host gesture starts when the drag first reaches it and lasts to the release.
            manager->BeginGroupEdit(row);
            // Shown at once, without waiting for Animate to find the change.
            shownValues[size_t(s)] = written;
            dirty = true;
            manager->SetParameterValue(row, written);
        }
        if (s == step) break;
    }
    lastStep = step;
}

void RowEditor::MouseUp(Point, uint32_t) {
    manager->EndGroupEdits();
    pressStep = lastStep = -1;
}

StepEditor::StepEditor(Manager* manager, int32_t id_, int32_t first_, int32_t count)
    : RowEditor(manager, Rows(manager, "Step %d%s", first_, count, id_),
                Named(manager, {"Length Mode", "Start Step", "Length In Steps", "End Step"}, id_), true),
      id(id_),
      first(first_) {}

int32_t StepEditor::ShownSteps() const {
    const int32_t count = int32_t(parameters.size());
    if (first != 1 || count != BrelCorvaneStepLFO::kNumSteps) return count;
    for (int32_t row : controlParameters)
        if (row < 0) return count;
    // The lane's last step as the module works it out: Start/Length or Start/End, never before the start.
    auto value = [&](size_t k) { return int32_t(manager->GetParameterValue(controlParameters[k])); };
    const int32_t start = std::clamp(value(1) - 1, int32_t(0), count - 1);
    int32_t last = value(0) == 0 ? start + value(2) - 1 : value(3) - 1;
    last = std::min(std::max(last, start), count - 1);
    return last + 1;
}

int32_t StepEditor::CurrentStep() const {
    const auto* status = StepStatus(manager);
    return status ? status->currentStep[id & 1] - (first - 1) : -1;
}

DACEditor::DACEditor(Manager* manager, int32_t id_)
    : RowEditor(manager, Rows(manager, "DAC Bit %d%s", 1, 24, id_), Named(manager, {"DAC Bits"}, id_), true),
      id(id_) {}

int32_t DACEditor::ShownSteps() const {
    const int32_t count = int32_t(parameters.size());
    if (controlParameters[0] < 0) return count;
    return std::clamp(int32_t(manager->GetParameterValue(controlParameters[0])), int32_t(1), count);
}

RandomRegisterEditor::RandomRegisterEditor(Manager* manager, int32_t id_) : ControlBase(manager), id(id_) {}

int32_t RandomRegisterEditor::StepAt(Point point) const {
    const float x = point.x - ParentOffset().x - rect[0];
    return std::clamp(int32_t(std::floor(x / (Width() * 0.020833334f))), int32_t(0), int32_t(47));
}

void RandomRegisterEditor::Write(int32_t step, int32_t operation) {
    const int32_t payload[3] = {id, step, operation};
    if (manager->module) manager->module->SetProperty(kPropertyRegisterEdit, payload, sizeof payload);
}

void RandomRegisterEditor::MouseDown(Point point, uint32_t modifiers, int32_t) {
    pressStep = StepAt(point);
    // One short of the pressed cell, so that the drag that follows writes the cell itself.
    lastStep = pressStep - 1;
    MouseDragged(point, modifiers);
}

void RandomRegisterEditor::MouseDragged(Point point, uint32_t modifiers) {
    if (pressStep < 0) return;
    const int32_t step = StepAt(point);
    if (step == lastStep) return;
    const int32_t operation = (modifiers & kModShift) ? 2 : (modifiers & kModControl) ? 1 : 3;
    // Every cell crossed since the last event, in either direction.
    const int32_t direction = step > lastStep ? 1 : -1;
    for (int32_t s = lastStep + direction;; s += direction) {
        Write(s, operation);
        if (s == step) break;
    }
    lastStep = step;
}

void RandomRegisterEditor::MouseUp(Point, uint32_t) {
    if (pressStep < 0) return;
    // Operation 0 ends the edit on the module's side.
    Write(lastStep, 0);
    pressStep = lastStep = -1;
}

int32_t RandomRegisterEditor::CellLevel(uint64_t bits, int32_t cell) {
    return cell >= 0 && cell < kCells && ((bits >> cell) & 1u) ? 255 : 0;
}

int32_t RandomRegisterEditor::BuildRow(uint64_t bits, float x, float y, float width, float height,
                                       std::array<float, 2 * kMaxRowVertices>& out) {
    const float cell = width * 0.020833334f;  // 1/48
    int32_t count = 0;
    for (int32_t i = 0; i < kCells && count + 2 <= kMaxRowVertices; ++i) {
        const float level = y + height * float(CellLevel(bits, i)) * (1.0f / 255.0f);
        out[size_t(2 * count)] = x + float(i) * cell, out[size_t(2 * count + 1)] = level;
        ++count;
        out[size_t(2 * count)] = x + float(i + 1) * cell, out[size_t(2 * count + 1)] = level;
        ++count;
    }
    return count;
}

void RandomRegisterEditor::Draw() {
    if (!visible) return;
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColor4fv(backgroundColour);
    glRectf(rect[0], rect[1], rect[3], rect[4]);
    const auto* status = StepStatus(manager);
    const uint64_t bits = status ? status->registerBits[id & 1] : 0;
    const float cell = Width() * 0.020833334f;
    const float height = rect[4] - rect[1] - 2;
    glColor4fv(fillColour);
    for (int i = 0; i < kCells; ++i) {
        const int32_t level = CellLevel(bits, i);
        if (level > 0)
            glRectf(rect[0] + float(i) * cell + 1, rect[1] + 1, rect[0] + float(i + 1) * cell - 1,
                    rect[1] + 1 + height * float(level) * (1.0f / 255.0f));
    }
    // The cells' levels as one stepped line, one vertex array call.
    const int32_t count = BuildRow(bits, rect[0], rect[1] + 1, Width(), height, rowVertices);
    glColor4fv(lineColour);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(2, GL_FLOAT, 0, rowVertices.data());
    glDrawArrays(GL_LINE_STRIP, 0, GLsizei(count));
    glDisableClientState(GL_VERTEX_ARRAY);
    glBegin(GL_LINE_LOOP);
    glVertex2f(rect[0] + 0.5f, rect[1] + 0.5f), glVertex2f(rect[3] - 0.5f, rect[1] + 0.5f);
    glVertex2f(rect[3] - 0.5f, rect[4] - 0.5f), glVertex2f(rect[0] + 0.5f, rect[4] - 0.5f);
    glEnd();
}

}  // namespace BR
