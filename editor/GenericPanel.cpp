// The grid of the plain panel: six columns of 69 px, rows of 70 px, a banner on top.
#include "GenericPanel.h"

#include <algorithm>

#include "framework/BrelCorvaneBase.h"
#include "widgets/ArcKnobRenderer.h"
#include "widgets/Button.h"
#include "widgets/DropDown.h"
#include "widgets/Group.h"
#include "widgets/Knob.h"
#include "widgets/Label.h"
#include "widgets/TextField.h"

namespace BR {

namespace {
constexpr float kColumn = 69, kRow = 70, kEdge = 5, kKnob = 34, kFieldH = 12, kFieldW = 40;
constexpr int kColumns = 6;
}  // namespace

void BuildGenericPanel(Manager& manager) {
    const int count = manager.NumParameters();
    const int rows = std::max(1, (count + kColumns - 1) / kColumns);
    const int width = 510;
    const int height = int(kEdge * 2 + rows * kRow + 40);
    manager.SetDesignSize(width, height);
    manager.SetBannerBounds(10, float(height - 25), float(width - 10), float(height - 10));
    manager.SetBannerContent("full", 20, -1);
    GuiTexture* atlas = manager.AddTexture("buttons.png");
    auto* renderer = new ArcKnobRenderer(atlas, 2, 128 - 2 - 34, 34, 2, 128 - 42 - 34);
    manager.animatedElements.push_back(renderer);
    for (int i = 0; i < count; ++i) {
        const int row = rows - 1 - i / kColumns, column = i % kColumns;
        const float x = kEdge + 12 + column * kColumn, y = kEdge + 12 + row * kRow;
        const ParameterUiInfo& info = manager.ParameterInfo(i);
        std::string name = info.name;
        CountedTextList* names = nullptr;
        const bool hasNames =
            info.module && info.module->GetParameterValueStrings(i, &names) == kNoErr && names;
        if (names) names->Release();
        Label* label =
            new Label(&manager, name.size() > 12 ? name.substr(0, 12) : name, x + kFieldW * 0.5f, y - 3);
        manager.rootGroup->Add(label);
        if (hasNames) {
            auto* dropDown = new ZPDropDown(&manager, i);
            dropDown->SetRect(x - 8, y + 20, 56, kFieldH);
            manager.rootGroup->Add(dropDown);
        } else if (info.unit == kUnitBoolean) {
            auto* button = new CorvButton(&manager, i, "On");
            button->SetRect(x, y + 14, kFieldW, 20);
            manager.rootGroup->Add(button);
        } else {
            auto* field = new TextField(&manager, i);
            field->SetRect(x, y, kFieldW, kFieldH);
            manager.rootGroup->Add(field);
            auto* knob = new ArcKnob(&manager, i, renderer);
            knob->SetRect(x + (kFieldW - kKnob) * 0.5f, y + kFieldH + 1, kKnob, kKnob);
            manager.rootGroup->Add(knob);
        }
    }
}

}  // namespace BR
