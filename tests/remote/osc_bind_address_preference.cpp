// "OSC Bind Address" at 127.0.0.1 binds the socket to loopback only; absent, the any-address; a
// text that is no IPv4 address opens nothing rather than falling back to every interface.
#include <gtest/gtest.h>

#include <filesystem>

#include "ProcNetUdp.h"
#include "RemoteRig.h"
#include "framework/PreferenceStore.h"
#include "tests/support/RunCommand.h"
#include "tests/support/ScopedEnvironment.h"

using namespace BR::Test;

TEST(OSCBindAddress, LoopbackPreferenceBindsLoopbackOnly) {
    ScopedEnvironment environment;
    const std::string config = MakeTempFolder();
    environment.Set("XDG_CONFIG_HOME", config.c_str());
    auto open = MakeRemoteDriver("dc", 17400, 1);
    ASSERT_TRUE(WaitListening(*open, 17401));
    EXPECT_EQ(BoundAddressOf(17401), "0.0.0.0");

    ASSERT_TRUE(BR::PreferenceStore::SetString("OSC Bind Address", "127.0.0.1"));
    auto local = MakeRemoteDriver("dc", 17400, 2);
    ASSERT_TRUE(WaitListening(*local, 17402));
    EXPECT_EQ(BoundAddressOf(17402), "127.0.0.1");
    // Honoured at each opening: the first instance reopens on loopback too.
    open->SetParameterByName("OSC Port Offset", 3);
    ASSERT_TRUE(WaitListening(*open, 17403));
    EXPECT_EQ(BoundAddressOf(17403), "127.0.0.1");
    UdpPeer client;
    client.Send(17403, "/ping", [&](osc::OutboundPacketStream& s) { s << client.Client().c_str() << "/p"; });
    EXPECT_EQ(client.Receive(), "/p s:osc.udp://127.0.0.1:17403 s:Corvane DC 2.6.1");

    ASSERT_TRUE(BR::PreferenceStore::SetString("OSC Bind Address", "everywhere"));
    testing::internal::CaptureStdout();
    local->SetParameterByName("OSC Port Offset", 4);
    ASSERT_TRUE(WaitFor([&] { return BoundAddressOf(17402).empty(); }));
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "std::runtime_error in TaskMain(): OSC Bind Address \"everywhere\" is not an IPv4 address\n");
    EXPECT_EQ(BoundAddressOf(17404), "");
    std::filesystem::remove_all(config);
}
