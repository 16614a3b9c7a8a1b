// Without a user "midi.lua" the default scale list runs and reaches the module's AddScale with
// one 16-bit mask per scale; addScale with no degrees gives an empty mask.
#include <gtest/gtest.h>

#include <utility>

#include "RemoteRig.h"
#include "ScaleModule.h"
#include "tests/support/RunCommand.h"
#include "tests/support/ScopedEnvironment.h"

using namespace BR::Test;

TEST(LuaScales, DefaultScriptAddsTheTwelveScales) {
    ScopedEnvironment environment;
    const std::string data = MakeTempFolder();
    environment.Set("XDG_DATA_HOME", data.c_str());
    BR::SetOSCBasePortOverride(17350);
    BR::InstallRemoteServices();
    ScaleModule module;
    const std::vector<std::pair<std::string, uint32_t>> expected = {
        {"Major", 0xAB5},   {"Harmonic Minor", 0x9AD}, {"Melodic Minor ^", 0xAAD}, {"Melodic Minor v", 0x5AD},
        {"Dorian", 0x6AD},  {"Phrygian", 0x5AB},       {"Lydian", 0xAD5},          {"Mixolydian", 0x6B5},
        {"Locrian", 0x56B}, {"Pentatonic Maj", 0x295}, {"Pentatonic Min", 0x4A9},  {"Octaves", 0x001},
    };
    EXPECT_EQ(module.scales, expected);
    EXPECT_EQ(std::string(BR::kDefaultMidiScript)
                  .rfind("-- set up scales\naddScale( \"Major\", { 1, 3, 5, 6, 8, 10, 12 } )\n", 0),
              0u);
}

TEST(LuaScales, EmptyDegreeTableMakesAnEmptyMask) {
    ScopedEnvironment environment;
    const std::string data = MakeTempFolder();
    environment.Set("XDG_DATA_HOME", data.c_str());
    BR::InstallRemoteServices();
    ScaleModule module;
    module.scales.clear();
    lua_State* L = BR::LuaHelperOf(module)->GetLuaState();
    ASSERT_EQ(luaL_dostring(L,
                            "addScale('x', {}) addScale('top', { 16, 12 }) addScale('wide', { 17, 1 }) "
                            "addScale('wrapped', { 33 })"),
              0);
    const std::vector<std::pair<std::string, uint32_t>> expected = {
        {"x", 0}, {"top", 0x8800}, {"wide", 0x1}, {"wrapped", 0x1}};
    EXPECT_EQ(module.scales, expected);
}
