// Numbers that scripts pass where an integer is meant (parameter and instance ids, indicator bits,
// scale degrees, "i" arguments of sendOSC) are truncated and held within 32 bits, NaN as 0, never
// converted beyond the range.
#include <gtest/gtest.h>

#include "RemoteRig.h"

using namespace BR::Test;

TEST(LuaNumbers, IntegersBeyondThirtyTwoBitsAreHeldAtTheEnds) {
    auto driver = MakeRemoteDriver("quantizer", 7324);
    UdpPeer peer;
    const std::string to = "'osc.udp://127.0.0.1:" + std::to_string(peer.Port()) + "'";
    ASSERT_EQ(RunLua(*driver, "sendOSC(" + to + ", '/big', 'iii', { 1e20, -1e20, 0/0 })"), "");
    EXPECT_EQ(peer.Receive(), "/big i:2147483647 i:-2147483648 i:0");
    // setParameter changes nothing for an id outside the table; its companions name the id.
    EXPECT_EQ(RunLua(*driver, "setParameter(1e300, 0)"), "");
    EXPECT_EQ(RunLua(*driver, "getParameter(1e300)"), "parameter out of range: 2147483647");
    EXPECT_EQ(RunLua(*driver, "getParameter(-1e300)"), "parameter out of range: -2147483648");
    EXPECT_EQ(RunLua(*driver, "getParameter(0/0)"), "");  // id 0, a row that exists
    EXPECT_EQ(RunLua(*driver, "setOthersParameter(1e300, 1, 0.5)"), "");
    EXPECT_EQ(RunLua(*driver, "x = getOthersParameter(-1e300, 1)"), "");
    EXPECT_EQ(RunLua(*driver, "setGUIBoolValue(1e300, true)"), "indicator id out of range: 2147483647");
    EXPECT_EQ(RunLua(*driver, "getGUIBoolValue(-1e300)"), "indicator id out of range: -2147483648");
    EXPECT_EQ(RunLua(*driver, "addScale('edges', { 1e300, -1e300, 0/0, 3 })"), "");
}
