// The event ring and the batch list wrap at 64: a batch that starts near the end counts
// eventWrite - start plus 64, and a voice reads its events across the wrap.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

TEST(VoiceControllerMaster, BatchAcrossTheRingEnd) {
    BR::Test::PolyRig rig(1, {1}, 64);
    // 62 single bends, one per frame in blocks of 64, fill entries 0 to 61.
    std::vector<BR::Test::MidiAt> bends;
    for (uint32_t k = 0; k < 62; ++k)
        bends.push_back({k * 2, BR::Test::Midi(0xE0, 0, uint8_t(0x40 + (k % 8)))});
    rig.Render(128, bends);
    ASSERT_EQ(rig.Master().EventWrite(), 62);
    ASSERT_EQ(rig.Master().BatchWrite(), 62);
    // Four at one time stamp: entries 62, 63, 0, 1.
    rig.Render(64, {{150, BR::Test::Midi(0xE0, 0, 0x41)},
                    {150, BR::Test::Midi(0xE0, 0, 0x42)},
                    {150, BR::Test::Midi(0xE0, 0, 0x43)},
                    {150, BR::Test::Midi(0xE0, 0, 0x60)}});
    const auto& batch = rig.Master().Batch(62);
    EXPECT_EQ(batch.start, 62);
    EXPECT_EQ(batch.count, 4);
    EXPECT_EQ(rig.Master().EventWrite(), 2);
    EXPECT_EQ(rig.Master().BatchWrite(), 63);
    EXPECT_EQ(rig.Master().RingEvent(1).dataByte2, 0x60);
    // The voice played all four in order: the last bend stands.
    EXPECT_FLOAT_EQ(rig.Voice(0).PitchBend(), 1.0f);
    // One more batch wraps the batch list to 0.
    rig.Render(64, {{200, BR::Test::Midi(0xE0, 0, 0x40)}});
    EXPECT_EQ(rig.Master().BatchWrite(), 0);
    EXPECT_FLOAT_EQ(rig.Voice(0).PitchBend(), 0.0f);
    EXPECT_EQ(rig.masterOut[0][200], BrelCorvaneVoiceController::MarkerSample(63));
}
