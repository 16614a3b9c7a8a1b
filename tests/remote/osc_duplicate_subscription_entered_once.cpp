// A subscription equal in id, address, port and path is entered once; the same id from another
// port is a second client.
#include <gtest/gtest.h>

#include "RemoteRig.h"

using namespace BR::Test;

TEST(OSCServer, DuplicateSubscriptionIsEnteredOnceAnotherPortTwice) {
    auto driver = MakeRemoteDriver("lfo", 17020, 1);
    ASSERT_TRUE(WaitListening(*driver, 17021));
    BR::OSCHelper* osc = BR::OSCHelperOf(driver->Module());
    UdpPeer first, second;
    auto subscribe = [&](const UdpPeer& peer) {
        peer.Send(17021, "/registerUpdate",
                  [&](osc::OutboundPacketStream& s) { s << osc::int32(4) << peer.Client().c_str() << "/u"; });
    };
    subscribe(first);
    subscribe(first);
    first.Send(17021, "/ping", [&](osc::OutboundPacketStream& s) { s << first.Client().c_str() << "/pong"; });
    ASSERT_NE(first.Receive(), "");  // both subscriptions have been handled before the ping
    EXPECT_EQ(osc->NumUpdateClients(4), 1u);
    subscribe(second);
    ASSERT_TRUE(WaitFor([&] { return osc->NumUpdateClients(4) == 2; }));

    // One update per change for each client: the duplicate sends nothing extra.
    driver->Module().SetTableValue(4, 0.25f);
    EXPECT_EQ(first.ReceiveAll(), std::vector<std::string>{"/u i:4 f:0.25"});
    EXPECT_EQ(second.ReceiveAll(), std::vector<std::string>{"/u i:4 f:0.25"});
}
