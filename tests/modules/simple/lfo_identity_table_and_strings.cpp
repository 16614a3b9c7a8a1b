// The LFO's names, its 43 rows in table order, the value strings of its indexed rows, and the rows
// with a display text.
#include <gtest/gtest.h>

#include "modules/simple/LFO.h"
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
const Row kChannelRows[17] = {
    {"Speed", BR::kUnitFrequency, 0.05f, 20, 5},   {"Speed Multiplier", BR::kUnitIndexed, 0, 3, 1},
    {"Sync", BR::kUnitIndexed, 0, 5, 0},           {"Beat Divisor", BR::kUnitIndexed, 0, 7, 2},
    {"Beats", BR::kUnitBeats, 0, 128, 4},          {"Triplet", BR::kUnitBoolean, 0, 1, 0},
    {"Phase", BR::kUnitGeneric, 0, 360, 0},        {"Offset", BR::kUnitGeneric, -1, 1, 0},
    {"Sine", BR::kUnitGeneric, -1, 1, 0},          {"Triangle", BR::kUnitGeneric, -1, 1, 0},
    {"Square", BR::kUnitGeneric, -1, 1, 0},        {"Saw", BR::kUnitGeneric, -1, 1, 0},
    {"Random", BR::kUnitGeneric, 0, 1, 0},         {"Noise", BR::kUnitGeneric, 0, 1, 0},
    {"Pulse Width", BR::kUnitPercent, 0, 100, 50}, {"Asymmetry", BR::kUnitPercent, -100, 100, 0},
    {"Input Mode", BR::kUnitIndexed, 0, 2, 0},
};
}  // namespace

TEST(LFOIdentity, NamesAndTable) {
    auto driver = BR::Test::MakeDriver("lfo");
    BrelCorvaneBase& lfo = driver->Module();
    EXPECT_STREQ(lfo.GetModuleName(), "Corvane LFO");
    EXPECT_STREQ(lfo.GetGuiScriptName(), "gui_lfo.lua");
    EXPECT_EQ(lfo.NumInputs(), 2);
    EXPECT_EQ(lfo.NumOutputs(), 2);
    ASSERT_EQ(lfo.NumTableParameters(), 43);
    const BR::ParameterDefinition* table = lfo.ParameterTable();
    EXPECT_STREQ(table[0].name, "OSC Port Offset");
    for (int c = 0; c < 2; ++c) {
        for (int k = 0; k < 17; ++k) {
            const BR::ParameterDefinition& row = table[1 + 17 * c + k];
            EXPECT_EQ(std::string(row.name), std::string(kChannelRows[k].name) + (c == 0 ? " L" : " R"));
            EXPECT_EQ(row.unit, kChannelRows[k].unit) << row.name;
            EXPECT_EQ(row.minimum, kChannelRows[k].minimum) << row.name;
            EXPECT_EQ(row.maximum, kChannelRows[k].maximum) << row.name;
            EXPECT_EQ(row.defaultValue, kChannelRows[k].defaultValue) << row.name;
        }
    }
    const char* tail[8] = {"Smoothing L", "Smoothing R",  "Swing L",         "Swing Type L",
                           "Swing R",     "Swing Type R", "Reset By Note L", "Reset By Note R"};
    for (int k = 0; k < 8; ++k)
        EXPECT_STREQ(table[35 + k].name, tail[k]);
    EXPECT_EQ(table[35].minimum, -500.0f);
    EXPECT_EQ(table[36].maximum, 500.0f);
    EXPECT_EQ(table[37].defaultValue, 50.0f);
    EXPECT_EQ(table[37].unit, uint32_t(BR::kUnitPercent));
    EXPECT_EQ(table[42].unit, uint32_t(BR::kUnitBoolean));
}

TEST(LFOIdentity, ValueStringsFlagsAndDisplay) {
    auto driver = BR::Test::MakeDriver("lfo");
    BrelCorvaneBase& lfo = driver->Module();
    for (int32_t first : {1, 18}) {
        EXPECT_EQ(Strings(lfo, first + 1), (std::vector<std::string>{"0.1", "1", "10", "100"}));
        EXPECT_EQ(Strings(lfo, first + 2),
                  (std::vector<std::string>{"Free", "Tempo", "Transport", "Quadrature", "Start/Stop",
                                            "Transport2"}));
        EXPECT_EQ(Strings(lfo, first + 3),
                  (std::vector<std::string>{"1/1", "1/2", "1/4", "1/8", "1/16", "1/32", "1/64", "1/128"}));
        EXPECT_EQ(Strings(lfo, first + 16), (std::vector<std::string>{"Add", "Multiply", "Combine"}));
        EXPECT_TRUE(Strings(lfo, first).empty());
    }
    EXPECT_EQ(Strings(lfo, 38), (std::vector<std::string>{"16", "8"}));
    EXPECT_EQ(Strings(lfo, 40), (std::vector<std::string>{"16", "8"}));
    EXPECT_TRUE(Strings(lfo, 0).empty());
    for (int32_t row = 0; row < 43; ++row)
        EXPECT_EQ(lfo.GetParameterFlags(row), row == 0 || row == 35 || row == 36 ? 0x200000u : 0u) << row;
    EXPECT_EQ(Display(lfo, 0, 0.0f), "Off");
    EXPECT_EQ(Display(lfo, 0, 3.0f), "<none>");
    EXPECT_EQ(Display(lfo, 35, 0.5f), "Off");
    EXPECT_EQ(Display(lfo, 36, -0.5f), "Off");
    EXPECT_EQ(Display(lfo, 36, 0.6f), "<none>");
    char text[32];
    lfo.GetParameterValueText(3, text);
    EXPECT_STREQ(text, "Free");
    lfo.GetParameterValueText(20, text);
    EXPECT_STREQ(text, "Free");
}
