// An instance may be destroyed while another instance's server sets its parameters through /brel/
// paths: the dispatch either finishes before the instance leaves the registry or no longer finds it,
// and never reaches an instance whose module part is already gone (the sanitizer builds check it).
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "RemoteRig.h"

using namespace BR::Test;

TEST(OSCBrelPaths, InstanceDestroyedUnderBrelTraffic) {
    auto server = MakeRemoteDriver("dc", 7328, 1);
    ASSERT_TRUE(WaitListening(*server, 7329));
    UdpPeer client;
    std::atomic<bool> done{false};
    std::thread traffic([&] {
        while (!done.load()) {
            client.Send(7329, "/brel/CRLFO/*/SpeedL", [](osc::OutboundPacketStream& s) { s << 3.0f; });
            client.Send(7329, "/brel/CRLFO/*/1", [](osc::OutboundPacketStream& s) { s << 2.0f; });
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
    });
    for (int round = 0; round < 60; ++round) {
        auto lfo = MakeDriver("lfo");
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    done.store(true);
    traffic.join();
    client.Send(7329, "/ping", [&](osc::OutboundPacketStream& s) { s << client.Client().c_str() << "/p"; });
    EXPECT_NE(client.Receive(), "");
}
