// MIDI reaches script callbacks on the render path: a note-on of velocity 0 is a note-off, the
// "all" list runs before the keyed one, NRPNs are recognised from controllers 98/99 and 6/38.
#include <gtest/gtest.h>

#include "RemoteRig.h"

using namespace BR::Test;

namespace {
std::string Log(BR::HostDriver& driver) {
    lua_State* L = BR::LuaHelperOf(driver.Module())->GetLuaState();
    lua_getglobal(L, "log");
    std::string text = lua_isstring(L, -1) ? lua_tostring(L, -1) : "";
    lua_pop(L, 1);
    return text;
}
void Render(BR::HostDriver& driver, std::vector<MidiAt> midi) {
    RenderFrames(driver, 256, 256, {}, midi);
}
}  // namespace

TEST(LuaMIDI, NoteOnWithVelocityZeroReachesNoteOffCallbacks) {
    auto driver = MakeRemoteDriver("dc", 17300);
    ASSERT_EQ(
        RunLua(
            *driver,
            "log = ''\n"
            "requestAllNoteOn(function(c, n, v) log = log .. 'on ' .. c .. ' ' .. n .. ' ' .. v .. ';' end)\n"
            "requestAllNoteOff(function(c, n, v) log = log .. 'off ' .. c .. ' ' .. n .. ' ' .. v .. ';' "
            "end)\n"
            "requestNoteOff(60, function(c, n, v) log = log .. 'key ' .. n .. ' ' .. v .. ';' end)\n"),
        "");
    Render(*driver, {{10, {0x92, 60, 0}}, {20, {0x90, 61, 100}}});
    EXPECT_EQ(Log(*driver), "off 3 60 0;key 60 0;on 1 61 100;");
}

TEST(LuaMIDI, DataEntryWithoutParameterNumberIsNrpnZero) {
    auto driver = MakeRemoteDriver("dc", 17300);
    ASSERT_EQ(RunLua(*driver,
                     "log = ''\n"
                     "requestAllNRPN(function(c, n, v) log = log .. 'nrpn ' .. n .. '=' .. v .. ';' end)\n"
                     "requestNRPN(0, function(c, n, v) log = log .. 'zero;' end)\n"
                     "requestAllCC(function(c, n, v) log = log .. 'cc ' .. n .. ';' end)\n"),
              "");
    Render(*driver, {{0, {0xB0, 6, 5}}});
    EXPECT_EQ(Log(*driver), "nrpn 0=640;zero;cc 6;");
    // A 14-bit change of NRPN 129 gives two NRPN calls, with the combination as it stands.
    RunLua(*driver, "log = ''");
    Render(*driver, {{0, {0xB0, 99, 1}}, {1, {0xB0, 98, 1}}, {2, {0xB0, 6, 2}}, {3, {0xB0, 38, 3}}});
    EXPECT_EQ(Log(*driver), "cc 99;cc 98;nrpn 129=256;cc 6;nrpn 129=259;cc 38;");
}

TEST(LuaMIDI, OtherEventsAndCallbacksAddedDuringDispatch) {
    auto driver = MakeRemoteDriver("dc", 17300);
    ASSERT_EQ(
        RunLua(
            *driver,
            "log = ''\n"
            "requestPitchWheel(function(c, v) log = log .. 'pw ' .. v .. ';' end)\n"
            "requestChannelPressure(function(c, p) log = log .. 'cp ' .. p .. ';' end)\n"
            "requestProgramChange(5, function(c, p) log = log .. 'pc ' .. p .. ';' end)\n"
            "requestAllPolyPressure(function(c, n, p) log = log .. 'pp ' .. n .. ' ' .. p .. ';' end)\n"
            "requestAllNoteOn(function() log = log .. 'a;'\n"
            "  if not added then added = true; requestAllNoteOn(function() log = log .. 'b;' end) end end)\n"
            "requestAllCC(function() error('boom') end)\n"
            "requestAllCC(function(c, n, v) log = log .. 'cc ' .. v .. ';' end)\n"),
        "");
    Render(*driver, {{0, {0xE0, 1, 2}},
                     {1, {0xD0, 9}},
                     {2, {0xC0, 5}},
                     {3, {0xA0, 60, 7}},
                     {4, {0x90, 1, 1}},
                     {5, {0xB0, 7, 33}}});
    EXPECT_EQ(Log(*driver), "pw 257;cp 9;pc 5;pp 60 7;a;b;cc 33;");
    EXPECT_EQ(RunLua(*driver, "requestAllNoteOn(3)"),
              "first argument to requestAllNoteOn() is not a function");
    EXPECT_EQ(RunLua(*driver, "requestCC(7)"), "second argument to requestCC() is not a function");
    EXPECT_EQ(RunLua(*driver, "requestPitchWheel()"),
              "first argument to requestPitchWheel() is not a function");
}
