// /brel/ paths set parameters of any instance in the process: by global id, by short name with
// a local id or "*", several targets in one message, and malformed paths fail with the path.
#include <gtest/gtest.h>

#include "RemoteRig.h"
#include "framework/InstanceRegistry.h"

using namespace BR::Test;

namespace {
float SpeedL(BR::HostDriver& driver) {
    return driver.Module().GetTableValue(driver.ParameterIndexByName("Speed L") - 1);
}
void SendFloats(const UdpPeer& client, int port, const char* path, std::vector<float> values) {
    client.Send(port, path, [&](osc::OutboundPacketStream& s) {
        for (float v : values)
            s << v;
    });
}
}  // namespace

TEST(OSCBrelPaths, GlobalIdZeroSetsTheOffsetAndMayCloseTheReceivingSocket) {
    auto driver = MakeRemoteDriver("lfo", 17120, 1);
    ASSERT_TRUE(WaitListening(*driver, 17121));
    uint32_t localId = 0, globalId = 0;
    ASSERT_TRUE(BR::InstanceRegistry::PeekInstanceIds(&driver->Module(), localId, globalId));
    ASSERT_EQ(globalId, 1u);  // the only instance
    UdpPeer client;
    SendFloats(client, 17121, "/brel/1/0", {0.0f});
    BR::OSCHelper* osc = BR::OSCHelperOf(driver->Module());
    ASSERT_TRUE(WaitFor([&] { return osc->ActivePort() == 0; }));
    EXPECT_EQ(driver->Module().GetTableValue(0), 0.0f);
    EXPECT_EQ(osc->RequestedPort(), 0);
}

TEST(OSCBrelPaths, StarSetsEveryInstanceOfTheName) {
    auto a = MakeRemoteDriver("lfo", 17130, 1);
    auto b = MakeRemoteDriver("lfo", 17130);
    auto c = MakeRemoteDriver("lfo", 17130);
    auto dc = MakeRemoteDriver("dc", 17130);
    ASSERT_TRUE(WaitListening(*a, 17131));
    UdpPeer client;
    SendFloats(client, 17131, "/brel/CRLFO/*/SpeedL", {7.5f});
    ASSERT_TRUE(WaitFor([&] { return SpeedL(*c) == 7.5f; }));
    EXPECT_EQ(SpeedL(*a), 7.5f);
    EXPECT_EQ(SpeedL(*b), 7.5f);
}

TEST(OSCBrelPaths, TwoTargetsInOneMessage) {
    auto a = MakeRemoteDriver("lfo", 17140, 1);
    auto b = MakeRemoteDriver("lfo", 17140);
    ASSERT_TRUE(WaitListening(*a, 17141));
    uint32_t localA = 0, localB = 0, g = 0;
    {
        std::lock_guard<std::recursive_mutex> guard(BR::InstanceRegistry::Lock());
        BR::InstanceRegistry::GetInstanceIds(&a->Module(), localA, g);
        BR::InstanceRegistry::GetInstanceIds(&b->Module(), localB, g);
    }
    ASSERT_EQ(localA, 1u);
    ASSERT_EQ(localB, 2u);
    UdpPeer client;
    SendFloats(client, 17141, "/brel/CRLFO/1/SpeedL/CRLFO/2/SpeedL", {3.0f, 4.0f});
    ASSERT_TRUE(WaitFor([&] { return SpeedL(*b) == 4.0f; }));
    EXPECT_EQ(SpeedL(*a), 3.0f);
    // By compact form, and with +multi1: "OSC Port Offset" is row 0, "Speed L" row 1.
    SendFloats(client, 17141, "/brel/+multi1/CRLFO/2/OSCPortOffset/2", {9.0f});
    ASSERT_TRUE(WaitFor([&] { return SpeedL(*b) == 9.0f; }));
    SendFloats(client, 17141, "/brel/CRLFO/2/1", {2.0f});
    ASSERT_TRUE(WaitFor([&] { return SpeedL(*b) == 2.0f; }));
}

TEST(OSCBrelPaths, MalformedPathsFailWithThePathAsText) {
    auto driver = MakeRemoteDriver("lfo", 17150, 1);
    ASSERT_TRUE(WaitListening(*driver, 17151));
    UdpPeer client;
    testing::internal::CaptureStdout();
    SendFloats(client, 17151, "/brel/CRLFO/1", {1.0f});
    SendFloats(client, 17151, "/brel/CRLFO/x/SpeedL", {1.0f});
    SendFloats(client, 17151, "/brel/+multi2/CRLFO/1/SpeedL/1", {1.0f});
    SendFloats(client, 17151, "/brel/CRLFO/1/SpeedL", {});
    client.Send(17151, "/brel/CRLFO/1/SpeedL", [](osc::OutboundPacketStream& s) { s << osc::int32(3); });
    client.Send(17151, "/ping", [&](osc::OutboundPacketStream& s) { s << client.Client().c_str() << "/p"; });
    ASSERT_NE(client.Receive(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "error while parsing message: /brel/CRLFO/1: /brel/CRLFO/1\n"
              "error while parsing message: /brel/CRLFO/x/SpeedL: /brel/CRLFO/x/SpeedL\n"
              "error while parsing message: /brel/+multi2/CRLFO/1/SpeedL/1: /brel/+multi2/CRLFO/1/SpeedL/1\n"
              "error while parsing message: /brel/CRLFO/1/SpeedL: missing argument\n"
              "error while parsing message: /brel/CRLFO/1/SpeedL: wrong argument type\n");
    EXPECT_EQ(SpeedL(*driver), 5.0f);
}
