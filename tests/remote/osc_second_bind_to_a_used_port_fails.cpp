// Two instances with the same offset: the second cannot bind, says so in one line on standard
// output, and the first serves on undisturbed.
#include <gtest/gtest.h>

#include "RemoteRig.h"

using namespace BR::Test;

TEST(OSCServer, SecondInstanceOnTheSamePortFailsWithOneLine) {
    auto first = MakeRemoteDriver("lfo", 17030, 2);
    ASSERT_TRUE(WaitListening(*first, 17032));
    testing::internal::CaptureStdout();
    auto second = MakeRemoteDriver("dc", 17030, 2);
    BR::OSCHelper* secondOsc = BR::OSCHelperOf(second->Module());
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    const std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(out, "std::runtime_error in TaskMain(): unable to bind udp socket\n");
    EXPECT_EQ(secondOsc->ActivePort(), 0);
    EXPECT_TRUE(secondOsc->IsRunning());

    UdpPeer client;
    client.Send(17032, "/ping",
                [&](osc::OutboundPacketStream& s) { s << client.Client().c_str() << "/pong"; });
    EXPECT_EQ(client.Receive(), "/pong s:osc.udp://127.0.0.1:17032 s:Corvane LFO 2.6.1");
}
