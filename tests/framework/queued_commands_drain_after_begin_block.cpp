// toAudioQueue is drained completely after BeginBlock and before any MIDI of the block is seen.
#include <gtest/gtest.h>

#include "tests/support/ProbeModule.h"

using namespace BR::Test;

TEST(QueuedCommands, DrainAfterBeginBlockBeforeMidi) {
    ProbeModule module;
    ManualHost host(module);
    module.ToAudioQueue().Write(64094u);
    module.ToAudioQueue().Write(64015u);
    float in[2][16] = {}, out[2][16] = {};
    host.Render({in[0], in[1]}, {out[0], out[1]}, 16, {Packet(0, {0x90, 60, 100})});
    ASSERT_GE(module.calls.size(), 4u);
    EXPECT_EQ(module.calls[0].what, "BeginBlock");
    EXPECT_EQ(module.calls[1].what, "Queued");
    EXPECT_EQ(module.calls[1].a, 64094);
    EXPECT_EQ(module.calls[2].what, "Queued");
    EXPECT_EQ(module.calls[2].a, 64015);
    EXPECT_EQ(module.calls[3].what, "NoteOn");
    EXPECT_EQ(module.ToAudioQueue().Read(), nullptr);
}
