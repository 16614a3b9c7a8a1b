// sendOSC sends a bundle of one message from the script's thread: numbers as floats unless the
// format says "i", other strings as strings, nil as nil; /startNote and /stopNote reach the note
// callbacks on channel 2 (the hooks' channel 1) with the velocity scaled to 127 and truncated.
#include <gtest/gtest.h>

#include "RemoteRig.h"

using namespace BR::Test;

TEST(LuaSendOSC, ArgumentsFollowTheFormatAndTheirLuaTypes) {
    auto driver = MakeRemoteDriver("dc", 17500);
    UdpPeer peer;
    const std::string to = "'osc.udp://127.0.0.1:" + std::to_string(peer.Port()) + "'";
    ASSERT_EQ(RunLua(*driver, "sendOSC(" + to + ", '/four', 'ifxs', { 1, 2.5, '3', 'word' })"), "");
    EXPECT_EQ(peer.Receive(), "/four i:1 f:2.5 f:3 s:word");
    ASSERT_EQ(RunLua(*driver, "sendOSC(" + to + ", '/plain', { 7, nil, 'x' })"), "");
    EXPECT_EQ(peer.Receive(), "/plain f:7 N s:x");  // a constructor's nil keeps its place: the nil tag
    ASSERT_EQ(RunLua(*driver, "sendOSC(" + to + ", '/empty')"), "");
    EXPECT_EQ(peer.Receive(), "/empty");
    EXPECT_EQ(RunLua(*driver, "sendOSC(" + to + ", '/bad', 'ii', { 1 })"),
              "format string length mismatch in sendOSC");
    EXPECT_EQ(RunLua(*driver, "sendOSC(" + to + ", '/bad', { {} })"),
              "unhandled argument type return from call");
    EXPECT_EQ(peer.Receive(200), "");
}

TEST(LuaSendOSC, StartNoteAndStopNoteReachTheCallbacksOnChannelTwo) {
    auto driver = MakeRemoteDriver("dc", 17510, 1);
    ASSERT_TRUE(WaitListening(*driver, 17511));
    ASSERT_EQ(
        RunLua(
            *driver,
            "log = ''\n"
            "requestAllNoteOn(function(c, n, v) log = log .. 'on ' .. c .. ' ' .. n .. ' ' .. v .. ';' end)\n"
            "requestAllNoteOff(function(c, n, v) log = log .. 'off ' .. c .. ' ' .. n .. ' ' .. v .. ';' "
            "end)\n"),
        "");
    UdpPeer client;
    client.Send(17511, "/startNote", [](osc::OutboundPacketStream& s) { s << osc::int32(64) << 0.5f; });
    client.Send(17511, "/stopNote", [](osc::OutboundPacketStream& s) { s << osc::int32(64) << 1.0f; });
    // 1/127 as a float times 127.0 in double precision truncates to 0; a float product would give 1.
    client.Send(17511, "/stopNote",
                [](osc::OutboundPacketStream& s) { s << osc::int32(65) << 1.0f / 127.0f; });
    client.Send(17511, "/ping", [&](osc::OutboundPacketStream& s) { s << client.Client().c_str() << "/p"; });
    ASSERT_NE(client.Receive(), "");
    lua_State* L = BR::LuaHelperOf(driver->Module())->GetLuaState();
    std::lock_guard<std::recursive_mutex> guard(BR::LuaHelperOf(driver->Module())->LuaLock());
    lua_getglobal(L, "log");
    EXPECT_STREQ(lua_tostring(L, -1), "on 2 64 63;off 2 64 127;off 2 65 0;");
    lua_pop(L, 1);
}
