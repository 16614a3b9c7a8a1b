// Moving the offset from 3 to 5 closes base + 3, opens base + 5, and keeps the subscriptions.
#include <gtest/gtest.h>

#include "ProcNetUdp.h"
#include "RemoteRig.h"

using namespace BR::Test;

TEST(OSCServer, OffsetThreeToFiveReopensWithoutLosingSubscriptions) {
    auto driver = MakeRemoteDriver("lfo", 17010, 3);
    ASSERT_TRUE(WaitListening(*driver, 17013));
    UdpPeer client;
    const int32_t speedL = driver->ParameterIndexByName("Speed L") - 1;
    client.Send(17013, "/registerUpdate", [&](osc::OutboundPacketStream& s) {
        s << osc::int32(speedL) << client.Client().c_str() << "/speed";
    });
    BR::OSCHelper* osc = BR::OSCHelperOf(driver->Module());
    ASSERT_TRUE(WaitFor([&] { return osc->UpdateFlag(speedL); }));

    driver->SetParameterByName("OSC Port Offset", 5);
    ASSERT_TRUE(WaitListening(*driver, 17015));
    EXPECT_EQ(BoundAddressOf(17013), "");
    EXPECT_EQ(BoundAddressOf(17015), "0.0.0.0");
    // The subscription made through the old port still gets updates.
    driver->SetParameterByName("Speed L", 2.5f);
    EXPECT_EQ(client.Receive(), "/speed i:" + std::to_string(speedL) + " f:2.5");
    // And the new port serves.
    client.Send(17015, "/get", [&](osc::OutboundPacketStream& s) {
        s << osc::int32(speedL) << client.Client().c_str() << "/got";
    });
    EXPECT_EQ(client.Receive(), "/got i:" + std::to_string(speedL) + " f:2.5");
}
