// MIDI in a block cuts it into slices; each slice after the first starts further on than the block's
// transport position, by the frames already rendered. So a 24 PPQN clock at 120 BPM and 48 kHz keeps
// every rising edge on its sample (one every 1000) however many MIDI events cut the blocks, and the
// output is the same as without MIDI.
#include <gtest/gtest.h>

#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

namespace {
BR::Test::Channels RenderClock(const std::vector<BR::Test::MidiAt>& midi) {
    auto driver = BR::Test::MakeDriver("sync", 48000.0f);
    driver->SetParameterByName("DINsync Type", 1.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    return BR::Test::RenderWithTransport(*driver, transport, 12000, {2048}, {}, midi);
}
}  // namespace

TEST(SyncSlices, MidiInABlockLeavesEdgesOnTheirSamples) {
    const std::vector<uint8_t> cc = {0xB0, 1, 64}, note = {0x90, 60, 100};
    std::vector<BR::Test::MidiAt> midi;
    for (uint32_t frame : {300u, 777u, 1500u, 2049u, 2500u, 4100u, 5999u, 6001u, 9000u, 11999u})
        midi.push_back({frame, frame % 2 ? cc : note});
    const BR::Test::Channels cut = RenderClock(midi);
    std::vector<uint32_t> expected;
    for (uint32_t k = 0; k < 12; ++k)
        expected.push_back(1000 * k);
    EXPECT_EQ(BR::Test::RisingEdges(cut[0]), expected);
    for (uint32_t k = 0; k < 12; ++k) {
        EXPECT_EQ(cut[0][1000 * k + 499], 1.0f) << k;
        EXPECT_EQ(cut[0][1000 * k + 500], 0.0f) << k;
    }
    const BR::Test::Channels whole = RenderClock({});
    EXPECT_EQ(cut[0], whole[0]);
    EXPECT_EQ(cut[1], whole[1]);
}
