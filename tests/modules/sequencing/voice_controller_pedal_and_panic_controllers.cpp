// Controllers of one voice: 64 holds the release until the pedal goes up; 120 (and property 64094)
// closes the gate and silences the envelopes at once; 123 releases every held note, but with the pedal
// down the envelopes stay in their stage while the gate closes.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"

using BR::Test::Midi;

TEST(VoiceControllerControllers, PedalHoldsTheRelease) {
    BR::Test::VoiceRig rig;
    rig.Render(512, 256, {{0, Midi(0x90, 60, 100)}, {10, Midi(0xB0, 64, 100)}, {20, Midi(0x80, 60, 64)}});
    EXPECT_TRUE(rig.vc.GateOpen());
    EXPECT_EQ(rig.vc.HeldCount(), 0);
    EXPECT_GE(rig.vc.GetEnvelope(0).stageIndex, BR::kEnvSustain);
    const auto out = rig.Render(256, 256, {{0, Midi(0xB0, 64, 63)}});  // below 64: off
    EXPECT_FALSE(rig.vc.GateOpen());
    EXPECT_EQ(out[1][0], 0.0f);
    EXPECT_LE(rig.vc.GetEnvelope(0).stageIndex, BR::kEnvR1);
}

TEST(VoiceControllerControllers, AllNotesOffWithPedalKeepsTheStage) {
    BR::Test::VoiceRig rig;
    rig.Render(12000, 256, {{0, Midi(0x90, 60, 100)}, {5, Midi(0x90, 64, 100)}, {10, Midi(0xB0, 64, 127)}});
    ASSERT_EQ(rig.vc.GetEnvelope(0).stageIndex, BR::kEnvSustain);
    const auto out = rig.Render(256, 256, {{0, Midi(0xB0, 123, 0)}});
    EXPECT_EQ(rig.vc.HeldCount(), 0);
    EXPECT_FALSE(rig.vc.GateOpen());
    EXPECT_EQ(out[1][0], 0.0f);
    EXPECT_EQ(rig.vc.GetEnvelope(0).stageIndex, BR::kEnvSustain);
    EXPECT_FLOAT_EQ(out[2][255], 0.5f);
}

TEST(VoiceControllerControllers, AllNotesOffWithoutPedalReleases) {
    BR::Test::VoiceRig rig;
    rig.Render(12000, 256, {{0, Midi(0x90, 60, 100)}, {5, Midi(0x90, 64, 100)}});
    rig.Render(256, 256, {{0, Midi(0xB0, 123, 0)}});
    EXPECT_EQ(rig.vc.HeldCount(), 0);
    EXPECT_FALSE(rig.vc.GateOpen());
    EXPECT_LE(rig.vc.GetEnvelope(0).stageIndex, BR::kEnvR1);
    // Released from low to high: 60 first falls back to 64, then 64 goes.
    EXPECT_EQ(rig.vc.CurrentNote(), 64.0f);
}

TEST(VoiceControllerControllers, AllGatesOffByControllerAndProperty) {
    for (int viaProperty = 0; viaProperty < 2; ++viaProperty) {
        BR::Test::VoiceRig rig;
        rig.Render(12000, 256, {{0, Midi(0x90, 48, 100)}, {10, Midi(0xB0, 64, 127)}});
        std::vector<BR::Test::MidiAt> midi;
        if (viaProperty) {
            const uint8_t one = 1;
            ASSERT_EQ(rig.vc.SetProperty(BrelCorvaneVoiceController::kPropertyDontPanic, &one, 1),
                      BR::kNoErr);
        } else {
            midi.push_back({0, Midi(0xB0, 120, 0)});
        }
        const auto out = rig.Render(256, 256, midi);
        EXPECT_FALSE(rig.vc.GateOpen());
        EXPECT_EQ(rig.vc.HeldCount(), 0);
        EXPECT_EQ(rig.vc.CurrentNote(), 60.0f);
        for (int e = 0; e < 3; ++e) {
            EXPECT_EQ(rig.vc.GetEnvelope(e).stageIndex, 0);
            EXPECT_EQ(rig.vc.GetEnvelope(e).level, 0.0f);
        }
        EXPECT_EQ(out[2][0], 0.0f);
        // The pedal went off too: a new note releases normally.
        rig.Render(256, 256, {{0, Midi(0x90, 50, 100)}, {100, Midi(0x80, 50, 0)}});
        EXPECT_FALSE(rig.vc.GateOpen());
    }
}

TEST(VoiceControllerControllers, PitchBend) {
    BR::Test::VoiceRig rig;
    rig.LinearCalibration();
    rig.Set("Pitch Wheel Range", 12);
    rig.Render(64, 64, {{0, Midi(0x90, 60, 100)}, {0, Midi(0xE0, 0x7F, 0x7F)}});
    EXPECT_FLOAT_EQ(rig.vc.PitchBend(), 8191.0f * 12.0f * 0.00012207031f);
    auto out = rig.Render(64, 64, {{0, Midi(0xE0, 0, 0)}});
    EXPECT_FLOAT_EQ(rig.vc.PitchBend(), -12.0f);
    EXPECT_FLOAT_EQ(out[0][0], 48.0f / 128.0f);
    out = rig.Render(64, 64, {{0, Midi(0xE0, 0, 0x40)}});
    EXPECT_EQ(rig.vc.PitchBend(), 0.0f);
    EXPECT_FLOAT_EQ(out[0][0], 60.0f / 128.0f);
}
