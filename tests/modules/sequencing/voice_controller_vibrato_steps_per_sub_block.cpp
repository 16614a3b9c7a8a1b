// The vibrato phase moves once per sub-block by frames / sampleRate * "Pitch LFO Speed", and its sine
// comes from the polynomial on the folded phase: the pitch is constant within a sub-block.
#include <gtest/gtest.h>

#include <cmath>

#include "VoiceControllerRig.h"

TEST(VoiceControllerVibrato, OneStepPerSubBlock) {
    BR::Test::VoiceRig rig;
    rig.LinearCalibration();
    rig.Set("Pitch LFO Depth", 100.0f);  // one semitone
    rig.Set("Pitch LFO Speed", 5.0f);
    const uint32_t block = 256;
    const auto out = rig.Render(block * 40, block, {{0, BR::Test::Midi(0x90, 60, 100)}});
    double phase = 0.0;
    for (uint32_t b = 0; b < 40; ++b) {
        phase += double(block) / 48000.0 * 5.0;
        phase -= std::floor(phase);
        const float expected = float((60.0 + std::sin(2.0 * M_PI * phase)) / 128.0);
        for (uint32_t i = 0; i < block; ++i)
            ASSERT_NEAR(out[0][b * block + i], expected, 2e-6f) << b << " " << i;
    }
}

TEST(VoiceControllerVibrato, SubBlocksCutByEventsStepByTheirLength) {
    BR::Test::VoiceRig rig;
    rig.LinearCalibration();
    rig.Set("Pitch LFO Depth", 100.0f);
    rig.Set("Pitch LFO Speed", 20.0f);
    // A controller at frame 100 cuts the block into sub-blocks of 100 and 156 frames.
    const auto out =
        rig.Render(256, 256, {{0, BR::Test::Midi(0x90, 60, 100)}, {100, BR::Test::Midi(0xB0, 1, 0)}});
    const double first = 100.0 / 48000.0 * 20.0, second = 256.0 / 48000.0 * 20.0;
    EXPECT_NEAR(out[0][99], (60.0 + std::sin(2.0 * M_PI * first)) / 128.0, 2e-6);
    EXPECT_NEAR(out[0][100], (60.0 + std::sin(2.0 * M_PI * second)) / 128.0, 2e-6);
    EXPECT_EQ(out[0][100], out[0][255]);
}
