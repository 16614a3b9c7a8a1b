// The DC panel as its script builds it, compared by pixels with a reference built here in code from the
// model's own numbers: a window of 510 by 220, the banner and Prefs button of the common part, six knobs
// with fields 69 px apart per channel, the right channel at the bottom, the hidden OSC group beside it.
#include <gtest/gtest.h>

#include "editor/PanelScreenshot.h"
#include "editor/PluginLuaGui.h"
#include "editor/ZPmanager.h"
#include "editor/widgets/ArcKnobRenderer.h"
#include "editor/widgets/Button.h"
#include "editor/widgets/Group.h"
#include "editor/widgets/Knob.h"
#include "editor/widgets/Label.h"
#include "editor/widgets/TextField.h"
#include "support/EditorRig.h"
#include "support/LuaPanelRig.h"
#include "tests/support/Render.h"

namespace BR::Test {

namespace {
constexpr float kPad = 10, kEdge = 5, kKnobSpace = 69, kKnob = 34, kFieldH = 12;

// A knob above its field, centred on each other, and the label 3 px under the field.
void KnobAndField(Manager& manager, NamedGroup* group, ArcKnobRenderer* renderer, const std::string& name,
                  const std::string& text, float x, float y, float fieldW) {
    const int32_t parameter = manager.FindParameter(name);
    ASSERT_GE(parameter, 0) << name;
    float knobX = x, fieldX = x;
    if (fieldW > kKnob)
        knobX = x + 0.5f * (fieldW - kKnob);
    else
        fieldX = x - 0.5f * (kKnob - fieldW);
    auto* knob = new ArcKnob(&manager, parameter, renderer);
    knob->SetRect(knobX, y + kFieldH + 1, kKnob, kKnob);
    group->Add(knob);
    auto* field = new TextField(&manager, parameter, "");
    field->SetRect(fieldX, y, fieldW, kFieldH);
    group->Add(field);
    auto* label = new Label(&manager, text, fieldX + 0.5f * fieldW, y - 3);
    group->Add(label);
}

// setPosition( x, y, true ): the content's padded lower left lands at (x, y).
void Place(NamedGroup* group, float x, float y) {
    Box box;
    group->PaddedBounds(box);
    group->SetPosition(x - box.v[0], y - box.v[1]);
}

float Width(NamedGroup* group) {
    Box box;
    group->PaddedBounds(box);
    return box.v[3] - box.v[0];
}
float Height(NamedGroup* group) {
    Box box;
    group->PaddedBounds(box);
    return box.v[4] - box.v[1];
}

void BuildModelPanel(ZPmanager& manager) {
    const float ww = 510, wh = 220;
    manager.SetDesignSize(int(ww), int(wh));
    // The common part: three renderers of the atlas, the colours, the banner and the Prefs button.
    GuiTexture* atlas = manager.AddTexture("buttons.png");
    auto* tiny = new ArcKnobRenderer(atlas, 2, 128 - 100 - 26, 26, 32, 128 - 100 - 26);
    auto* small = new ArcKnobRenderer(atlas, 2, 128 - 2 - 34, 34, 2, 128 - 42 - 34);
    auto* big = new ArcKnobRenderer(atlas, 52, 128 - 2 - 92, 92, 162, 128 - 2 - 92);
    for (Effect* renderer :
         {static_cast<Effect*>(tiny), static_cast<Effect*>(small), static_cast<Effect*>(big)})
        manager.animatedElements.push_back(renderer);
    const float prefsW = kKnob + 20, prefsH = 25, prefsX = ww - prefsW - kEdge;
    manager.SetBannerBounds(kPad, wh - 25, prefsX - kPad, wh - 10);
    auto* prefs = new ZephButton(&manager, "Prefs", "", [] {});
    prefs->SetRect(prefsX, wh - prefsH - kEdge, prefsW, prefsH);
    manager.rootGroup->Add(prefs);
    manager.SetBannerContent("nameOnly", 20, 200);

    auto* osc = new NamedGroup(&manager, "OSC", 10);
    manager.rootGroup->Add(osc);
    KnobAndField(manager, osc, small, "OSC Port Offset", "Port", 0, 0, kKnob);
    osc->SetVisible(false);
    const char* names[6] = {"Output Positive ", "Output Symmetric ", "Multiplier ",
                            "Input Add ",       "Input Multiply ",   "Smoothing "};
    const char* labels[6] = {"Out 0->1", "Out -1->1", "Multiplier", "Input Add", "Input Mult", "Smooth"};
    NamedGroup* channels[2];
    for (int c = 0; c < 2; ++c) {
        channels[c] = new NamedGroup(&manager, c == 0 ? "Left Channel" : "Right Channel", 10);
        manager.rootGroup->Add(channels[c]);
        for (int n = 0; n < 6; ++n)
            KnobAndField(manager, channels[c], small, std::string(names[n]) + (c == 0 ? "L" : "R"), labels[n],
                         float(n) * kKnobSpace, 0, 40);
    }
    float x = kEdge, y = kEdge;
    Place(channels[1], x, y);
    x += Width(channels[1]) + kPad;
    Place(osc, x, y);
    x = kEdge;
    y += Height(channels[1]) + kPad;
    Place(channels[0], x, y);
    manager.SetFontChoices({"Verdana.ttf", "arial.ttf"}, 13, 11, 11);
    manager.RedrawLabels();
}
}  // namespace

TEST(WindowDCPanel, MatchesReferenceFromModelNumbers) {
    // No user preference or skin of the machine reaches either panel.
    TempHome home;
    const char* display = SharedDisplay();
    ASSERT_NE(display, nullptr);
    auto setValues = [](HostDriver& driver) {
        driver.SetParameterByName("Output Positive L", 0.25f);
        driver.SetParameterByName("Multiplier R", -2.0f);
    };
    auto scripted = MakeDriver("dc");
    setValues(*scripted);
    const PanelPicture byScript = RenderPanel(scripted->Module(), display, 20);
    ASSERT_FALSE(byScript.rgb.empty()) << byScript.error;

    auto built = MakeDriver("dc");
    setValues(*built);
    ZPmanager manager(&built->Module());
    BuildModelPanel(manager);
    const PanelPicture reference = RenderManager(manager, display, 20);
    ASSERT_FALSE(reference.rgb.empty()) << reference.error;

    ASSERT_EQ(byScript.width, 510);
    ASSERT_EQ(byScript.height, 220);
    ASSERT_EQ(reference.width, byScript.width);
    ASSERT_EQ(reference.height, byScript.height);
    WritePng("dc-model-reference.png", reference.rgb, reference.width, reference.height);
    EXPECT_LT(DifferentPixelFraction(byScript.rgb, reference.rgb, 32), 0.005);
    // The comparison sees layout: the reference with its right channel 10 px to the right differs.
    auto moved = MakeDriver("dc");
    setValues(*moved);
    ZPmanager movedManager(&moved->Module());
    BuildModelPanel(movedManager);
    for (UIElement* child : movedManager.rootGroup->children)
        if (auto* group = dynamic_cast<NamedGroup*>(child); group && group->title == "Right Channel")
            group->SetPosition(group->offsetX + 10, group->offsetY);
    const PanelPicture wrong = RenderManager(movedManager, display, 20);
    ASSERT_FALSE(wrong.rgb.empty());
    EXPECT_GT(DifferentPixelFraction(wrong.rgb, reference.rgb, 32), 0.02);
}

}  // namespace BR::Test
