// DC's names, flags and display strings: rows 10 to 12 carry the display flag; "OSC Port Offset"
// reads "Off" at exactly 0, "Smoothing" rows inside -0.5..0.5 inclusive.
#include <gtest/gtest.h>

#include "modules/simple/DC.h"
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

TEST(DCIdentity, NamesFlagsAndDisplayStrings) {
    auto driver = BR::Test::MakeDriver("dc");
    BrelCorvaneBase& dc = driver->Module();
    EXPECT_STREQ(dc.GetModuleName(), "Corvane DC");
    EXPECT_STREQ(dc.GetGuiScriptName(), "gui_dc.lua");
    EXPECT_STREQ(dc.ShortName(), "CRDC");
    EXPECT_EQ(dc.NumTableParameters(), 13);
    EXPECT_EQ(dc.GetNumberOfParameters(), 14);
    for (int32_t row = 0; row < 13; ++row)
        EXPECT_EQ(dc.GetParameterFlags(row), row >= 10 ? 0x200000u : 0u) << row;
    EXPECT_EQ(Display(dc, 10, 0.0f), "Off");
    EXPECT_EQ(Display(dc, 10, 1.0f), "<none>");
    EXPECT_EQ(Display(dc, 11, 0.5f), "Off");
    EXPECT_EQ(Display(dc, 12, -0.5f), "Off");
    EXPECT_EQ(Display(dc, 12, 0.51f), "<none>");
    EXPECT_EQ(Display(dc, 0, 0.0f), "<none>");
    BR::CountedTextList* list = nullptr;
    EXPECT_EQ(dc.GetParameterValueStrings(10, &list), -10878);
    // The instance's OSC port offset sits at table row 10.
    driver->SetParameterByName("OSC Port Offset", 17.0f);
    int32_t offset = 0;
    dc.GetProperty(BR::kPropertyOSCPortOffset, &offset);
    EXPECT_EQ(offset, 17);
}
