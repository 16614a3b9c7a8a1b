// /startNote and /stopNote scale the velocity in double precision and truncate it; a float whose
// product lies beyond a 32-bit integer is held at the end of the range, and NaN gives 0.
#include <gtest/gtest.h>

#include <limits>

#include "RemoteRig.h"

using namespace BR::Test;

namespace {
std::string LuaText(BR::HostDriver& driver, const char* global) {
    lua_State* L = BR::LuaHelperOf(driver.Module())->GetLuaState();
    std::lock_guard<std::recursive_mutex> guard(BR::LuaHelperOf(driver.Module())->LuaLock());
    lua_getglobal(L, global);
    const std::string text = lua_tostring(L, -1) ? lua_tostring(L, -1) : "";
    lua_pop(L, 1);
    return text;
}
}  // namespace

TEST(OSCMessages, NoteVelocityBeyondAnIntegerIsHeldAtTheEndOfTheRange) {
    auto driver = MakeRemoteDriver("dc", 7322, 1);
    ASSERT_TRUE(WaitListening(*driver, 7323));
    ASSERT_EQ(RunLua(*driver,
                     "log = ''\n"
                     "requestAllNoteOn(function(c, n, v) log = log .. 'on ' .. v .. ';' end)\n"
                     "requestAllNoteOff(function(c, n, v) log = log .. 'off ' .. v .. ';' end)\n"),
              "");
    UdpPeer client;
    client.Send(7323, "/startNote", [](osc::OutboundPacketStream& s) { s << osc::int32(60) << 1e30f; });
    client.Send(7323, "/stopNote", [](osc::OutboundPacketStream& s) { s << osc::int32(60) << -1e30f; });
    client.Send(7323, "/startNote", [](osc::OutboundPacketStream& s) {
        s << osc::int32(61) << std::numeric_limits<float>::quiet_NaN();
    });
    client.Send(7323, "/stopNote", [](osc::OutboundPacketStream& s) {
        s << osc::int32(61) << std::numeric_limits<float>::infinity();
    });
    client.Send(7323, "/ping", [&](osc::OutboundPacketStream& s) { s << client.Client().c_str() << "/p"; });
    ASSERT_NE(client.Receive(), "");
    EXPECT_EQ(LuaText(*driver, "log"), "on 2147483647;off -2147483648;on 0;off 2147483647;");
}
