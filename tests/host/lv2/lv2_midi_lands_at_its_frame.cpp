// MIDI events of the atom sequence reach the module at their frames, sample-accurately, within a
// block and across the pieces of a block longer than the module's.
#include <gtest/gtest.h>

#include "tests/host/lv2/probe/HostProbe.h"
#include "tests/host/lv2/support/Lv2TestHost.h"

namespace {
// First frame at or after `from` where channel 0 changes from its previous value.
int FirstChange(const std::vector<float>& x, int from, int to) {
    for (int i = std::max(from, 1); i < to; ++i)
        if (x[size_t(i)] != x[size_t(i - 1)]) return i;
    return -1;
}
}  // namespace

TEST(Lv2Midi, NoteOnAndOffAtTheirFrames) {
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri);
    host.AddMidi(100, {0x90, 60, 100});
    host.AddMidi(700, {0x80, 60, 0});
    host.Run(1000);
    const std::vector<float>& gate = host.outputs[0];
    EXPECT_EQ(gate[99], 0.0f);
    EXPECT_EQ(gate[100], 1.0f);
    EXPECT_EQ(gate[699], 1.0f);
    EXPECT_EQ(gate[700], 0.0f);
    EXPECT_EQ(FirstChange(gate, 101, 1000), 700);
}

TEST(Lv2Midi, EventsInALongBlockAreCutAtTheModulesBlocks) {
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri);
    host.Control("mode") = 2.0f;  // gate shows note / 127
    host.AddMidi(1500, {0x91, 64, 1});
    host.AddMidi(3000, {0x91, 64, 0});  // velocity 0 is a note off
    host.AddMidi(4095, {0x90, 127, 5});
    host.Run(4096);
    const std::vector<float>& gate = host.outputs[0];
    EXPECT_EQ(FirstChange(gate, 1, 4096), 1500);
    EXPECT_EQ(gate[1500], 64.0f / 127.0f);
    EXPECT_EQ(FirstChange(gate, 1501, 4096), 3000);
    EXPECT_EQ(gate[4094], 0.0f);
    EXPECT_EQ(gate[4095], 1.0f);
    // The module saw blocks of 1024, 1024, 1024, 1024: four of them.
    EXPECT_EQ(host.outputs[4][0], 1024.0f / 8192.0f);
    auto& probe = dynamic_cast<BrelCorvaneHostProbe::BrelCorvane&>(host.Module());
    EXPECT_EQ(probe.blocksSeen, 4u);
}

TEST(Lv2Midi, EventsPastTheBlockLandOnItsLastFrame) {
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri);
    host.AddMidi(5000, {0x90, 60, 100});
    host.Run(256);
    EXPECT_EQ(host.outputs[0][254], 0.0f);
    EXPECT_EQ(host.outputs[0][255], 1.0f);
}
