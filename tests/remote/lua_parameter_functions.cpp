// Parameters by number or name: the range error carries the number, a numeric string is a number,
// unknown names fail, and the *Others* functions reach instances by their port offset.
#include <gtest/gtest.h>

#include "RemoteRig.h"

using namespace BR::Test;

TEST(LuaParameters, GetParameterOutOfRangeRaisesWithTheNumber) {
    auto driver = MakeRemoteDriver("dc", 17310);
    const int32_t count = driver->Module().NumTableParameters();
    EXPECT_EQ(RunLua(*driver, "getParameter(-1)"), "parameter out of range: -1");
    EXPECT_EQ(RunLua(*driver, "getParameter(getNumParameters())"),
              "parameter out of range: " + std::to_string(count));
    EXPECT_EQ(RunLua(*driver, "getParameter('Nope')"), "parameter not found: 'Nope'");
    EXPECT_NE(RunLua(*driver, "getParameter({})").find("string expected"), std::string::npos);
    // setParameter has no range error; a bad id changes nothing.
    EXPECT_EQ(RunLua(*driver, "setParameter(-1, 0.5); setParameter(999, 0.5)"), "");
}

TEST(LuaParameters, NumericStringIsANumber) {
    auto driver = MakeRemoteDriver("dc", 17310);
    driver->Module().SetTableValue(3, 0.75f);
    ASSERT_EQ(RunLua(*driver,
                     "a = getParameter('3')\n"
                     "b = getParameter('Input Add L')\n"
                     "setParameter('Output Positive L', 0.5)\n"
                     "id = getParameterID('Multiplier L')\n"
                     "lo, hi = getParameterMinMax(2)\n"
                     "unit = getParameterUnit('Smoothing L')\n"
                     "name = getParameterName(0)\n"
                     "used = isParameterUsed(0) and 1 or 0\n"),
              "");
    EXPECT_EQ(LuaNumber(*driver, "a"), 0.75);
    EXPECT_EQ(LuaNumber(*driver, "b"), 0.75);
    EXPECT_EQ(driver->Module().GetTableValue(0), 0.5f);
    EXPECT_EQ(LuaNumber(*driver, "id"), 2);
    EXPECT_EQ(LuaNumber(*driver, "lo"), -2);
    EXPECT_EQ(LuaNumber(*driver, "hi"), 2);
    EXPECT_EQ(LuaNumber(*driver, "unit"), 24);
    EXPECT_EQ(LuaNumber(*driver, "used"), 1);
    EXPECT_EQ(RunLua(*driver, "assert(name == 'Output Positive L')"), "");
    EXPECT_EQ(RunLua(*driver, "assert(version == 20601 and isWin and not isMac and majorVersion == 2)"), "");
}

TEST(LuaParameters, OthersByAnOffsetNobodyHasDoNothing) {
    auto driver = MakeRemoteDriver("dc", 17320, 4);
    auto other = MakeRemoteDriver("dc", 17320, 6);
    ASSERT_EQ(RunLua(*driver,
                     "setOthersParameter(9, 'Output Positive L', 0.5)\n"
                     "none = getOthersParameter(9, 'Output Positive L')\n"
                     "setOthersParameter(6, 'Output Positive L', 0.25)\n"
                     "some = getOthersParameter(6, 0)\n"
                     "setOthersGUIBoolValue(6, 2, true)\n"
                     "flag = getOthersGUIBoolValue(6, 2) and 1 or 0\n"
                     "noflag = getOthersGUIBoolValue(9, 2) and 1 or 0\n"),
              "");
    EXPECT_EQ(LuaNumber(*driver, "none"), 0);
    EXPECT_EQ(driver->Module().GetTableValue(0), 0.0f);
    EXPECT_EQ(other->Module().GetTableValue(0), 0.25f);
    EXPECT_EQ(LuaNumber(*driver, "some"), 0.25);
    EXPECT_EQ(LuaNumber(*driver, "flag"), 1);
    EXPECT_EQ(LuaNumber(*driver, "noflag"), 0);
    EXPECT_TRUE(other->Module().GetStatusBlock()->GUIBoolValues[2]);
}

TEST(LuaParameters, IndicatorEightIsOutOfRangeSevenIsValid) {
    auto driver = MakeRemoteDriver("dc", 17330);
    EXPECT_EQ(RunLua(*driver, "setGUIBoolValue(8, true)"), "indicator id out of range: 8");
    EXPECT_EQ(RunLua(*driver, "getGUIBoolValue(-1)"), "indicator id out of range: -1");
    EXPECT_EQ(RunLua(*driver, "setGUIBoolValue(7, 1); seven = getGUIBoolValue(7) and 1 or 0"), "");
    EXPECT_TRUE(driver->Module().GetStatusBlock()->GUIBoolValues[7]);
    EXPECT_EQ(LuaNumber(*driver, "seven"), 1);
    EXPECT_EQ(RunLua(*driver, "setGUIBoolValue(7, false)"), "");
    EXPECT_FALSE(driver->Module().GetStatusBlock()->GUIBoolValues[7]);
}
