// Buttons: a plain button calls back on release; toggle and push stateful buttons; property buttons
// write their property and an indicator takes no clicks; a parameter button toggles between the ends
// of its range; button colours ease towards their targets.
#include <gtest/gtest.h>

#include "editor/widgets/Button.h"
#include "support/HeadlessRig.h"

namespace BR::Test {

namespace {
void Click(Manager& manager, Point p) {
    manager.MouseDown(p, 0, 1, false);
    manager.MouseUp(p, 0);
}
}  // namespace

TEST(ButtonModes, ToggleAndPush) {
    DCRig rig;
    int calls = 0;
    auto* toggle = new ZephStatefulButton(
        &rig.manager, "T", "t", [&calls] { ++calls; }, StatefulButton::kToggle);
    auto* push = new ZephStatefulButton(
        &rig.manager, "P", "p", [&calls] { ++calls; }, StatefulButton::kPush);
    toggle->SetRect(300, 100, 40, 20);
    push->SetRect(300, 130, 40, 20);
    rig.manager.rootGroup->Add(toggle);
    rig.manager.rootGroup->Add(push);
    Click(rig.manager, Point{310, 110});
    EXPECT_EQ(toggle->GetState(), 1);
    Click(rig.manager, Point{310, 110});
    EXPECT_EQ(toggle->GetState(), 0);
    rig.manager.MouseDown(Point{310, 140}, 0, 1, false);
    EXPECT_EQ(push->GetState(), 1);
    rig.manager.MouseUp(Point{310, 140}, 0);
    EXPECT_EQ(push->GetState(), 0);
    EXPECT_EQ(calls, 3);
}

TEST(ButtonModes, IndicatorTakesNoClicks) {
    DCRig rig;
    auto* indicator =
        new ZephPropertyButton(&rig.manager, 64140, "Logic", "In Logic Mode?", PropertyButton::kIndicator);
    indicator->SetRect(300, 100, 40, 20);
    rig.manager.rootGroup->Add(indicator);
    EXPECT_EQ(rig.manager.rootGroup->HitTest(Point{310, 110}), nullptr);
    rig.manager.MouseMoved(Point{310, 110});
    EXPECT_EQ(rig.manager.hoveredParameter, indicator->messageId);
}

TEST(ButtonModes, ParameterButtonTogglesBetweenEnds) {
    ProbeRig rig;
    auto* button = new CorvButton(&rig.manager, kSwitch, "On");
    button->SetRect(300, 100, 40, 20);
    rig.manager.rootGroup->Add(button);
    Click(rig.manager, Point{310, 110});
    EXPECT_EQ(rig.Value(kSwitch), 1.0f);
    Click(rig.manager, Point{310, 110});
    EXPECT_EQ(rig.Value(kSwitch), 0.0f);
}

TEST(ButtonModes, ColourEasesTowardsHoverTarget) {
    float colour[4] = {0.3f, 0.3f, 0.3f, 0.4f};
    EaseButtonColour(colour, true);
    EXPECT_FLOAT_EQ(colour[0], 0.85f * 0.3f + 0.15f * 0.8f);
    EXPECT_FLOAT_EQ(colour[1], 0.85f * 0.3f + 0.15f * 0.4f);
    EXPECT_FLOAT_EQ(colour[3], 0.85f * 0.4f + 0.15f * 0.3f);
    for (int i = 0; i < 200; ++i)
        EaseButtonColour(colour, false);
    EXPECT_NEAR(colour[0], 0.3f, 1e-5f);
}

}  // namespace BR::Test
