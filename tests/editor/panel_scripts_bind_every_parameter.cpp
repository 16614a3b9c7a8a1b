// Each built module's panel script: it runs without an error, gives the window size and groups of its
// table, a control for every parameter, no two controls, buttons or displays overlapping, none outside
// the window, and the hidden "OSC" group keeping its layout space.
#include <gtest/gtest.h>

#include <set>

#include "editor/widgets/Button.h"
#include "editor/widgets/DropDown.h"
#include "editor/widgets/Knob.h"
#include "editor/widgets/Slider.h"
#include "editor/widgets/TextField.h"
#include "modules/ModuleFactory.h"
#include "support/LuaPanelRig.h"
#include "support/PanelWalk.h"

namespace BR::Test {

namespace {

struct PanelCase {
    const char* stem;
    int width, height;
    std::vector<std::string> groups;
};

// Every module of the catalogue with its window and groups; a module not in this build is skipped
// until it is.
const PanelCase kPanels[] = {
    {"dc", 510, 220, {"OSC", "Left Channel", "Right Channel"}},
    {"smux", 410, 135, {"OSC", "Flip"}},
    {"sync", 673, 217, {"OSC", "Setup", "Clock Signal", "Run Signal", "Hardware", "Interface"}},
    {"acencoder", 510, 220, {"OSC", "Left Channel", "Right Channel"}},
    {"cvinput", 510, 220, {"OSC", "Left Channel", "Right Channel", "Elkhorn"}},
    {"cvtomidi", 525, 395, {"OSC", "Left Channel", "Right Channel"}},
    {"cvtoosc", 550, 269, {"OSC", "Left Channel", "Right Channel"}},
    {"ardentcontroller",
     723,
     450,
     {"OSC", "Inputs", "Input Modes", "Input To Gates", "Misc", "Interface", "MIDI/CV 1", "MIDI/CV 2",
      "Outputs", "Gates", "Triggers", "Accents", "MIDI Out"}},
    {"basaltcontroller",
     727,
     335,
     {"OSC", "Inputs", "Input To Gates", "Misc", "Interface", "Outputs", "Gates", "Triggers", "Accents",
      "MIDI Out"}},
    {"cindercombiner", 650, 155, {"OSC", "Target", "Inputs", "Misc", "Interface", "Offsets"}},
    {"dunmorecombiner", 630, 200, {"OSC", "Target", "Inputs", "Misc", "Interface", "Offsets"}},
    {"lfo", 733, 360, {"OSC", "Left Channel", "Right Channel"}},
    {"quantizer", 786, 257, {"OSC", "Left Channel", "Right Channel"}},
    {"trigger", 714, 315, {"OSC", "Env ", "Setup", "Trigger", "Voltages", "Overrides", "CV Trigger"}},
    {"voicecontroller",
     925,
     385,
     {"OSC", "Env 1", "Env 2", "Env 3", "Modes", "Portamento", "Voltages", "Overrides", "Detune",
      "Simple Env Controls", "Env Misc", "Output Matrix", "Cinder/Dunmore Target", "Ardent Settings",
      "Calibration", "Trigger", "Interface", "Hardware"}},
    {"steplfo", 907, 415, {"OSC", "Left Channel", "Right Channel"}},
    {"follower", 685, 360, {"OSC", "Follower", "Pitch"}},
    {"soundplane", 570, 380, {"OSC", "Voice", "Output Matrix"}},
    {"learner", 955, 300, {"OSC"}},
    {"Function", 400, 400, {"OSC", "Left Channel", "Right Channel"}},
};

// Rows that only keep the places of retired ones have no control.
bool IsPlaceholder(const std::string& name) {
    return name.rfind("Unused", 0) == 0;
}

}  // namespace

class PanelScripts : public ::testing::TestWithParam<PanelCase> {};

TEST_P(PanelScripts, BindsEveryParameterInsideTheWindow) {
    const PanelCase& panel = GetParam();
    if (!CreateModule(panel.stem)) GTEST_SKIP() << panel.stem << " is not in this build yet";
    LuaPanelRig rig(panel.stem);
    rig.Open();
    ASSERT_TRUE(rig.gui->errorLog.empty()) << rig.gui->errorLog.front();
    EXPECT_EQ(rig.manager.designWidth, panel.width);
    EXPECT_EQ(rig.manager.designHeight, panel.height);
    std::vector<std::string> titles;
    for (NamedGroup* group : rig.Groups())
        titles.push_back(group->title);
    EXPECT_EQ(titles, panel.groups);

    // The module's table walked against the element tree.
    std::vector<UIElement*> elements;
    CollectElements(rig.manager.rootGroup, elements);
    const std::set<int32_t> bound = BoundParameters(elements);
    for (int32_t i = 0; i < rig.manager.NumParameters(); ++i) {
        const std::string name = rig.manager.ParameterInfo(i).name;
        if (!IsPlaceholder(name)) {
            EXPECT_TRUE(bound.count(i)) << "no control for \"" << name << "\"";
        }
    }
    CheckPanelLayout(rig, panel.width, panel.height, "as opened");
    // A drop-down needs the row's value names: a row without them gets a field or knob instead.
    for (UIElement* element : elements)
        if (auto* drop = dynamic_cast<DropDown*>(element)) {
            EXPECT_FALSE(drop->items.empty()) << "drop-down without value names for \""
                                              << rig.manager.ParameterInfo(drop->parameter).name << "\"";
        }

    // The hidden OSC group keeps the room of its knob and field.
    NamedGroup* osc = rig.Groups().front();
    ASSERT_EQ(osc->title, "OSC");
    EXPECT_FALSE(osc->visible);
    const Box oscBox = GroupBox(osc);
    EXPECT_GT(oscBox.v[3] - oscBox.v[0], 34);
    EXPECT_GT(oscBox.v[4] - oscBox.v[1], 34 + 12);

    // A show/hide pair swaps its groups: the other set must fit as well.
    lua_State* L = rig.gui->luaState;
    lua_getglobal(L, "toggleGroups");
    const bool hasToggle = lua_isfunction(L, -1);
    lua_pop(L, 1);
    if (hasToggle) {
        ASSERT_EQ(rig.Run("toggleGroups()"), "");
        CheckPanelLayout(rig, panel.width, panel.height, "after toggleGroups()");
    }
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
    std::vector<UIElement*> elements;
    CollectElements(rig.manager.rootGroup, elements);
    ArcKnob* knob = nullptr;
    for (UIElement* element : elements)
        if (auto* found = dynamic_cast<ArcKnob*>(element); found && found->parameter == parameter)
            knob = found;
    ASSERT_NE(knob, nullptr);
    const Box box = PanelBox(knob);
    const Point centre{(box.v[0] + box.v[3]) * 0.5f, (box.v[1] + box.v[4]) * 0.5f};
    rig.manager.MouseDown(centre, 0, 1, false);
    rig.manager.MouseDragged(Point{centre.x, centre.y + 50}, 0);
    rig.manager.MouseUp(Point{centre.x, centre.y + 50}, 0);
    EXPECT_NEAR(rig.driver->Module().GetTableValue(parameter), 1.0f + 4.0f * 50 / 200, 1e-4);
    EXPECT_NEAR(rig.Number("getParameter( 'Multiplier R' )"), 2.0, 1e-4);
}

}  // namespace BR::Test
