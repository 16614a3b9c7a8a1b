// Subscriptions: one update per change however often a client registers; unregistering one of
// two clients keeps the flag; the last one clears it; /getAllRegistered sends to each client.
#include <gtest/gtest.h>

#include "RemoteRig.h"

using namespace BR::Test;

namespace {
void Register(const UdpPeer& peer, int port, const char* command, int32_t id, const char* path) {
    peer.Send(port, command,
              [&](osc::OutboundPacketStream& s) { s << osc::int32(id) << peer.Client().c_str() << path; });
}
void Sync(const UdpPeer& peer, int port) {
    peer.Send(port, "/ping", [&](osc::OutboundPacketStream& s) { s << peer.Client().c_str() << "/sync"; });
    ASSERT_EQ(peer.Receive().rfind("/sync", 0), 0u);
}
}  // namespace

TEST(OSCMessages, RegisterTwiceGivesOneUpdatePerChange) {
    auto driver = MakeRemoteDriver("dc", 17170, 1);
    ASSERT_TRUE(WaitListening(*driver, 17171));
    UdpPeer client;
    Register(client, 17171, "/registerUpdate", 2, "/upd");
    Register(client, 17171, "/registerUpdate", 2, "/upd");
    Sync(client, 17171);
    driver->Module().SetTableValue(2, 1.5f);
    driver->Module().SetTableValue(2, -0.5f);
    EXPECT_EQ(client.ReceiveAll(), (std::vector<std::string>{"/upd i:2 f:1.5", "/upd i:2 f:-0.5"}));
    // A /set through the server is a change like any other.
    client.Send(17171, "/set", [](osc::OutboundPacketStream& s) { s << osc::int32(2) << 0.75f; });
    EXPECT_EQ(client.Receive(), "/upd i:2 f:0.75");
}

TEST(OSCMessages, UnregisterOneOfTwoClientsKeepsTheFlag) {
    auto driver = MakeRemoteDriver("dc", 17180, 1);
    ASSERT_TRUE(WaitListening(*driver, 17181));
    BR::OSCHelper* osc = BR::OSCHelperOf(driver->Module());
    UdpPeer first, second;
    Register(first, 17181, "/registerUpdate", 0, "/a");
    Register(second, 17181, "/registerUpdate", 0, "/b");
    Sync(first, 17181);
    Register(first, 17181, "/unregisterUpdate", 0, "/a");
    Sync(first, 17181);
    EXPECT_TRUE(osc->UpdateFlag(0));
    EXPECT_EQ(osc->NumUpdateClients(0), 1u);
    driver->Module().SetTableValue(0, 0.5f);
    EXPECT_EQ(second.Receive(), "/b i:0 f:0.5");
    EXPECT_EQ(first.Receive(300), "");

    second.Send(17181, "/getAllRegistered");
    EXPECT_EQ(second.Receive(), "/b i:0 f:0.5");
    Register(second, 17181, "/unregisterUpdate", 0, "/b");
    Sync(second, 17181);
    EXPECT_FALSE(osc->UpdateFlag(0));
    testing::internal::CaptureStdout();
    Register(second, 17181, "/unregisterUpdate", 99, "/b");
    Sync(second, 17181);
    // Deliberately the text of /registerUpdate.
    EXPECT_EQ(
        testing::internal::GetCapturedStdout(),
        "error while parsing message: /unregisterUpdate: parameter id out of range in registerUpdate\n");
}
