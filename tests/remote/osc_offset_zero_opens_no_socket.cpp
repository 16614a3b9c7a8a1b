// An instance whose "OSC Port Offset" is 0 has its two threads running and waiting, and no socket.
#include <gtest/gtest.h>

#include "ProcNetUdp.h"
#include "RemoteRig.h"

using namespace BR::Test;

TEST(OSCServer, OffsetZeroAtStartOpensNoSocketWhileTheThreadsWait) {
    auto driver = MakeRemoteDriver("lfo", 17000);
    BR::OSCHelper* osc = BR::OSCHelperOf(driver->Module());
    ASSERT_NE(osc, nullptr);
    EXPECT_TRUE(osc->IsRunning());
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(osc->RequestedPort(), 0);
    EXPECT_EQ(osc->ActivePort(), 0);
    for (int port = 17000; port <= 17009; ++port)  // the ports this test owns
        EXPECT_EQ(BoundAddressOf(port), "") << port;
    // Offset 1 opens base + 1; back to 0 closes it again.
    driver->SetParameterByName("OSC Port Offset", 1);
    ASSERT_TRUE(WaitListening(*driver, 17001));
    EXPECT_EQ(BoundAddressOf(17001), "0.0.0.0");
    driver->SetParameterByName("OSC Port Offset", 0);
    ASSERT_TRUE(WaitFor([&] { return BoundAddressOf(17001).empty(); }));
    EXPECT_EQ(osc->ActivePort(), 0);
    EXPECT_TRUE(osc->IsRunning());
}
