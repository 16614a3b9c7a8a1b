// The Basalt Controller's identity, configuration, rows, value names, flags and "Off" texts.
#include <gtest/gtest.h>

#include "tests/support/Render.h"

namespace {
std::vector<std::string> Names(BrelCorvaneBase& module, int32_t row) {
    BR::CountedTextList* list = nullptr;
    if (module.GetParameterValueStrings(row, &list) != BR::kNoErr || !list) return {};
    std::vector<std::string> names = list->Get();
    list->Release();
    return names;
}
}  // namespace

TEST(BasaltTable, IdentityConfigurationAndNames) {
    auto driver = BR::Test::MakeDriver("basaltcontroller");
    BrelCorvaneBase& m = driver->Module();
    EXPECT_STREQ(m.GetModuleName(), "Corvane Basalt Controller");
    EXPECT_STREQ(m.GetGuiScriptName(), "gui_basaltcontroller.lua");
    EXPECT_EQ(m.NumInputs(), 8);
    EXPECT_EQ(m.NumOutputs(), 2);
    EXPECT_EQ(m.NumSidechains(), 6);
    EXPECT_EQ(m.NumTableParameters(), 119);
    const BR::ParameterDefinition* t = m.ParameterTable();
    EXPECT_STREQ(t[7].name, "Test Signal");
    EXPECT_EQ(t[7].maximum, 4.0f);
    EXPECT_STREQ(t[18].name, "Gates 6 MIDI Channel");
    EXPECT_STREQ(t[32].name, "Trigger 1/1 Length");
    EXPECT_STREQ(t[79].name, "Trigger 6/8 Length");
    EXPECT_STREQ(t[104].name, "Accent 6/8");
    EXPECT_STREQ(t[113].name, "Interface Category");
    EXPECT_STREQ(t[118].name, "Delay Stop Slice");
    const auto midiOut = Names(m, 26);
    ASSERT_EQ(midiOut.size(), 48u);
    EXPECT_EQ(midiOut[47], "Gates 6/8");
    const auto toGate = Names(m, 105);
    ASSERT_EQ(toGate.size(), 41u);
    EXPECT_EQ(toGate[40], "Gates 5/8");
    EXPECT_EQ(Names(m, 25).size(), 18u);
    EXPECT_EQ(Names(m, 30), (std::vector<std::string>{"Off", "1/2", "3/4", "5/6", "7/8"}));
    EXPECT_EQ(Names(m, 113), (std::vector<std::string>{"Cat A", "Cat B"}));
    EXPECT_EQ(Names(m, 114).size(), 8u);
    BR::CountedTextList* list = nullptr;
    EXPECT_EQ(m.GetParameterValueStrings(0, &list), BR::kErrInvalidParameter);

    std::vector<int32_t> flagged = {6, 7, 8, 10, 12, 14, 16, 18};
    for (int32_t k = 32; k <= 79; ++k)
        flagged.push_back(k);
    for (int32_t k = 0; k < 119; ++k) {
        const bool expected = std::find(flagged.begin(), flagged.end(), k) != flagged.end();
        EXPECT_EQ(m.GetParameterFlags(k), expected ? 0x200000u : 0u) << k;
    }
    char text[32];
    m.SetTableValue(18, 0.0f);
    m.GetParameterValueText(18, text);
    EXPECT_STREQ(text, "Off");
    m.SetTableValue(79, 0.0f);
    m.GetParameterValueText(79, text);
    EXPECT_STREQ(text, "Off");
}
