// /exec and /call run global Lua functions with converted arguments; /call answers with the
// results up to the first nil; Lua-registered addresses set parameters or call functions.
#include <gtest/gtest.h>

#include "RemoteRig.h"

using namespace BR::Test;

TEST(OSCLua, CallRepliesWithResultsUpToTheFirstNil) {
    auto driver = MakeRemoteDriver("dc", 17200, 1);
    ASSERT_TRUE(WaitListening(*driver, 17201));
    ASSERT_EQ(RunLua(*driver,
                     "function three(a, b, c) return a + 1, b .. '!', c end\n"
                     "function none() return nil, 5 end\n"
                     "function numeric() return '2.5', 'x' end\n"
                     "function bad() return {} end\n"
                     "function remember(...) got = select('#', ...) ; first = ... end\n"),
              "");
    UdpPeer client;
    client.Send(17201, "/call", [&](osc::OutboundPacketStream& s) {
        s << "three" << client.Client().c_str() << "/r" << osc::int32(4) << "hey" << osc::OscNil;
    });
    EXPECT_EQ(client.Receive(), "/r f:5 s:hey!");
    client.Send(17201, "/call",
                [&](osc::OutboundPacketStream& s) { s << "none" << client.Client().c_str() << "/empty"; });
    EXPECT_EQ(client.Receive(), "/empty");
    client.Send(17201, "/call",
                [&](osc::OutboundPacketStream& s) { s << "numeric" << client.Client().c_str() << "/n"; });
    EXPECT_EQ(client.Receive(), "/n f:2.5 s:x");
    testing::internal::CaptureStdout();
    client.Send(17201, "/call",
                [&](osc::OutboundPacketStream& s) { s << "bad" << client.Client().c_str() << "/b"; });
    client.Send(17201, "/exec", [&](osc::OutboundPacketStream& s) { s << "nosuchfunction"; });
    client.Send(17201, "/exec", [&](osc::OutboundPacketStream& s) { s << "remember" << osc::Blob("ab", 2); });
    client.Send(17201, "/exec", [&](osc::OutboundPacketStream& s) {
        s << "remember" << 1.5f << osc::int64(7) << 2.5 << false << osc::OscNil << "s";
    });
    client.Send(17201, "/ping", [&](osc::OutboundPacketStream& s) { s << client.Client().c_str() << "/p"; });
    ASSERT_NE(client.Receive(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "error while parsing message: /call: unhandled argument type return from call\n"
              "error while parsing message: /exec: failed to exec function\n"
              "error while parsing message: /exec: unhandled argument type to exec\n");
    EXPECT_EQ(LuaNumber(*driver, "got"), 6);
    EXPECT_EQ(LuaNumber(*driver, "first"), 1.5);
}

TEST(OSCLua, RegisteredPathsSetParametersAndCallFunctions) {
    auto driver = MakeRemoteDriver("dc", 17210, 1);
    ASSERT_TRUE(WaitListening(*driver, 17211));
    ASSERT_EQ(
        RunLua(
            *driver,
            "registerOSCPathForParameter('/level', 'Output Positive L')\n"
            "registerOSCPathForParameter('/pair', { 1, 'Multiplier L' })\n"
            "registerOSCPathForParameterNormalized('/sym', 'Output Symmetric R')\n"
            "registerOSCPathForFunction('/f', function(a, b) calls = (calls or 0) + 1; fa = a; fb = b end)\n"
            "registerOSCPathForFunction('/f', function() calls = calls + 10 end)\n"),
        "");
    testing::internal::CaptureStdout();
    EXPECT_EQ(RunLua(*driver, "registerOSCPathForParameter('/pair', 3)"), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "@@@ inconsistent sizes in RegisterOSCPathForParameter\n");
    EXPECT_EQ(RunLua(*driver, "registerOSCPathForFunction('/g', 3)"),
              "second argument to registerOSCPathForFunction is not a function");
    EXPECT_EQ(RunLua(*driver, "registerOSCPathForParameter('/x', 'No Such Row')"),
              "parameter not found: 'No Such Row'");

    UdpPeer client;
    client.Send(17211, "/level", [](osc::OutboundPacketStream& s) { s << 0.75f; });
    client.Send(17211, "/pair", [](osc::OutboundPacketStream& s) { s << -0.5f << 1.5f; });
    client.Send(17211, "/sym", [](osc::OutboundPacketStream& s) { s << 0.25f; });
    client.Send(17211, "/f", [](osc::OutboundPacketStream& s) { s << osc::int32(3) << "b"; });
    client.Send(17211, "/ping", [&](osc::OutboundPacketStream& s) { s << client.Client().c_str() << "/p"; });
    ASSERT_NE(client.Receive(), "");
    BrelCorvaneBase& m = driver->Module();
    EXPECT_EQ(m.GetTableValue(0), 0.75f);
    EXPECT_EQ(m.GetTableValue(1), -0.5f);
    EXPECT_EQ(m.GetTableValue(2), 1.5f);
    EXPECT_EQ(m.GetTableValue(6), -0.5f);  // 0.25 of -1 to 1
    EXPECT_EQ(LuaNumber(*driver, "calls"), 11);
    EXPECT_EQ(LuaNumber(*driver, "fa"), 3);

    // A failing function ends the entries of its address with the text, and the next packet is served.
    ASSERT_EQ(RunLua(*driver,
                     "registerOSCPathForFunction('/boom', function() error('no') end)\n"
                     "registerOSCPathForFunction('/boom', function() after = 1 end)\n"),
              "");
    testing::internal::CaptureStdout();
    client.Send(17211, "/boom", [](osc::OutboundPacketStream& s) { s << 1.0f; });
    client.Send(17211, "/level", [](osc::OutboundPacketStream& s) { s << "x"; });
    client.Send(17211, "/ping", [&](osc::OutboundPacketStream& s) { s << client.Client().c_str() << "/p"; });
    ASSERT_NE(client.Receive(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "error while parsing message: /boom: failed to pcall function\n"
              "error while parsing message: /level: wrong argument type\n");
    EXPECT_EQ(LuaNumber(*driver, "after"), 0);
}
