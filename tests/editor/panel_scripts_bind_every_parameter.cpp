// Each built module's panel script: it runs without an error, gives the window size and groups of its
// table, a control for every parameter, no two controls overlapping, none outside the window, and the
// hidden "OSC" group keeping its layout space.
#include <gtest/gtest.h>

#include <set>

#include "editor/widgets/Button.h"
#include "editor/widgets/DropDown.h"
#include "editor/widgets/Knob.h"
#include "editor/widgets/Slider.h"
#include "editor/widgets/TextField.h"
#include "support/LuaPanelRig.h"

namespace BR::Test {

namespace {

struct PanelCase {
    const char* stem;
    int width, height;
    std::vector<std::string> groups;
};

const PanelCase kPanels[] = {
    {"dc", 510, 220, {"OSC", "Left Channel", "Right Channel"}},
    {"smux", 410, 135, {"OSC", "Flip"}},
    {"sync", 673, 217, {"OSC", "Setup", "Clock Signal", "Run Signal", "Hardware", "Interface"}},
};

Box WindowBox(UIElement* element) {
    const Point offset = element->ParentOffset();
    Box box;
    box.v[0] = element->rect[0] + offset.x, box.v[1] = element->rect[1] + offset.y;
    box.v[3] = element->rect[3] + offset.x, box.v[4] = element->rect[4] + offset.y;
    return box;
}

bool Overlap(const Box& a, const Box& b) {
    return a.v[0] < b.v[3] && b.v[0] < a.v[3] && a.v[1] < b.v[4] && b.v[1] < a.v[4];
}

void Collect(Group* group, std::vector<Control*>& controls) {
    for (UIElement* child : group->children) {
        if (auto* sub = dynamic_cast<Group*>(child))
            Collect(sub, controls);
        else if (auto* control = dynamic_cast<Control*>(child))
            controls.push_back(control);
    }
}

Box GroupBox(NamedGroup* group) {
    Box box;
    group->GetBounds(box);
    return box;
}

}  // namespace

class PanelScripts : public ::testing::TestWithParam<PanelCase> {};

TEST_P(PanelScripts, BindsEveryParameterInsideTheWindow) {
    const PanelCase& panel = GetParam();
    LuaPanelRig rig(panel.stem);
    rig.Open();
    EXPECT_TRUE(rig.gui->errorLog.empty()) << rig.gui->errorLog.front();
    EXPECT_EQ(rig.manager.designWidth, panel.width);
    EXPECT_EQ(rig.manager.designHeight, panel.height);
    std::vector<std::string> titles;
    for (NamedGroup* group : rig.Groups())
        titles.push_back(group->title);
    EXPECT_EQ(titles, panel.groups);

    std::vector<Control*> controls;
    Collect(rig.manager.rootGroup, controls);
    std::set<int32_t> bound;
    for (Control* control : controls)
        bound.insert(control->parameter);
    for (int32_t i = 0; i < rig.manager.NumParameters(); ++i)
        EXPECT_TRUE(bound.count(i)) << "no control for " << rig.manager.ParameterInfo(i).name;

    // Controls: no overlaps between different ones, all inside the window (knob and field of one
    // parameter are separate controls and must not overlap either).
    for (size_t a = 0; a < controls.size(); ++a) {
        const Box box = WindowBox(controls[a]);
        EXPECT_GE(box.v[0], 0) << rig.manager.ParameterInfo(controls[a]->parameter).name;
        EXPECT_GE(box.v[1], 0);
        EXPECT_LE(box.v[3], panel.width);
        EXPECT_LE(box.v[4], panel.height);
        for (size_t b = a + 1; b < controls.size(); ++b)
            EXPECT_FALSE(Overlap(box, WindowBox(controls[b])))
                << rig.manager.ParameterInfo(controls[a]->parameter).name << " and "
                << rig.manager.ParameterInfo(controls[b]->parameter).name;
    }

    // Groups inside the window and apart; the hidden OSC group among them, taking its space.
    const auto groups = rig.Groups();
    for (size_t a = 0; a < groups.size(); ++a) {
        const Box box = GroupBox(groups[a]);
        EXPECT_GE(box.v[0], 0) << groups[a]->title;
        EXPECT_GE(box.v[1], 0) << groups[a]->title;
        EXPECT_LE(box.v[3], panel.width) << groups[a]->title;
        EXPECT_LE(box.v[4], panel.height) << groups[a]->title;
        for (size_t b = a + 1; b < groups.size(); ++b)
            EXPECT_FALSE(Overlap(box, GroupBox(groups[b])))
                << groups[a]->title << " and " << groups[b]->title;
    }
    NamedGroup* osc = groups.front();
    ASSERT_EQ(osc->title, "OSC");
    EXPECT_FALSE(osc->visible);
    const Box oscBox = GroupBox(osc);
    EXPECT_GT(oscBox.v[3] - oscBox.v[0], 34);
    EXPECT_GT(oscBox.v[4] - oscBox.v[1], 34 + 12);
}

INSTANTIATE_TEST_SUITE_P(Built, PanelScripts, ::testing::ValuesIn(kPanels),
                         [](const auto& info) { return std::string(info.param.stem); });

// The model panel's numbers: groups at the window's edge pad, the right channel at the bottom.
TEST(PanelScriptsDC, ModelPositions) {
    LuaPanelRig rig("dc");
    rig.Open();
    const auto groups = rig.Groups();
    ASSERT_EQ(groups.size(), 3u);
    const Box osc = GroupBox(groups[0]), left = GroupBox(groups[1]), right = GroupBox(groups[2]);
    EXPECT_FLOAT_EQ(right.v[0], 5);
    EXPECT_FLOAT_EQ(right.v[1], 5);
    EXPECT_FLOAT_EQ(osc.v[0], right.v[3] + 10);
    EXPECT_FLOAT_EQ(osc.v[1], 5);
    EXPECT_FLOAT_EQ(left.v[0], 5);
    EXPECT_FLOAT_EQ(left.v[1], right.v[4] + 10);
    EXPECT_EQ(rig.manager.bannerMode, 1);
    EXPECT_FLOAT_EQ(rig.manager.statusX, 200);
    EXPECT_FLOAT_EQ(rig.manager.backgroundColour[0], 0.4f);
    // Six knobs, six fields and six labels per channel group.
    EXPECT_EQ(groups[1]->children.size(), 18u);
    EXPECT_EQ(groups[2]->children.size(), 18u);
}

// A gesture on a control reaches its parameter: a drag of 100 px up on the knob of "Multiplier R"
// moves it by half its range.
TEST(PanelScriptsDC, KnobGestureReachesItsParameter) {
    LuaPanelRig rig("dc");
    rig.Open();
    const int32_t parameter = rig.manager.FindParameter("Multiplier R");
    std::vector<Control*> controls;
    Collect(rig.manager.rootGroup, controls);
    ArcKnob* knob = nullptr;
    for (Control* control : controls)
        if (control->parameter == parameter && dynamic_cast<ArcKnob*>(control))
            knob = static_cast<ArcKnob*>(control);
    ASSERT_NE(knob, nullptr);
    const Box box = WindowBox(knob);
    const Point centre{(box.v[0] + box.v[3]) * 0.5f, (box.v[1] + box.v[4]) * 0.5f};
    rig.manager.MouseDown(centre, 0, 1, false);
    rig.manager.MouseDragged(Point{centre.x, centre.y + 50}, 0);
    rig.manager.MouseUp(Point{centre.x, centre.y + 50}, 0);
    EXPECT_NEAR(rig.driver->Module().GetTableValue(parameter), 1.0f + 4.0f * 50 / 200, 1e-4);
    EXPECT_NEAR(rig.Number("getParameter( 'Multiplier R' )"), 2.0, 1e-4);
}

}  // namespace BR::Test
