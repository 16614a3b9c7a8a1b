// Names, configuration, parameter rows, value strings, flags and "Off" texts of the Follower.
#include <gtest/gtest.h>

#include "FollowerSignals.h"
#include "framework/PropertyData.h"

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
}  // namespace

TEST(FollowerIdentity, NamesConfigAndTable) {
    auto driver = BR::Test::MakeDriver("follower");
    BrelCorvaneBase& f = driver->Module();
    EXPECT_STREQ(f.GetModuleName(), "Corvane Follower");
    EXPECT_STREQ(f.GetGuiScriptName(), "gui_follower.lua");
    EXPECT_EQ(f.NumInputs(), 2);
    EXPECT_EQ(f.NumOutputs(), 2);
    EXPECT_EQ(f.NumSidechains(), 0);
    EXPECT_EQ(f.NumPresets(), 1);
    ASSERT_EQ(f.NumTableParameters(), 21);
    const char* names[21] = {"Input Source",   "Lowpass Cutoff",  "Highpass Cutoff", "Env Gain",
                             "Env Attack",     "Env Release",     "Env Gate",        "Output Pitch L",
                             "Output Pitch R", "Output Env L",    "Output Env R",    "Smoothing L",
                             "Smoothing R",    "OSC Port Offset", "Pitch Mode",      "Volts Per Octave",
                             "Hz Per Volt",    "V Scale Mode",    "Manual V Scale",  "Zero V Coarse",
                             "Zero V Fine"};
    const float minimum[21] = {0,    10,   10, 0, 1,    1,  0, -1, -1, -1, -1,
                               -500, -500, 0,  0, 0.5f, 10, 0, 1,  0,  -50};
    const float maximum[21] = {2,   1000, 1000, 48, 1000, 1000,  1, 1,  1,   1, 1,
                               500, 500,  100,  2,  4,    10000, 2, 15, 127, 50};
    const float defaults[21] = {0, 800, 100, 12, 50, 50, 0, 1, 0, 0, 1, 0, 0, 0, 0, 1, 1000, 0, 10, 48, 0};
    for (int i = 0; i < 21; ++i) {
        const BR::ParameterDefinition& row = f.ParameterTable()[i];
        EXPECT_STREQ(row.name, names[i]) << i;
        EXPECT_EQ(row.minimum, minimum[i]) << i;
        EXPECT_EQ(row.maximum, maximum[i]) << i;
        EXPECT_EQ(row.defaultValue, defaults[i]) << i;
        EXPECT_EQ(f.GetParameterFlags(i), i >= 11 && i <= 13 ? 0x200000u : 0u) << i;
    }
}

TEST(FollowerIdentity, ValueStringsAndOffTexts) {
    auto driver = BR::Test::MakeDriver("follower");
    BrelCorvaneBase& f = driver->Module();
    EXPECT_EQ(Strings(f, 0), (std::vector<std::string>{"L+R", "Left", "Right"}));
    EXPECT_EQ(Strings(f, 14), (std::vector<std::string>{"V/Octave", "Hz/V", "Calibrated"}));
    EXPECT_EQ(Strings(f, 17), (std::vector<std::string>{"Manual", "Ardent", "Cinder"}));
    EXPECT_TRUE(Strings(f, 1).empty());
    EXPECT_EQ(Display(f, 13, 0.0f), "Off");
    EXPECT_NE(Display(f, 13, 3.0f), "Off");
    EXPECT_EQ(Display(f, 11, 0.5f), "Off");
    EXPECT_EQ(Display(f, 12, -0.5f), "Off");
    EXPECT_NE(Display(f, 12, -0.6f), "Off");
}
