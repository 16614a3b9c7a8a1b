// /getAll answers with one packet per used parameter in ascending order, not one large packet;
// /getNumParameters, /isParameterUsed and /getInfo answer at the reply path.
#include <gtest/gtest.h>

#include "RemoteRig.h"

using namespace BR::Test;

TEST(OSCMessages, GetAllSendsOnePacketPerParameter) {
    auto driver = MakeRemoteDriver("dc", 17160, 1);
    ASSERT_TRUE(WaitListening(*driver, 17161));
    driver->SetParameterByName("Output Positive L", 0.25f);
    UdpPeer client;
    client.Send(17161, "/getAll",
                [&](osc::OutboundPacketStream& s) { s << client.Client().c_str() << "/all"; });
    const std::vector<std::string> packets = client.ReceiveAll();
    const int32_t count = driver->Module().NumTableParameters();
    ASSERT_EQ(packets.size(), size_t(count));
    for (int32_t k = 0; k < count; ++k) {
        char expected[64];
        std::snprintf(expected, sizeof expected, "/all i:%d f:%g", k,
                      double(driver->Module().GetTableValue(k)));
        EXPECT_EQ(packets[size_t(k)], expected);
    }
    EXPECT_EQ(packets[0], "/all i:0 f:0.25");

    client.Send(17161, "/getNumParameters",
                [&](osc::OutboundPacketStream& s) { s << client.Client().c_str() << "/n"; });
    EXPECT_EQ(client.Receive(), "/n i:" + std::to_string(count));
    client.Send(17161, "/isParameterUsed",
                [&](osc::OutboundPacketStream& s) { s << osc::int32(3) << client.Client().c_str() << "/u"; });
    EXPECT_EQ(client.Receive(), "/u i:3 T");
    client.Send(17161, "/getInfo", [&](osc::OutboundPacketStream& s) {
        s << osc::int32(1) << client.Client().c_str() << "/info";
    });
    EXPECT_EQ(client.Receive(), "/info i:1 f:-1 f:1 f:0 s:Output Symmetric L i:0");
}
