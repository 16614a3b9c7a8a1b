// time() gives the seconds since the process started, not since a script first asked.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "RemoteRig.h"

using namespace BR::Test;

TEST(LuaTime, CountsFromTheProcessStart) {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    auto driver = MakeRemoteDriver("dc", 17610);
    // The first call of this process comes at least 0.3 s after it started.
    EXPECT_EQ(RunLua(*driver, "t = time()"), "");
    EXPECT_GE(LuaNumber(*driver, "t"), 0.3);
    EXPECT_LT(LuaNumber(*driver, "t"), 600.0);
}
