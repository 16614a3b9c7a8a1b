// A Step LFO behind a host driver, whose register edits are recorded on their way in, and a windowless
// manager with the step, DAC and register editors of lane L placed at known spots; the host's edit
// gestures are recorded too. Input goes through the manager as the window thread sends it.
#pragma once

#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "editor/ZPmanager.h"
#include "editor/widgets/Group.h"
#include "editor/widgets/StepEditors.h"
#include "framework/ModuleCatalogue.h"
#include "host/HostDriver.h"
#include "modules/sequencing/StepLFO.h"

namespace BR::Test {

class RecordingStepLFO : public BrelCorvaneStepLFO::BrelCorvane {
public:
    int32_t SetProperty(uint32_t id, const void* data, uint32_t size) override {
        if (id == 64152) {
            std::array<int32_t, 3> payload{-1, -1, -1};
            if (data && size >= sizeof payload) std::memcpy(payload.data(), data, sizeof payload);
            registerEdits.push_back(payload);
            registerEditSizes.push_back(size);
        }
        const int32_t result = BrelCorvaneStepLFO::BrelCorvane::SetProperty(id, data, size);
        if (id == 64152) registerEditResults.push_back(result);
        return result;
    }
    std::vector<std::array<int32_t, 3>> registerEdits;
    std::vector<uint32_t> registerEditSizes;
    std::vector<int32_t> registerEditResults;
};

struct EditEvent {
    bool begin;
    int32_t parameter;
    bool operator==(const EditEvent& other) const {
        return begin == other.begin && parameter == other.parameter;
    }
};

struct StepEditorRig {
    // The row editor spans x 10..778 and y 20..100 of the panel (a group at (10, 20)); with the lane's
    // default length of 16 steps each cell is 48 px wide and the middle line, value 0, is at y 60.
    static constexpr float kLeft = 10, kBottom = 20, kWidth = 768, kHeight = 80;

    StepEditorRig() {
        auto module = std::make_unique<RecordingStepLFO>();
        recorder = module.get();
        driver = std::make_unique<HostDriver>(std::move(module), *FindCatalogueEntry("steplfo"), 48000.0f);
        manager = std::make_unique<ZPmanager>(&driver->Module());
        manager->SetDesignSize(800, 200);
        manager->callbackContext = this;
        manager->beginEdit = [](int32_t parameter, void* context) {
            static_cast<StepEditorRig*>(context)->edits.push_back({true, parameter});
        };
        manager->endEdit = [](int32_t parameter, void* context) {
            static_cast<StepEditorRig*>(context)->edits.push_back({false, parameter});
        };
        auto* group = new Group(manager.get());
        group->SetPosition(kLeft, kBottom);
        steps = new StepEditor(manager.get(), 0);
        steps->SetRect(0, 0, kWidth, kHeight);
        group->Add(steps);
        // 48 register cells of 5 px at x 10..250, y 120..134.
        cells = new RandomRegisterEditor(manager.get(), 0);
        cells->SetRect(0, 100, 240, 14);
        group->Add(cells);
        manager->rootGroup->Add(group);
        manager->Animate();
    }

    int32_t Row(int32_t step) const { return steps->parameters[size_t(step)]; }
    float Step(int32_t step) const { return manager->GetParameterValue(Row(step)); }
    void SetStep(int32_t step, float value) { manager->SetParameterValue(Row(step), value); }
    float CellWidth() const { return kWidth / float(steps->ShownSteps()); }
    // The panel point over the middle of `step` at `value` (-1 to 1).
    Point At(int32_t step, float value) const {
        return Point{kLeft + (float(step) + 0.5f) * CellWidth(), kBottom + kHeight * 0.5f * (1.0f + value)};
    }
    Point Cell(int32_t cell) const { return Point{kLeft + float(cell) * 5.0f + 2.5f, kBottom + 107.0f}; }

    // One gesture: the press, each drag event, the release, all with `modifiers`.
    void Gesture(Point press, const std::vector<Point>& drags, uint32_t modifiers = 0) {
        manager->MouseDown(press, modifiers, 1, false);
        for (const Point& p : drags)
            manager->MouseDragged(p, modifiers);
        manager->MouseUp(drags.empty() ? press : drags.back(), modifiers);
    }

    RecordingStepLFO* recorder = nullptr;
    std::unique_ptr<HostDriver> driver;
    std::unique_ptr<ZPmanager> manager;
    StepEditor* steps = nullptr;
    RandomRegisterEditor* cells = nullptr;
    std::vector<EditEvent> edits;
};

}  // namespace BR::Test
