// StopTasks ends both threads; a second call finds nothing running and does nothing.
#include <gtest/gtest.h>

#include "ProcNetUdp.h"
#include "RemoteRig.h"

using namespace BR::Test;

TEST(OSCServer, StopTasksTwiceDoesNothingTheSecondTime) {
    auto driver = MakeRemoteDriver("lfo", 17040, 1);
    ASSERT_TRUE(WaitListening(*driver, 17041));
    BR::OSCHelper* osc = BR::OSCHelperOf(driver->Module());
    const auto start = std::chrono::steady_clock::now();
    osc->StopTasks();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(2000));
    EXPECT_FALSE(osc->IsRunning());
    EXPECT_EQ(osc->ActivePort(), 0);
    EXPECT_EQ(BoundAddressOf(17041), "");
    testing::internal::CaptureStdout();
    osc->StopTasks();
    EXPECT_FALSE(osc->IsRunning());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    // Starting again works, and a third start is refused with the warning.
    osc->StartTasks();
    EXPECT_TRUE(osc->IsRunning());
    testing::internal::CaptureStdout();
    osc->StartTasks();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Warning: Attempt to recreate OSC task\n");
}
