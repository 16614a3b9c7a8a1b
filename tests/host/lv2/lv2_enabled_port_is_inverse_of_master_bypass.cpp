// lv2:enabled at 0 bypasses (Master Bypass on: outputs copy the inputs); at 1 the module plays.
#include <gtest/gtest.h>

#include "tests/host/lv2/support/Lv2TestHost.h"

TEST(Lv2Enabled, ZeroBypassesOneProcesses) {
    BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:dc");
    BrelCorvaneBase& dc = host.Module();
    host.Control("output_positive_l") = 0.5f;
    std::fill_n(host.inputs[0].begin(), 32, 0.25f);
    host.Run(32);
    EXPECT_EQ(dc.GetParameter(0)->GetValueAsFloat(), 0.0f);
    EXPECT_EQ(host.outputs[0][0], 0.5f);

    host.Control("enabled") = 0.0f;
    host.Run(32);
    EXPECT_EQ(dc.GetParameter(0)->GetValueAsFloat(), 1.0f);
    EXPECT_EQ(host.outputs[0][0], 0.25f);
    EXPECT_EQ(host.outputs[1][0], 0.0f);

    host.Control("enabled") = 1.0f;
    host.Run(32);
    EXPECT_EQ(dc.GetParameter(0)->GetValueAsFloat(), 0.0f);
    EXPECT_EQ(host.outputs[0][0], 0.5f);
}
