// "Fingered": the first note of a phrase jumps, a second overlapping note glides, and that state lasts
// until the next note-on.
#include <gtest/gtest.h>

#include <cmath>

#include "VoiceControllerRig.h"

using BR::Test::Midi;

TEST(VoiceControllerPortamento, FingeredGlidesOnlyOverlappingNotes) {
    BR::Test::VoiceRig rig;
    rig.LinearCalibration();
    rig.Set("Portamento Mode", 2);
    rig.Set("Portamento Time", 0.01f);
    auto out = rig.Render(1024, 256, {{0, Midi(0x90, 60, 100)}, {500, Midi(0x90, 72, 100)}});
    EXPECT_FLOAT_EQ(out[0][0], 60 / 128.0f);  // first note: jumps
    // Overlapping: a one-pole glide toward 72 with exp(-4 / (0.01 * 48000)) per sample.
    const float c = std::exp(-4.0f / (0.01f * 48000.0f));
    EXPECT_FLOAT_EQ(out[0][500], (60 / 128.0f - 72 / 128.0f) * c + 72 / 128.0f);
    EXPECT_LT(out[0][600], 72 / 128.0f);
    EXPECT_GT(out[0][600], out[0][500]);
    EXPECT_TRUE(rig.vc.PortamentoActive());

    // Both released: the state stays until the next note-on, which starts a phrase and jumps.
    rig.Render(9000, 256, {{0, Midi(0x80, 72, 0)}, {10, Midi(0x80, 60, 0)}});
    EXPECT_TRUE(rig.vc.PortamentoActive());
    out = rig.Render(256, 256, {{100, Midi(0x90, 48, 100)}});
    EXPECT_FALSE(rig.vc.PortamentoActive());
    EXPECT_FLOAT_EQ(out[0][100], 48 / 128.0f);
}
