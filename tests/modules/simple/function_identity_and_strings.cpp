// Function's names, its 13 rows in table order, the curve names, and "OSC Port Offset" reading "Off".
#include <gtest/gtest.h>

#include "modules/simple/Function.h"
#include "tests/support/Render.h"

namespace {
std::string Display(BrelCorvaneBase& module, int32_t row, float value) {
    BR::DisplayStringRequest request{row, &value, nullptr};
    if (module.GetProperty(BR::kPropertyDisplayString, &request) != BR::kNoErr) return "<none>";
    std::string text = request.text->Get();
    request.text->Release();
    return text;
}
}  // namespace

TEST(FunctionIdentity, NamesTableAndStrings) {
    auto driver = BR::Test::MakeDriver("Function");
    BrelCorvaneBase& fn = driver->Module();
    EXPECT_STREQ(fn.GetModuleName(), "Corvane Function");
    EXPECT_STREQ(fn.GetGuiScriptName(), "gui_function.lua");
    EXPECT_EQ(fn.NumPresets(), 1);
    EXPECT_STREQ(fn.Presets()[0].name, "Defaults");
    ASSERT_EQ(fn.NumTableParameters(), 13);
    const BR::ParameterDefinition* table = fn.ParameterTable();
    EXPECT_STREQ(table[0].name, "OSC Port Offset");
    const char* names[6] = {"Enable",       "Function",     "Input Scale",
                            "Input Offset", "Output Scale", "Output Offset"};
    const uint32_t units[6] = {BR::kUnitBoolean, BR::kUnitIndexed, BR::kUnitGeneric,
                               BR::kUnitGeneric, BR::kUnitGeneric, BR::kUnitGeneric};
    const float ranges[6][3] = {{0, 1, 0}, {0, 3, 0}, {-2, 2, 1}, {-1, 1, 0}, {-2, 2, 1}, {-1, 1, 0}};
    for (int c = 0; c < 2; ++c) {
        for (int k = 0; k < 6; ++k) {
            const BR::ParameterDefinition& row = table[1 + 6 * c + k];
            EXPECT_EQ(std::string(row.name), std::string(names[k]) + (c == 0 ? " L" : " R"));
            EXPECT_EQ(row.unit, units[k]) << row.name;
            EXPECT_EQ(row.minimum, ranges[k][0]) << row.name;
            EXPECT_EQ(row.maximum, ranges[k][1]) << row.name;
            EXPECT_EQ(row.defaultValue, ranges[k][2]) << row.name;
        }
    }
    for (int32_t row : {2, 8}) {
        BR::CountedTextList* list = nullptr;
        ASSERT_EQ(fn.GetParameterValueStrings(row, &list), BR::kNoErr);
        EXPECT_EQ(list->Get(), (std::vector<std::string>{"Linear", "Logarithm", "Exponential", "Absolute"}));
        list->Release();
    }
    BR::CountedTextList* none = nullptr;
    EXPECT_EQ(fn.GetParameterValueStrings(1, &none), BR::kErrInvalidParameter);
    for (int32_t row = 0; row < 13; ++row)
        EXPECT_EQ(fn.GetParameterFlags(row), row == 0 ? 0x200000u : 0u) << row;
    EXPECT_EQ(Display(fn, 0, 0.0f), "Off");
    EXPECT_EQ(Display(fn, 0, 0.5f), "<none>");
    EXPECT_EQ(Display(fn, 3, 0.0f), "<none>");
}
