// The table is reached through properties 64016 to 64018, named through 64121 (which also stamps
// 64020), and saved in the "Chnk" state as the "calt" entry, without its name.
#include <gtest/gtest.h>

#include <cstring>

#include "VoiceControllerRig.h"
#include "framework/StateChunkStore.h"

TEST(VoiceControllerCalibration, Properties) {
    BR::Test::VoiceRig rig;
    BR::CalibrationPoint* points = nullptr;
    uint8_t* valid = nullptr;
    int32_t count = 0;
    ASSERT_EQ(rig.vc.GetProperty(BR::kPropertyCalibrationTable, &points), BR::kNoErr);
    ASSERT_EQ(rig.vc.GetProperty(BR::kPropertyCalibrationValid, &valid), BR::kNoErr);
    ASSERT_EQ(rig.vc.GetProperty(BR::kPropertyCalibrationCount, &count), BR::kNoErr);
    EXPECT_EQ(points, rig.vc.Calibration().notes);
    EXPECT_EQ(valid, rig.vc.Calibration().valid);
    EXPECT_EQ(count, 129);
    // Pairs lie interleaved: x then value.
    EXPECT_EQ(reinterpret_cast<float*>(points)[2 * 100], 100.0f);
    EXPECT_EQ(points[128].x, 0.0f);

    int64_t time = -1;
    ASSERT_EQ(rig.vc.GetProperty(BR::kPropertyCalibrationTime, &time), BR::kNoErr);
    EXPECT_EQ(time, 0);
    const char name[] = "/home/user/vco.txt";
    EXPECT_EQ(rig.vc.SetProperty(BR::kPropertyCalibrationName, name, sizeof name), BR::kNoErr);
    const char* read = nullptr;
    ASSERT_EQ(rig.vc.GetProperty(BR::kPropertyCalibrationName, &read), BR::kNoErr);
    EXPECT_STREQ(read, name);
    rig.vc.GetProperty(BR::kPropertyCalibrationTime, &time);
    EXPECT_GT(time, 0);

    int32_t rows[4] = {};
    ASSERT_EQ(rig.vc.GetProperty(BrelCorvaneVoiceController::kPropertyEnvelopeRows, rows), BR::kNoErr);
    EXPECT_EQ(rows[0], 12);
    EXPECT_EQ(rows[1], 14);
    EXPECT_EQ(rows[2], 137);
    EXPECT_EQ(rows[3], 5);
}

TEST(VoiceControllerCalibration, ChunkRoundTripWithoutName) {
    BR::Test::VoiceRig source;
    source.vc.Calibration().MakeArdent();
    source.vc.Calibration().notes[3].value = -0.75f;
    const char name[] = "tuned.txt";
    source.vc.SetProperty(BR::kPropertyCalibrationName, name, sizeof name);
    uint32_t size = 0;
    ASSERT_EQ(source.vc.GetChunkSize(BR::kChunkIdChunky, &size), BR::kNoErr);
    BR::ChunkRecord record;
    ASSERT_EQ(source.vc.GetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    BR::StateChunkStore store;
    ASSERT_TRUE(store.Parse(record.data.data(), record.data.size()));
    BR::StateChunkStore::Blob blob;
    ASSERT_TRUE(store.Find(BR::FourCC("calt"), blob));
    EXPECT_EQ(blob.length, 656u);  // 653 bytes padded to whole words

    BR::Test::VoiceRig target;
    ASSERT_EQ(target.vc.SetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    const auto& a = source.vc.Calibration();
    const auto& b = target.vc.Calibration();
    for (int k = 0; k < 129; ++k) {
        EXPECT_EQ(b.notes[k].value, a.notes[k].value) << k;
        EXPECT_EQ(b.valid[k], a.valid[k]) << k;
    }
    EXPECT_EQ(target.vc.CalibrationName(), "");
    int64_t time = -1;
    target.vc.GetProperty(BR::kPropertyCalibrationTime, &time);
    EXPECT_EQ(time, 0);
}

TEST(VoiceControllerCalibration, FormulaTablesOnTheAudioThread) {
    BR::Test::VoiceRig rig;
    rig.Set("Output 1 Pitch", 1.0f);
    const uint8_t one = 1;
    ASSERT_EQ(rig.vc.SetProperty(BR::kPropertyMakeArdentTable, &one, 1), BR::kNoErr);
    EXPECT_EQ(rig.vc.Calibration().valid[48], 0);  // not before the next block
    auto out = rig.Render(64, 64, {{0, BR::Test::Midi(0x90, 49, 100)}});
    EXPECT_EQ(rig.vc.Calibration().valid[48], 1);
    EXPECT_FLOAT_EQ(out[0][10], 0.015686275f);
    int64_t time = -1;
    rig.vc.GetProperty(BR::kPropertyCalibrationTime, &time);
    EXPECT_EQ(time, 0);  // a formula table gets no name

    ASSERT_EQ(rig.vc.SetProperty(BR::kPropertyMakeCinderTable, &one, 1), BR::kNoErr);
    out = rig.Render(64, 64, {{0, BR::Test::Midi(0x90, 60, 100)}});
    EXPECT_EQ(out[0][10], 0.0f);
    for (int k = 0; k < 129; ++k)
        ASSERT_EQ(rig.vc.Calibration().valid[k], 0);
}

TEST(VoiceControllerCalibration, PrepareRestoreMakesCurvesParabolic) {
    BR::Test::VoiceRig rig;
    EXPECT_EQ(rig.vc.GetTableValue(137), 1.0f);
    rig.vc.PrepareParameterRestore();
    for (int k = 137; k < 152; ++k)
        EXPECT_EQ(rig.vc.GetTableValue(k), 0.0f) << k;
    EXPECT_EQ(rig.vc.GetTableValue(136), 0.0f);
    EXPECT_EQ(rig.vc.GetTableValue(133), 0.2f);
}
