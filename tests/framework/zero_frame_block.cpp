// A block of 0 frames calls BeginBlock and EndBlock and nothing between.
#include <gtest/gtest.h>

#include "tests/support/ProbeModule.h"

using namespace BR::Test;

TEST(ZeroFrameBlock, OnlyBeginAndEnd) {
    ProbeModule module;
    ManualHost host(module);
    float in[2][4] = {}, out[2][4] = {};
    host.Render({in[0], in[1]}, {out[0], out[1]}, 0, {Packet(0, {0x90, 60, 100})});
    ASSERT_EQ(module.calls.size(), 2u);
    EXPECT_EQ(module.calls[0].what, "BeginBlock");
    EXPECT_EQ(module.calls[0].frames, 0u);
    EXPECT_EQ(module.calls[1].what, "EndBlock");
}
