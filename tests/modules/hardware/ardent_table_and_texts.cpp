// The Ardent Controller's identity, configuration, rows, value names, flags and "Off" texts.
#include <gtest/gtest.h>

#include "modules/hardware/ArdentController.h"
#include "tests/support/Render.h"

namespace {
std::vector<std::string> Names(BrelCorvaneBase& module, int32_t row) {
    BR::CountedTextList* list = nullptr;
    if (module.GetParameterValueStrings(row, &list) != BR::kNoErr || !list) return {};
    std::vector<std::string> names = list->Get();
    list->Release();
    return names;
}
std::string Text(BrelCorvaneBase& module, int32_t row, float value) {
    module.SetTableValue(row, value);
    char text[32];
    module.GetParameterValueText(row, text);
    return text;
}
}  // namespace

TEST(ArdentTable, IdentityAndConfiguration) {
    auto driver = BR::Test::MakeDriver("ardentcontroller");
    BrelCorvaneBase& m = driver->Module();
    EXPECT_STREQ(m.GetModuleName(), "Corvane Ardent Controller");
    EXPECT_STREQ(m.GetGuiScriptName(), "gui_ardentcontroller.lua");
    EXPECT_EQ(m.NumInputs(), 8);
    EXPECT_EQ(m.NumOutputs(), 2);
    EXPECT_EQ(m.NumSidechains(), 6);
    EXPECT_EQ(m.NumAuxOutputs(), 0);
    EXPECT_EQ(m.NumPresets(), 1);
    EXPECT_EQ(m.NumTableParameters(), 133);
    const BR::ParameterDefinition* t = m.ParameterTable();
    EXPECT_STREQ(t[5].name, "OSC Port Offset");
    EXPECT_STREQ(t[58].name, "Trigger 1/1 Length");
    EXPECT_STREQ(t[65].name, "Trigger 1/8 Length");
    EXPECT_STREQ(t[66].name, "Trigger 2/1 Length");
    EXPECT_STREQ(t[97].name, "Trigger 5/8 Length");
    EXPECT_STREQ(t[99].name, "Accent 1/2");
    EXPECT_STREQ(t[102].name, "Accent 1/8");
    EXPECT_STREQ(t[118].name, "Accent 5/8");
    EXPECT_STREQ(t[127].name, "Interface Category");
    EXPECT_STREQ(t[132].name, "Delay Stop Slice");
    EXPECT_EQ(t[31].defaultValue, 248.0f);
    EXPECT_EQ(t[7].defaultValue, 1.0f);
    EXPECT_EQ(t[14].defaultValue, 0.0f);
    EXPECT_EQ(t[10].defaultValue, 3.0f);
    EXPECT_EQ(t[17].defaultValue, 4.0f);
    EXPECT_EQ(t[45].defaultValue, 1.0f);
    EXPECT_EQ(t[56].minimum, -100.0f);
    EXPECT_EQ(t[8].unit, uint32_t(BR::kUnitMIDINote));
    EXPECT_EQ(t[39].unit, uint32_t(BR::kUnitPercent));
    EXPECT_EQ(t[35].unit, uint32_t(BR::kUnitBoolean));
}

TEST(ArdentTable, ValueNames) {
    auto driver = BR::Test::MakeDriver("ardentcontroller");
    BrelCorvaneBase& m = driver->Module();
    const auto gateOutputs = Names(m, 10);
    ASSERT_EQ(gateOutputs.size(), 46u);
    EXPECT_EQ(gateOutputs[0], "Off");
    EXPECT_EQ(gateOutputs[5], "Output 5");
    EXPECT_EQ(gateOutputs[6], "Gates 1/1");
    EXPECT_EQ(gateOutputs[45], "Gates 5/8");
    EXPECT_EQ(Names(m, 17), gateOutputs);
    EXPECT_EQ(Names(m, 11).size(), 6u);
    EXPECT_EQ(Names(m, 12), (std::vector<std::string>{"Newest", "Lowest", "Highest"}));
    EXPECT_EQ(Names(m, 20), (std::vector<std::string>{"Retrig On", "Retrig Off"}));
    const auto outChannel = Names(m, 36);
    ASSERT_EQ(outChannel.size(), 18u);
    EXPECT_EQ(outChannel[1], "1");
    EXPECT_EQ(outChannel[17], "Omni");
    const auto midiOut = Names(m, 37);
    ASSERT_EQ(midiOut.size(), 40u);
    EXPECT_EQ(midiOut[0], "Gates 1/1");
    EXPECT_EQ(midiOut[39], "Gates 5/8");
    EXPECT_EQ(Names(m, 40), (std::vector<std::string>{"16", "8"}));
    EXPECT_EQ(Names(m, 45), (std::vector<std::string>{"Off", "1/2", "3/4", "5/6", "7/8"}));
    EXPECT_EQ(Names(m, 46).size(), 9u);
    EXPECT_EQ(Names(m, 55), (std::vector<std::string>{"Unipolar", "Bipolar"}));
    EXPECT_EQ(Names(m, 98).size(), 17u);
    const auto toGate = Names(m, 126);
    ASSERT_EQ(toGate.size(), 41u);
    EXPECT_EQ(toGate[40], "Gates 5/8");
    EXPECT_EQ(Names(m, 127), (std::vector<std::string>{"Cat A", "Cat B"}));
    EXPECT_EQ(Names(m, 128), (std::vector<std::string>{"Off", "2", "3", "4", "5", "6", "7", "8"}));
    // Rows without names are an invalid-parameter error.
    BR::CountedTextList* list = nullptr;
    EXPECT_EQ(m.GetParameterValueStrings(0, &list), BR::kErrInvalidParameter);
    EXPECT_EQ(m.GetParameterValueStrings(41, &list), BR::kErrInvalidParameter);
    EXPECT_EQ(m.GetParameterValueStrings(133, &list), BR::kErrInvalidParameter);
}

TEST(ArdentTable, FlagsAndOffTexts) {
    auto driver = BR::Test::MakeDriver("ardentcontroller");
    BrelCorvaneBase& m = driver->Module();
    std::vector<int32_t> flagged = {5, 6, 7, 14, 21, 23, 25, 27, 29};
    for (int32_t k = 58; k <= 97; ++k)
        flagged.push_back(k);
    for (int32_t k = 0; k < 133; ++k) {
        const bool expected = std::find(flagged.begin(), flagged.end(), k) != flagged.end();
        EXPECT_EQ(m.GetParameterFlags(k), expected ? 0x200000u : 0u) << k;
    }
    EXPECT_EQ(Text(m, 5, 0), "Off");
    EXPECT_EQ(Text(m, 6, 0), "Off");
    EXPECT_EQ(Text(m, 6, 3), "3");
    EXPECT_EQ(Text(m, 14, 0), "Off");
    EXPECT_EQ(Text(m, 21, 0), "Off");
    EXPECT_EQ(Text(m, 58, 0), "Off");
    EXPECT_NE(Text(m, 58, 5), "Off");
    EXPECT_NE(Text(m, 22, 0), "Off");  // a base note is not flagged
}
