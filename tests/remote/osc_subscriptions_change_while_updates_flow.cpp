// Subscriptions may come and go while updates flow: the receive thread changes the table that the
// notify thread reads as it sends, and neither sees the other's half-made change (the thread
// sanitizer build checks it); updates keep reaching the client that stays subscribed.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "RemoteRig.h"

using namespace BR::Test;

TEST(OSCUpdates, SubscriptionsChangeWhileUpdatesFlow) {
    auto driver = MakeRemoteDriver("lfo", 7326, 1);
    ASSERT_TRUE(WaitListening(*driver, 7327));
    BR::OSCHelper* osc = BR::OSCHelperOf(driver->Module());
    UdpPeer stays, comes;
    stays.Send(7327, "/registerUpdate", [&](osc::OutboundPacketStream& s) {
        s << osc::int32(1) << stays.Client().c_str() << "/stays";
    });
    ASSERT_TRUE(WaitFor([&] { return osc->NumUpdateClients(1) == 1; }));
    std::atomic<bool> done{false};
    std::thread setter([&] {
        for (int i = 0; !done.load(); ++i) {
            driver->Module().SetTableValue(1, float(i % 10));
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
    });
    for (int round = 0; round < 100; ++round) {
        const char* command = round % 2 ? "/unregisterUpdate" : "/registerUpdate";
        const std::string path = "/comes" + std::to_string(round / 2 % 8);
        comes.Send(7327, command, [&](osc::OutboundPacketStream& s) {
            s << osc::int32(1) << comes.Client().c_str() << path.c_str();
        });
        std::this_thread::sleep_for(std::chrono::microseconds(500));
    }
    EXPECT_TRUE(WaitFor([&] { return osc->NumUpdateClients(1) == 1; }));
    done.store(true);
    setter.join();
    driver->Module().SetTableValue(1, 0.25f);
    bool heard = false;
    for (std::string text = stays.Receive(); !text.empty() && !heard; text = stays.Receive(500))
        heard = text == "/stays i:1 f:0.25";
    EXPECT_TRUE(heard);
}
