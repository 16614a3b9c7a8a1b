// Soundplane's names, rows, defaults and display texts; the calibration properties, the formula tables
// made on the audio thread and named at once, the learn switch shared by every instance, and the
// calibration chunks of the Follower's kind.
#include <gtest/gtest.h>

#include "SoundplaneRig.h"
#include "framework/StateChunkStore.h"

using namespace BR::Test;
using namespace BrelCorvaneSoundplane;

TEST(SoundplaneIdentity, NamesRowsAndDisplay) {
    SoundplaneRig rig;
    BrelCorvane& m = rig.Module();
    EXPECT_STREQ(m.GetModuleName(), "Corvane Soundplane");
    EXPECT_STREQ(m.GetGuiScriptName(), "gui_soundplane.lua");
    EXPECT_EQ(m.NumInputs(), 0);
    EXPECT_EQ(m.NumOutputs(), 6);
    EXPECT_EQ(m.NumAuxOutputs(), 2);
    ASSERT_EQ(m.NumTableParameters(), 45);
    const BR::ParameterDefinition* rows = m.ParameterTable();
    EXPECT_STREQ(rows[0].name, "Voice ID");
    EXPECT_EQ(rows[0].defaultValue, 1.0f);
    EXPECT_EQ(rows[0].maximum, 16.0f);
    const char* sources[] = {"Offset", "Note", "Gate", "X", "Y", "Z"};
    for (int k = 0; k < 6; ++k) {
        for (int s = 0; s < 6; ++s) {
            const BR::ParameterDefinition& row = rows[1 + 6 * k + s];
            EXPECT_EQ(std::string(row.name), "Output " + std::to_string(k + 1) + " " + sources[s]);
            EXPECT_EQ(row.minimum, -1.0f);
            EXPECT_EQ(row.maximum, 1.0f);
            // Output 1 the note, 2 the gate, 3 x, 4 y, 5 z, 6 nothing.
            EXPECT_EQ(row.defaultValue, k < 5 && s == k + 1 ? 1.0f : 0.0f) << row.name;
        }
        EXPECT_EQ(std::string(rows[37 + k].name), "Output " + std::to_string(k + 1) + " Smoothing");
        EXPECT_EQ(rows[37 + k].minimum, -500.0f);
        EXPECT_EQ(m.GetParameterFlags(37 + k), BR::kDisplayStringFlag);
    }
    EXPECT_STREQ(rows[43].name, "Gate Z");
    EXPECT_STREQ(rows[44].name, "OSC Port Offset");
    EXPECT_EQ(m.GetParameterFlags(0), BR::kDisplayStringFlag);
    EXPECT_EQ(m.GetParameterFlags(44), BR::kDisplayStringFlag);
    EXPECT_EQ(m.GetParameterFlags(43), 0u);
    EXPECT_EQ(m.GetParameterFlags(1), 0u);
    char text[25];
    m.GetParameterValueText(44, text);
    EXPECT_STREQ(text, "Off");
    m.GetParameterValueText(37, text);
    EXPECT_STREQ(text, "Off");
    // Identity notes, values 0.
    for (int i = 0; i < 128; ++i) {
        EXPECT_EQ(m.Calibration().notes[i].x, float(i));
        EXPECT_EQ(m.Calibration().notes[i].value, 0.0f);
    }
}

TEST(SoundplaneIdentity, CalibrationPropertiesAndFormulaTables) {
    SoundplaneRig rig;
    BrelCorvane& m = rig.Module();
    const BR::CalibrationPoint* points = nullptr;
    ASSERT_EQ(m.GetProperty(64016, &points), 0);
    EXPECT_EQ(points, m.Calibration().notes);
    const uint8_t* valid = nullptr;
    ASSERT_EQ(m.GetProperty(64017, &valid), 0);
    EXPECT_EQ(valid, m.Calibration().valid);
    int32_t count = 0;
    ASSERT_EQ(m.GetProperty(64018, &count), 0);
    EXPECT_EQ(count, 129);
    EXPECT_NE(m.GetPropertyInfo(64020, nullptr, nullptr), 0);  // no naming time: not a transfer source
    // Ardent: made on the audio thread at the next block, named at once.
    EXPECT_EQ(m.SetProperty(64090, nullptr, 0), 0);
    EXPECT_EQ(m.CalibrationName(), "<Ardent Calibration>");
    EXPECT_EQ(m.Calibration().notes[60].value, 0.0f);
    rig.Render(16);
    EXPECT_FLOAT_EQ(m.Calibration().notes[60].value, 12 * 0.015686275f);
    EXPECT_EQ(m.Calibration().valid[60], 1);
    EXPECT_EQ(m.SetProperty(64091, nullptr, 0), 0);
    rig.Render(16);
    EXPECT_EQ(m.CalibrationName(), "<Cinder Calibration>");
    EXPECT_EQ(m.Calibration().notes[60].value, 0.0f);  // Cinder: note 60 is level 0
    EXPECT_EQ(m.Calibration().valid[60], 0);
    const char name[] = "my table.txt";
    EXPECT_EQ(m.SetProperty(64121, name, sizeof name), 0);
    const char* shown = nullptr;
    ASSERT_EQ(m.GetProperty(64121, &shown), 0);
    EXPECT_STREQ(shown, "my table.txt");
    uint32_t size = 0;
    bool writable = false;
    ASSERT_EQ(m.GetPropertyInfo(64121, &size, &writable), 0);
    EXPECT_EQ(size, sizeof name);
    EXPECT_TRUE(writable);
}

TEST(SoundplaneIdentity, LearnSwitchIsProcessWide) {
    SoundplaneRig a, b;
    const uint8_t on = 1, off = 0;
    ASSERT_EQ(a.Module().SetProperty(64130, &on, 1), 0);
    uint8_t seen = 0;
    ASSERT_EQ(b.Module().GetProperty(64130, &seen), 0);
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(BR::GetLearnActive(), 1);
    ASSERT_EQ(b.Module().SetProperty(64130, &off, 1), 0);
    ASSERT_EQ(a.Module().GetProperty(64130, &seen), 0);
    EXPECT_EQ(seen, 0);
    EXPECT_EQ(a.Module().SetProperty(64130, nullptr, 0), BR::kErrInvalidProperty);
}

TEST(SoundplaneIdentity, CalibrationChunksRoundTrip) {
    SoundplaneRig a;
    a.Module().Calibration().MakeArdent();
    a.Module().Calibration().notes[5].value = -0.625f;
    const char name[] = "tuned.txt";
    a.Module().SetProperty(64121, name, sizeof name);
    BR::StateChunkStore saved;
    a.Module().SaveExtraChunks(saved);
    const std::vector<uint8_t> image = saved.Flatten();
    BR::StateChunkStore store;
    ASSERT_TRUE(store.Parse(image.data(), image.size()));
    BR::StateChunkStore::Blob blob;
    ASSERT_TRUE(store.Find(BR::FourCC("calt"), blob));
    EXPECT_GE(blob.length, 653u);
    ASSERT_TRUE(store.Find(BR::FourCC("calf"), blob));
    SoundplaneRig b;
    b.Module().LoadExtraChunks(store);
    EXPECT_EQ(b.Module().CalibrationName(), "tuned.txt");
    for (int k = 0; k < 129; ++k) {
        EXPECT_EQ(b.Module().Calibration().notes[k].value, a.Module().Calibration().notes[k].value) << k;
        EXPECT_EQ(b.Module().Calibration().valid[k], a.Module().Calibration().valid[k]) << k;
    }
}
