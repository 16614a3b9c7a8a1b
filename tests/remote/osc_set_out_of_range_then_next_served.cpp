// A /set with the id equal to the parameter count fails with its text, and the next packet is
// served; so is a malformed packet, a wrong type, and a huge packet.
#include <gtest/gtest.h>

#include "RemoteRig.h"

using namespace BR::Test;

TEST(OSCMessages, SetOutOfRangeFailsWithItsTextAndTheNextPacketIsServed) {
    auto driver = MakeRemoteDriver("lfo", 17100, 1);
    ASSERT_TRUE(WaitListening(*driver, 17101));
    const int32_t count = driver->Module().NumTableParameters();
    UdpPeer client;
    testing::internal::CaptureStdout();
    client.Send(17101, "/set", [&](osc::OutboundPacketStream& s) { s << osc::int32(count) << 1.0f; });
    client.Send(17101, "/set", [&](osc::OutboundPacketStream& s) { s << osc::int32(2) << 3.0f; });
    client.Send(17101, "/get", [&](osc::OutboundPacketStream& s) {
        s << osc::int32(2) << client.Client().c_str() << "/got";
    });
    EXPECT_EQ(client.Receive(), "/got i:2 f:3");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "error while parsing message: /set: parameter id out of range in set\n");
}

TEST(OSCMessages, BadPacketsAreToldAndTheNextIsServed) {
    auto driver = MakeRemoteDriver("lfo", 17110, 1);
    ASSERT_TRUE(WaitListening(*driver, 17111));
    UdpPeer client;
    auto ping = [&] {
        client.Send(17111, "/ping",
                    [&](osc::OutboundPacketStream& s) { s << client.Client().c_str() << "/p"; });
        return client.Receive();
    };
    testing::internal::CaptureStdout();
    const char truncated[] = {'/', 's', 'e', 't', 0, 0, 0, 0, ',', 'i', 'f'};
    client.SendRaw(17111, truncated, sizeof truncated);
    EXPECT_NE(ping(), "");
    client.SendRaw(17111, "#bundle", 7);
    EXPECT_NE(ping(), "");
    client.Send(17111, "/set", [&](osc::OutboundPacketStream& s) { s << "two" << 1.0f; });
    client.Send(17111, "/get", [&](osc::OutboundPacketStream& s) { s << osc::int32(2); });
    client.Send(17111, "/getInfo", [&](osc::OutboundPacketStream& s) {
        s << osc::int32(-5) << client.Client().c_str() << "/i";
    });
    client.Send(17111, "/ping",
                [&](osc::OutboundPacketStream& s) { s << client.Client().c_str() << "/p" << 3; });
    EXPECT_NE(ping(), "");
    std::vector<char> huge(60000, 'x');
    client.SendRaw(17111, huge.data(), huge.size());
    EXPECT_NE(ping(), "");
    const std::string out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("error while parsing message: /set: wrong argument type\n"), std::string::npos) << out;
    EXPECT_NE(out.find("error while parsing message: /get: missing argument\n"), std::string::npos) << out;
    EXPECT_NE(out.find("error while parsing message: /getInfo: parameter id out of range in getInfo\n"),
              std::string::npos)
        << out;
    EXPECT_NE(out.find("error while parsing message: /ping: too many arguments\n"), std::string::npos) << out;
    EXPECT_EQ(BR::OSCHelperOf(driver->Module())->ActivePort(), 17111);
}
