// Sync's names, its 25 rows in table order with their ranges and defaults, the value strings of its
// indexed rows, and the rows that read "Off" at 0.
#include <gtest/gtest.h>

#include "modules/sequencing/Sync.h"
#include "tests/support/Render.h"

namespace {
std::string Display(BrelCorvaneBase& module, int32_t row, float value) {
    BR::DisplayStringRequest request{row, &value, nullptr};
    if (module.GetProperty(BR::kPropertyDisplayString, &request) != BR::kNoErr) return "<none>";
    std::string text = request.text->Get();
    request.text->Release();
    return text;
}

std::vector<std::string> Strings(BrelCorvaneBase& module, int32_t row) {
    BR::CountedTextList* list = nullptr;
    if (module.GetParameterValueStrings(row, &list) != BR::kNoErr) return {};
    std::vector<std::string> names = list->Get();
    list->Release();
    return names;
}

struct Row {
    const char* name;
    uint32_t unit;
    float minimum, maximum, defaultValue;
};
}  // namespace

TEST(SyncIdentity, NamesAndTable) {
    auto driver = BR::Test::MakeDriver("sync");
    BrelCorvaneBase& sync = driver->Module();
    EXPECT_STREQ(sync.GetModuleName(), "Corvane Sync");
    EXPECT_STREQ(sync.GetGuiScriptName(), "gui_sync.lua");
    EXPECT_EQ(sync.NumInputs(), 2);
    EXPECT_EQ(sync.NumOutputs(), 2);
    EXPECT_EQ(sync.NumPresets(), 2);
    const Row rows[25] = {
        {"DINsync Type", BR::kUnitIndexed, 0, 3, 3},
        {"Clock Output", BR::kUnitIndexed, 0, 54, 1},
        {"Run Output", BR::kUnitIndexed, 0, 54, 2},
        {"Swing", BR::kUnitPercent, 0, 100, 50},
        {"Swing Type", BR::kUnitIndexed, 0, 1, 0},
        {"Offset", BR::kUnitMilliseconds, -100, 100, 0},
        {"PPQN", BR::kUnitIndexed, 1, 96, 1},
        {"Divisor", BR::kUnitIndexed, 0, 6, 0},
        {"1st Delay", BR::kUnitBoolean, 0, 1, 0},
        {"Clock Low", BR::kUnitGeneric, -1, 1, 0},
        {"Clock High", BR::kUnitGeneric, -1, 1, 1},
        {"Run Low", BR::kUnitGeneric, -1, 1, 0},
        {"Run High", BR::kUnitGeneric, -1, 1, 1},
        {"Trigger Length", BR::kUnitMilliseconds, 0, 100, 0},
        {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
        {"BR Hardware Mode", BR::kUnitIndexed, 0, 2, 0},
        {"Multiplier", BR::kUnitIndexed, 1, 96, 1},
        {"Mute Clocks", BR::kUnitBoolean, 0, 1, 0},
        {"Interface Category", BR::kUnitIndexed, 0, 1, 0},
        {"Run Signal Type", BR::kUnitIndexed, 0, 3, 0},
        {"Skip First Clock", BR::kUnitBoolean, 0, 1, 0},
        {"Run Trigger Length", BR::kUnitMilliseconds, 0, 100, 5},
        {"Run Beat Divisor", BR::kUnitIndexed, 0, 2, 2},
        {"Run Beats", BR::kUnitBeats, 0, 128, 0},
        {"Enable FSK", BR::kUnitBoolean, 0, 1, 0},
    };
    ASSERT_EQ(sync.NumTableParameters(), 25);
    const BR::ParameterDefinition* table = sync.ParameterTable();
    for (int k = 0; k < 25; ++k) {
        EXPECT_STREQ(table[k].name, rows[k].name) << k;
        EXPECT_EQ(table[k].unit, rows[k].unit) << k;
        EXPECT_EQ(table[k].minimum, rows[k].minimum) << k;
        EXPECT_EQ(table[k].maximum, rows[k].maximum) << k;
        if (k != BrelCorvaneSync::kInterfaceCategory) {  // its default comes from the preferences
            EXPECT_EQ(table[k].defaultValue, rows[k].defaultValue) << k;
        }
    }
    int32_t offset = -1;
    driver->SetParameterByName("OSC Port Offset", 9.0f);
    sync.GetProperty(BR::kPropertyOSCPortOffset, &offset);
    EXPECT_EQ(offset, 9);
}

TEST(SyncIdentity, ValueStringsFlagsAndDisplay) {
    auto driver = BR::Test::MakeDriver("sync");
    BrelCorvaneBase& sync = driver->Module();
    EXPECT_EQ(Strings(sync, 0), (std::vector<std::string>{"Off", "24ppqn", "48ppqn", "Custom"}));
    const auto outputs = Strings(sync, 1);
    ASSERT_EQ(outputs.size(), 55u);
    EXPECT_EQ(outputs[0], "Off");
    EXPECT_EQ(outputs[1], "Output 1");
    EXPECT_EQ(outputs[6], "Output 6");
    EXPECT_EQ(outputs[7], "Gates 1/1");
    EXPECT_EQ(outputs[14], "Gates 1/8");
    EXPECT_EQ(outputs[15], "Gates 2/1");
    EXPECT_EQ(outputs[54], "Gates 6/8");
    EXPECT_EQ(Strings(sync, 2), outputs);
    EXPECT_EQ(Strings(sync, 4), (std::vector<std::string>{"16", "8"}));
    EXPECT_EQ(Strings(sync, 7), (std::vector<std::string>{"1", "/2", "/4", "/8", "/16", "/32", "/64"}));
    EXPECT_EQ(Strings(sync, 15), (std::vector<std::string>{"Off", "Ardent", "Basalt"}));
    EXPECT_EQ(Strings(sync, 18), (std::vector<std::string>{"Cat A", "Cat B"}));
    EXPECT_EQ(Strings(sync, 19), (std::vector<std::string>{"Run", "Start", "Start/Stop", "Stop"}));
    EXPECT_EQ(Strings(sync, 22), (std::vector<std::string>{"1/1", "1/2", "1/4"}));
    EXPECT_TRUE(Strings(sync, 6).empty());
    for (int32_t row = 0; row < 25; ++row)
        EXPECT_EQ(sync.GetParameterFlags(row), row == 13 || row == 14 || row == 23 ? 0x200000u : 0u) << row;
    EXPECT_EQ(Display(sync, 13, 0.0f), "Off");
    EXPECT_EQ(Display(sync, 13, 1.0f), "<none>");
    EXPECT_EQ(Display(sync, 14, 0.0f), "Off");
    EXPECT_EQ(Display(sync, 23, 0.0f), "Off");
    EXPECT_EQ(Display(sync, 23, 2.0f), "<none>");
    EXPECT_EQ(Display(sync, 5, 0.0f), "<none>");
    char text[32];
    sync.GetParameterValueText(1, text);
    EXPECT_STREQ(text, "Output 1");
    sync.GetParameterValueText(0, text);
    EXPECT_STREQ(text, "Custom");
}
