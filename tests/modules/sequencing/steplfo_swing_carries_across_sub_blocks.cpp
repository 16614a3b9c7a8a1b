// The swing cycle runs on across the sub-blocks of one host block: MIDI events that cut a block (here
// notes that neither reset nor trigger the lane) leave the output exactly as without them. Restarting
// each sub-block from the position read at the block's start would replay the part of the swing
// period already rendered, and the steps would move with the events.
#include <gtest/gtest.h>

#include "StepLFORig.h"

using StepLFOTest::Set;

namespace {
// Lane L at "Tempo", 1/16 steps at 120 BPM (6000 samples straight), "Swing" 75: of each eighth, 9000
// samples for the first sixteenth and 3000 for the second.
BR::Test::Channels Render(uint32_t block, const std::vector<BR::Test::MidiAt>& notes) {
    BR::DriverTransport transport;
    transport.tempo = 120.0;
    auto driver = BR::Test::MakeDriver("steplfo", 48000.0f, 4096);
    StepLFOTest::FreeLane(*driver, "L");
    StepLFOTest::SetSteps(*driver, "L", StepLFOTest::Ramp());
    driver->SetTransport(&transport);
    Set(*driver, "Sync L", 1.0f);
    Set(*driver, "Swing L", 75.0f);
    return BR::Test::RenderFrames(*driver, 36000, block, {}, notes);
}
}  // namespace

TEST(StepLFOSwingSubBlocks, EventsInsideABlockDoNotMoveTheSteps) {
    for (uint32_t block : {4096u, 1000u}) {
        const auto plain = Render(block, {});
        std::vector<BR::Test::MidiAt> notes;
        for (uint32_t at = 37; at < 36000; at += 611)
            notes.push_back({at, {0x90, 60, 100}});
        const auto cut = Render(block, notes);
        for (uint32_t i = 0; i < 36000; ++i)
            ASSERT_EQ(cut[0][i], plain[0][i]) << "block " << block << " sample " << i;
        // And the steps fall where the swing puts them: 9000, 12000, 21000, 24000, 33000.
        std::vector<uint32_t> starts;
        for (uint32_t i = 1; i < 36000; ++i)
            if (cut[0][i] != cut[0][i - 1]) starts.push_back(i);
        ASSERT_EQ(starts.size(), 5u) << block;
        const double expected[5] = {9000, 12000, 21000, 24000, 33000};
        for (int k = 0; k < 5; ++k)
            EXPECT_NEAR(double(starts[size_t(k)]), expected[k], 2.0) << block << " " << k;
    }
}
