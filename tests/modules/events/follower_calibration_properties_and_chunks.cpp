// The Follower's table is reached through 64016 to 64018, named through 64121, saved as "calf" (name)
// and "calt" (653 bytes); "Calibrated" mode reads the table and shows note and volts at bytes 8 and 12.
#include <gtest/gtest.h>

#include <cstring>

#include "FollowerSignals.h"
#include "framework/StateChunkStore.h"

namespace {

BR::ChunkRecord SaveChunky(BrelCorvaneBase& module) {
    uint32_t size = 0;
    EXPECT_EQ(module.GetChunkSize(BR::kChunkIdChunky, &size), BR::kNoErr);
    BR::ChunkRecord record;
    EXPECT_EQ(module.GetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    return record;
}

// Loads a state image holding `table` under "calt", as a host would hand it back.
void LoadTable(BrelCorvaneFollower::BrelCorvane& target, const std::vector<uint8_t>& table) {
    BR::StateChunkStore writer;
    writer.Add(BR::FourCC("calt"), table.data(), uint32_t(table.size()));
    const std::vector<uint8_t> image = writer.Flatten();
    BR::StateChunkStore reader;
    ASSERT_TRUE(reader.Parse(image.data(), image.size()));
    target.LoadExtraChunks(reader);
}

}  // namespace

TEST(FollowerCalibration, PropertiesGiveTheIdentityTable) {
    BrelCorvaneFollower::BrelCorvane follower;
    BR::CalibrationPoint* points = nullptr;
    uint8_t* valid = nullptr;
    int32_t count = 0;
    ASSERT_EQ(follower.GetProperty(BR::kPropertyCalibrationTable, &points), BR::kNoErr);
    ASSERT_EQ(follower.GetProperty(BR::kPropertyCalibrationValid, &valid), BR::kNoErr);
    ASSERT_EQ(follower.GetProperty(BR::kPropertyCalibrationCount, &count), BR::kNoErr);
    EXPECT_EQ(points, follower.Calibration().notes);
    EXPECT_EQ(valid, follower.Calibration().valid);
    EXPECT_EQ(count, 129);
    for (int i = 0; i < 128; ++i) {
        EXPECT_EQ(points[i].x, float(i));
        EXPECT_EQ(points[i].value, 0.0f);
        EXPECT_EQ(valid[i], 0);
    }
    const char name[] = "/home/user/osc.txt";
    EXPECT_EQ(follower.SetProperty(BR::kPropertyCalibrationName, name, sizeof name), BR::kNoErr);
    const char* read = nullptr;
    ASSERT_EQ(follower.GetProperty(BR::kPropertyCalibrationName, &read), BR::kNoErr);
    EXPECT_STREQ(read, name);
    uint32_t size = 0;
    bool writable = false;
    ASSERT_EQ(follower.GetPropertyInfo(BR::kPropertyCalibrationName, &size, &writable), BR::kNoErr);
    EXPECT_EQ(size, sizeof name);
    EXPECT_TRUE(writable);
}

TEST(FollowerCalibration, ChunksRoundTripWithName) {
    BrelCorvaneFollower::BrelCorvane source;
    source.Calibration().MakeArdent();
    source.Calibration().notes[5].value = -0.625f;
    const char name[] = "tuned.txt";
    source.SetProperty(BR::kPropertyCalibrationName, name, sizeof name);
    BR::ChunkRecord record = SaveChunky(source);
    BR::StateChunkStore store;
    ASSERT_TRUE(store.Parse(record.data.data(), record.data.size()));
    BR::StateChunkStore::Blob blob;
    ASSERT_TRUE(store.Find(BR::FourCC("calt"), blob));
    EXPECT_EQ(blob.length, 656u);  // 653 bytes padded to whole words
    uint32_t version = 0, count = 0;
    std::memcpy(&version, blob.data, 4);
    std::memcpy(&count, blob.data + 4, 4);
    EXPECT_EQ(version, 1u);
    EXPECT_EQ(count, 129u);
    ASSERT_TRUE(store.Find(BR::FourCC("calf"), blob));
    EXPECT_STREQ(reinterpret_cast<const char*>(blob.data), name);

    BrelCorvaneFollower::BrelCorvane target;
    ASSERT_EQ(target.SetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    for (int k = 0; k < 129; ++k) {
        EXPECT_EQ(target.Calibration().notes[k].value, source.Calibration().notes[k].value) << k;
        EXPECT_EQ(target.Calibration().valid[k], source.Calibration().valid[k]) << k;
    }
    EXPECT_EQ(target.CalibrationName(), "tuned.txt");
}

TEST(FollowerCalibration, MalformedTableChunksAreIgnored) {
    BrelCorvaneFollower::BrelCorvane source;
    source.Calibration().notes[7].value = 0.5f;
    for (int variant = 0; variant < 3; ++variant) {
        // Version 2; a count of 129 in a block too short for it; a block of 4 bytes.
        std::vector<uint8_t> table = source.Calibration().SaveChunk();
        if (variant == 0) table[0] = 2;
        if (variant == 1) table.resize(400);
        if (variant == 2) table.resize(4);
        BrelCorvaneFollower::BrelCorvane target;
        LoadTable(target, table);
        EXPECT_EQ(target.Calibration().notes[7].value, 0.0f) << variant;
    }
    // A larger count in a block that holds it: the first 129 entries are taken.
    std::vector<uint8_t> big(8 + 200 * 5, 0);
    const uint32_t head[2] = {1, 200};
    std::memcpy(big.data(), head, 8);
    const float v = 0.25f;
    std::memcpy(big.data() + 8 + 4 * 128, &v, 4);
    big[8 + 200 * 4 + 128] = 1;
    BrelCorvaneFollower::BrelCorvane target;
    LoadTable(target, big);
    EXPECT_EQ(target.Calibration().notes[128].value, 0.25f);
    EXPECT_EQ(target.Calibration().valid[128], 1);
}

TEST(FollowerCalibration, CalibratedModeInterpolatesTheTable) {
    auto driver = BR::Test::MakeDriver("follower", 44100.0f);
    auto& follower = BR::Test::Follower(*driver);
    for (int i = 0; i < 129; ++i)
        follower.Calibration().notes[i].value = float(i) * 0.01f;
    driver->SetParameterByName("Pitch Mode", 2.0f);
    driver->SetParameterByName("Zero V Coarse", 60.0f);  // shifts the note down by 12
    BR::Test::RenderStepping(*driver, BR::Test::Sine(440.0f, 44100.0f, 44100), 256);
    ASSERT_FALSE(follower.NoPitch());
    const float note = std::log(follower.Frequency() * 0.0022727272f) * 1.442695f * 12.0f + 69.0f - 12.0f;
    EXPECT_NEAR(note, 57.0f, 0.02f);
    EXPECT_NEAR(follower.PitchVolts(), note * 0.01f, 1e-5f);
    EXPECT_EQ(follower.PitchOut(), follower.PitchVolts());  // no scale: the table holds sample values
    const uint8_t* bytes = driver->Module().GetStatusBlock()->moduleData;
    float shownNote = 0, shownVolts = 0;
    std::memcpy(&shownNote, bytes + 8, 4);
    std::memcpy(&shownVolts, bytes + 12, 4);
    EXPECT_NEAR(shownNote, 57.0f, 0.02f);
    EXPECT_EQ(shownVolts, follower.PitchVolts());
}
