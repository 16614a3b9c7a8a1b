// /exec, /call and Lua-registered function paths take as many arguments as a packet carries (thousands
// of one-byte "F" tags): the Lua stack grows for them instead of being written past its end (the fuzzer
// crashed the host with a /call of 90 false arguments), and /call still answers with its first results.
#include <gtest/gtest.h>

#include "RemoteRig.h"

using namespace BR::Test;

namespace {

constexpr int kArguments = 3000;

void Falses(osc::OutboundPacketStream& s) {
    for (int i = 0; i < kArguments; ++i)
        s << false;
}

}  // namespace

TEST(OSCLua, ExecCallAndFunctionPathsTakeThousandsOfArguments) {
    auto driver = MakeRemoteDriver("dc", 17220, 1);
    ASSERT_TRUE(WaitListening(*driver, 17221));
    ASSERT_EQ(RunLua(*driver,
                     "function count(...) got = select('#', ...) end\n"
                     "function many(...)\n"
                     "  local t = {select('#', ...)}\n"
                     "  for i = 1, 20 do t[#t + 1] = i end\n"
                     "  return unpack(t)\n"
                     "end\n"
                     "registerOSCPathForFunction('/f', function(...) viaPath = select('#', ...) end)\n"),
              "");
    UdpPeer client;
    client.Send(17221, "/exec", [&](osc::OutboundPacketStream& s) {
        s << "count";
        Falses(s);
    });
    client.Send(17221, "/f", [&](osc::OutboundPacketStream& s) { Falses(s); });
    // The reply holds the first sixteen results: the count, then 1 to 15.
    client.Send(17221, "/call", [&](osc::OutboundPacketStream& s) {
        s << "many" << client.Client().c_str() << "/r";
        Falses(s);
    });
    std::string reply = "/r f:" + std::to_string(kArguments);
    for (int i = 1; i <= 15; ++i)
        reply += " f:" + std::to_string(i);
    EXPECT_EQ(client.Receive(), reply);
    EXPECT_EQ(LuaNumber(*driver, "got"), kArguments);
    EXPECT_EQ(LuaNumber(*driver, "viaPath"), kArguments);
    // The state is whole afterwards.
    EXPECT_EQ(RunLua(*driver, "assert(select('#', many(1, 2, 3)) == 21)"), "");
}
