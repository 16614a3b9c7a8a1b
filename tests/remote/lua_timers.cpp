// Script timers: a one-shot of 0 s fires once as soon as it can, a periodic timer of 0 s has
// period 0 and fires once, and a periodic callback can cancel its own timer.
#include <gtest/gtest.h>

#include "RemoteRig.h"

using namespace BR::Test;

TEST(LuaTimers, TimedCallbackOfZeroFiresOnce) {
    auto driver = MakeRemoteDriver("dc", 17340);
    ASSERT_EQ(RunLua(*driver, "n = 0; t = requestTimedCallback(0, function() n = n + 1 end)"), "");
    ASSERT_TRUE(WaitFor([&] { return LuaNumber(*driver, "n") == 1; }, 1000));
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(LuaNumber(*driver, "n"), 1);
    EXPECT_EQ(RunLua(*driver, "cancelTimer(t)"), "");  // a finished one-shot: harmless
}

TEST(LuaTimers, PeriodicCallbackOfZeroFiresOnce) {
    auto driver = MakeRemoteDriver("dc", 17340);
    ASSERT_EQ(RunLua(*driver, "n = 0; t = requestPeriodicCallback(0, function() n = n + 1 end)"), "");
    ASSERT_TRUE(WaitFor([&] { return LuaNumber(*driver, "n") == 1; }, 1000));
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(LuaNumber(*driver, "n"), 1);
}

TEST(LuaTimers, PeriodicCallbackCancelsItsOwnTimer) {
    auto driver = MakeRemoteDriver("dc", 17340);
    ASSERT_EQ(RunLua(*driver,
                     "n = 0\n"
                     "t = requestPeriodicCallback(0.005, function()\n"
                     "  n = n + 1\n"
                     "  if n == 3 then cancelTimer(t) end\n"
                     "end)\n"),
              "");
    ASSERT_TRUE(WaitFor([&] { return LuaNumber(*driver, "n") == 3; }, 2000));
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    EXPECT_EQ(LuaNumber(*driver, "n"), 3);
}

TEST(LuaTimers, ArgumentErrorsAndTime) {
    auto driver = MakeRemoteDriver("dc", 17340);
    EXPECT_EQ(RunLua(*driver, "requestTimedCallback(1, 2)"),
              "second argument to requestTimerCallback() is not a function");
    EXPECT_EQ(RunLua(*driver, "requestPeriodicCallback(1)"),
              "second argument to requestTimerCallback() is not a function");
    EXPECT_EQ(RunLua(*driver, "cancelTimer({})"),
              "bad argument #1 to 'cancelTimer' (first argument to cancelTimer() is not a timer)");
    EXPECT_EQ(RunLua(*driver, "a = time(); b = time(); ok = (b >= a and a >= 0) and 1 or 0"), "");
    EXPECT_EQ(LuaNumber(*driver, "ok"), 1);
    // A timer of one second that is cancelled at once never fires.
    EXPECT_EQ(RunLua(*driver, "m = 0; u = requestTimedCallback(0.05, function() m = 1 end); cancelTimer(u)"),
              "");
    std::this_thread::sleep_for(std::chrono::milliseconds(120));
    EXPECT_EQ(LuaNumber(*driver, "m"), 0);
}
