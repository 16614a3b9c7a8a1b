// The panels of modules not in this build yet, run against stand-ins that carry the parameter tables the
// modules are to have: each script runs without an error, binds every row, and fits its window. Once a
// module is built, Built/PanelScripts checks its panel against the real table as well.
#include <gtest/gtest.h>

#include <deque>

#include "framework/ModuleCatalogue.h"
#include "support/LuaPanelRig.h"
#include "support/PanelWalk.h"

namespace BR::Test {

namespace {

class StandInModule : public BrelCorvaneBase {
public:
    StandInModule(std::vector<ParameterDefinition> rows_, int32_t oscRow, const char* script_)
        : BrelCorvaneBase(Config(rows_, oscRow)), rows(std::move(rows_)), script(script_) {}
    uint32_t GetParameterFlags(int32_t) override { return 0; }
    int32_t GetParameterDisplayString(DisplayStringRequest&) override { return kErrNotSupported; }
    const char* GetModuleName() const override { return "Corvane Stand-in"; }
    const char* GetGuiScriptName() const override { return script; }

private:
    static ModuleConfig Config(std::vector<ParameterDefinition>& table, int32_t oscRow) {
        // Kept for the process, in deques so that earlier modules' pointers stay valid.
        static std::deque<std::vector<float>> defaults;
        static std::deque<PresetDefinition> presets;
        defaults.emplace_back(table.size(), 0.0f);
        presets.push_back({"Defaults", 0, defaults.back().data()});
        return ModuleConfig{2, 2, 0, 0, oscRow, 1, &presets.back(), int32_t(table.size()), table.data(), -1};
    }
    std::vector<ParameterDefinition> rows;
    const char* script;
};

struct StandInCase {
    const char* stem;
    const char* script;
    int width, height;
    std::vector<std::string> groups;
};

std::vector<ParameterDefinition> TableOf(const std::string& stem, int32_t& oscRow) {
    static std::deque<std::string> names;  // the tables point at these; a deque never moves them
    std::vector<ParameterDefinition> rows;
    auto row = [&](const std::string& name, uint32_t unit, float minimum, float maximum, float value) {
        names.push_back(name);
        rows.push_back({names.back().c_str(), unit, minimum, maximum, value});
    };
    if (stem == "cvtoosc") {
        row("OSC Port Offset", kUnitIndexed, 0, 100, 0);
        for (const char* lr : {"L", "R"}) {
            row(std::string("Enable ") + lr, kUnitBoolean, 0, 1, 0);
            row(std::string("Threshold ") + lr, kUnitPercent, 0, 1, 0.1f);
            row(std::string("Max Rate ") + lr, kUnitFrequency, 10, 1000, 1000);
        }
        oscRow = 0;
    } else if (stem == "learner") {
        row("OSC Port Offset", kUnitIndexed, 0, 100, 0);
        row("Send OSC", kUnitIndexed, 0, 3, 0);
        oscRow = 0;
    } else if (stem == "soundplane") {
        row("Voice ID", kUnitIndexed, 0, 16, 1);
        for (int o = 1; o <= 6; ++o)
            for (const char* source : {"Offset", "Note", "Gate", "X", "Y", "Z"})
                row("Output " + std::to_string(o) + " " + source, kUnitGeneric, -1, 1, 0);
        for (int o = 1; o <= 6; ++o)
            row("Output " + std::to_string(o) + " Smoothing", kUnitMilliseconds, -500, 500, 0);
        row("Gate Z", kUnitBoolean, 0, 1, 0);
        row("OSC Port Offset", kUnitIndexed, 0, 100, 0);
        oscRow = 44;
    } else if (stem == "acencoder6") {
        // The names the six-channel panel expects: the stereo encoder's, numbered by channel.
        row("OSC Port Offset", kUnitIndexed, 0, 100, 0);
        for (int n = 1; n <= 6; ++n) {
            row("Enable " + std::to_string(n), kUnitBoolean, 0, 1, 1);
            row("Input Polarity " + std::to_string(n), kUnitIndexed, 0, 1, 0);
            row("Min Output Level " + std::to_string(n), kUnitGeneric, 0, 1, 0);
            row("Max Output Level " + std::to_string(n), kUnitGeneric, 0, 1, 1);
        }
        oscRow = 0;
    }
    return rows;
}

const StandInCase kCases[] = {
    {"cvtoosc", "gui_cvtoosc.lua", 550, 269, {"OSC", "Left Channel", "Right Channel"}},
    {"learner", "gui_learner.lua", 955, 300, {"OSC"}},
    {"soundplane", "gui_soundplane.lua", 570, 380, {"OSC", "Voice", "Output Matrix"}},
    {"acencoder6",
     "gui_acencoder6.lua",
     603,
     314,
     {"OSC", "Channel 1", "Channel 2", "Channel 3", "Channel 4", "Channel 5", "Channel 6"}},
};

}  // namespace

class PanelScriptsInProgress : public ::testing::TestWithParam<StandInCase> {};

TEST_P(PanelScriptsInProgress, BindsTheTableInsideTheWindow) {
    const StandInCase& panel = GetParam();
    int32_t oscRow = 0;
    auto module = std::make_unique<StandInModule>(TableOf(panel.stem, oscRow), oscRow, panel.script);
    const CatalogueEntry* entry =
        FindCatalogueEntry(panel.stem == std::string("acencoder6") ? "acencoder" : panel.stem);
    ASSERT_NE(entry, nullptr);
    LuaPanelRig rig(std::make_unique<HostDriver>(std::move(module), *entry, 48000.0f));
    rig.Open();
    ASSERT_TRUE(rig.gui->errorLog.empty()) << rig.gui->errorLog.front();
    EXPECT_EQ(rig.manager.designWidth, panel.width);
    EXPECT_EQ(rig.manager.designHeight, panel.height);
    std::vector<std::string> titles;
    for (NamedGroup* group : rig.Groups())
        titles.push_back(group->title);
    EXPECT_EQ(titles, panel.groups);
    std::vector<UIElement*> elements;
    CollectElements(rig.manager.rootGroup, elements);
    const std::set<int32_t> bound = BoundParameters(elements);
    for (int32_t i = 0; i < rig.manager.NumParameters(); ++i)
        EXPECT_TRUE(bound.count(i)) << "no control for \"" << rig.manager.ParameterInfo(i).name << "\"";
    CheckPanelLayout(rig, panel.width, panel.height, "as opened");
    NamedGroup* osc = rig.Groups().front();
    EXPECT_FALSE(osc->visible);
}

INSTANTIATE_TEST_SUITE_P(StandIn, PanelScriptsInProgress, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.stem); });

}  // namespace BR::Test
