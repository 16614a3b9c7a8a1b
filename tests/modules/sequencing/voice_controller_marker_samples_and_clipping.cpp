// The marker of batch b is the float with bits (0x4080 + b) << 16. The master clips its pass-through
// above 2.0 to 2.0 and clears output 2; a voice snaps a marker that arrives with a small gain error,
// and an input of exactly 2.0 still counts as batch 0.
#include <gtest/gtest.h>

#include <cstring>

#include "VoiceControllerRig.h"

using BrelCorvaneVoiceController::MarkerSample;

namespace {
uint32_t Bits(float value) {
    uint32_t bits;
    std::memcpy(&bits, &value, 4);
    return bits;
}
float FromBits(uint32_t bits) {
    float value;
    std::memcpy(&value, &bits, 4);
    return value;
}
}  // namespace

TEST(VoiceControllerMarker, BitPatterns) {
    EXPECT_EQ(MarkerSample(0), 4.0f);
    EXPECT_EQ(Bits(MarkerSample(0)), 0x40800000u);
    EXPECT_EQ(Bits(MarkerSample(1)), 0x40810000u);
    EXPECT_EQ(Bits(MarkerSample(63)), 0x40BF0000u);
    EXPECT_LT(MarkerSample(63), 6.0f);
}

TEST(VoiceControllerMarker, MasterClipsPassThroughAtTwo) {
    BR::Test::VoiceRig master;
    master.Set("Poly Mode", 1);
    master.Set("Output 1 Offset", 0.5f);  // the master's mix starts at output 3
    master.Set("Output 2 Offset", 0.5f);
    const BR::Test::Channels in = {{3.0f, 2.0f, 2.5f, 1.5f, -3.0f, 100.0f, 1.999f}};
    const auto out = master.Render(7, 7, {}, in);
    const float expected[7] = {2.0f, 2.0f, 2.0f, 1.5f, -3.0f, 2.0f, 1.999f};
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(out[0][size_t(i)], expected[i]) << i;
        EXPECT_EQ(out[1][size_t(i)], 0.0f) << i;
    }
}

TEST(VoiceControllerMarker, VoiceReadsBatchesFromTheMaster) {
    BR::Test::VoiceRig master;
    master.Set("Poly Mode", 1);
    master.Set("Polyphony/Voice", 1);
    master.Render(256, 256, {{0, BR::Test::Midi(0x90, 60, 100)}, {100, BR::Test::Midi(0xE0, 0, 0x50)}});
    ASSERT_EQ(master.vc.BatchWrite(), 2);

    BR::Test::VoiceRig voice;
    voice.Set("Poly Mode", 2);
    voice.Set("Polyphony/Voice", 1);
    voice.Set("Pitch Wheel Range", 12);
    std::vector<float> in(64, 0.0f);
    in[3] = 1.0f;                                       // top byte 0x3F: nothing
    in[5] = 6.0f;                                       // snaps to batch 64: no marker
    in[10] = FromBits(Bits(MarkerSample(1)) + 0x7FFF);  // gain error up: snaps down to batch 1
    in[20] = 2.0f;                                      // exactly 2.0: batch 0
    in[30] = FromBits(Bits(MarkerSample(1)) - 0x10);    // gain error down: snaps up to batch 1
    const auto out = voice.Render(64, 64, {}, {in});
    EXPECT_EQ(out[1][19], 0.0f);
    EXPECT_EQ(out[1][20], 1.0f);
    EXPECT_EQ(voice.vc.CurrentNote(), 60.0f);
    // Batch 1 twice: the bend is set at sample 10 and again at 30.
    EXPECT_FLOAT_EQ(voice.vc.PitchBend(), float(0x2800 - 0x2000) * 12.0f * 0.00012207031f);
}

TEST(VoiceControllerMarker, NoMasterNoEvents) {
    BR::Test::VoiceRig voice;
    voice.Set("Poly Mode", 2);
    std::vector<float> in(16, MarkerSample(0));
    const auto out = voice.Render(16, 16, {}, {in});
    for (float gate : out[1])
        EXPECT_EQ(gate, 0.0f);
}
