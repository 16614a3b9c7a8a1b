// The "calf" chunk keeps the calibration's name with its terminator, "cals" the grid in 1040 bytes
// (version 1, count, the voltages and the notes right behind them); loading takes what is well formed.
#include <gtest/gtest.h>

#include <cstring>

#include "QuantizerRig.h"
#include "framework/StateChunkStore.h"

namespace {

constexpr uint32_t kCalf = 0x63616C66, kCals = 0x63616C73;

std::vector<uint8_t> Chunky(BrelCorvaneBase& module) {
    uint32_t size = 0;
    module.GetChunkSize(BR::kChunkIdChunky, &size);
    BR::ChunkRecord record{};
    module.GetChunk(BR::kChunkIdChunky, &record);
    return record.data;
}

void Restore(BrelCorvaneBase& module, const BR::StateChunkStore& store) {
    BR::ChunkRecord record{};
    record.chunkId = BR::kChunkIdChunky;
    record.data = store.Flatten();
    record.size = uint32_t(record.data.size());
    ASSERT_EQ(module.SetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
}

void Put(std::vector<uint8_t>& bytes, size_t at, uint32_t value) {
    for (int b = 0; b < 4; ++b)
        bytes[at + size_t(b)] = uint8_t(value >> (8 * b));
}

void PutFloat(std::vector<uint8_t>& bytes, size_t at, float value) {
    uint32_t bits;
    std::memcpy(&bits, &value, 4);
    Put(bytes, at, bits);
}

float GetFloat(const uint8_t* at) {
    const uint32_t bits = BR::ReadU32(at);
    float value;
    std::memcpy(&value, &bits, 4);
    return value;
}

}  // namespace

TEST(QuantizerChunks, LayoutAndRoundTrip) {
    auto driver = BR::Test::MakeQuantizer();
    BR::Test::SetGrid(*driver, {-0.25f, 0.0f, 0.5f}, {40, 52, 71});
    const char name[] = "grid.txt";
    driver->Module().SetProperty(BR::kPropertyCalibrationName, name, sizeof name);
    const std::vector<uint8_t> image = Chunky(driver->Module());

    BR::StateChunkStore store;
    ASSERT_TRUE(store.Parse(image.data(), image.size()));
    BR::StateChunkStore::Blob blob;
    ASSERT_TRUE(store.Find(kCalf, blob));
    EXPECT_EQ(blob.length, 12u);  // nine bytes with the terminator, padded to four
    EXPECT_EQ(std::memcmp(blob.data, "grid.txt\0", 9), 0);
    ASSERT_TRUE(store.Find(kCals, blob));
    ASSERT_EQ(blob.length, 1040u);
    EXPECT_EQ(BR::ReadU32(blob.data), 1u);
    EXPECT_EQ(BR::ReadU32(blob.data + 4), 3u);
    EXPECT_EQ(GetFloat(blob.data + 8), -0.25f);
    EXPECT_EQ(GetFloat(blob.data + 12), 0.0f);
    EXPECT_EQ(GetFloat(blob.data + 16), 0.5f);
    EXPECT_EQ(BR::ReadU32(blob.data + 20), 40u);  // notes right behind the third voltage
    EXPECT_EQ(BR::ReadU32(blob.data + 24), 52u);
    EXPECT_EQ(BR::ReadU32(blob.data + 28), 71u);

    auto other = BR::Test::MakeQuantizer();
    BR::ChunkRecord record{};
    record.data = image;
    record.size = uint32_t(image.size());
    ASSERT_EQ(other->Module().SetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    const auto& loaded = BR::Test::Quantizer(*other);
    EXPECT_EQ(loaded.CalibrationName(), "grid.txt");
    ASSERT_EQ(loaded.Calibration().count, 3);
    EXPECT_EQ(loaded.Calibration().voltages[2], 0.5f);
    EXPECT_EQ(loaded.Calibration().notes[1], 52);
}

TEST(QuantizerChunks, MalformedStepsAreIgnored) {
    auto driver = BR::Test::MakeQuantizer();
    BR::Test::SetGrid(*driver, {0.125f, 0.25f}, {1, 2});
    auto& quantizer = BR::Test::Quantizer(*driver);

    auto tryLoad = [&](std::vector<uint8_t> bytes) {
        BR::StateChunkStore store;
        store.Add(kCals, bytes.data(), uint32_t(bytes.size()));
        Restore(driver->Module(), store);
    };
    tryLoad(std::vector<uint8_t>(8, 0));  // shorter than 9 bytes
    std::vector<uint8_t> wrongVersion(1040, 0);
    Put(wrongVersion, 0, 2);
    Put(wrongVersion, 4, 1);
    tryLoad(wrongVersion);
    std::vector<uint8_t> tooShort(24, 0);  // count 3 needs 3 * 8 + 8 = 32 bytes
    Put(tooShort, 0, 1);
    Put(tooShort, 4, 3);
    tryLoad(tooShort);
    ASSERT_EQ(quantizer.Calibration().count, 2);
    EXPECT_EQ(quantizer.Calibration().voltages[0], 0.125f);

    // Exactly count * 8 + 8 bytes is enough, and "calf" alone sets only the name.
    std::vector<uint8_t> exact(24, 0);
    Put(exact, 0, 1);
    Put(exact, 4, 2);
    PutFloat(exact, 8, -0.5f);
    PutFloat(exact, 12, 0.75f);
    Put(exact, 16, 7);
    Put(exact, 20, 9);
    tryLoad(exact);
    ASSERT_EQ(quantizer.Calibration().count, 2);
    EXPECT_EQ(quantizer.Calibration().voltages[1], 0.75f);
    EXPECT_EQ(quantizer.Calibration().notes[1], 9);

    BR::StateChunkStore nameOnly;
    nameOnly.Add(kCalf, "kept", 5);
    Restore(driver->Module(), nameOnly);
    EXPECT_EQ(quantizer.CalibrationName(), "kept");
    EXPECT_EQ(quantizer.Calibration().count, 2);
}

TEST(QuantizerChunks, AtMost129EntriesFromTheStoredLayout) {
    auto driver = BR::Test::MakeQuantizer();
    const uint32_t stored = 200;
    std::vector<uint8_t> bytes(stored * 8 + 8, 0);
    Put(bytes, 0, 1);
    Put(bytes, 4, stored);
    for (uint32_t i = 0; i < stored; ++i) {
        PutFloat(bytes, 8 + 4 * i, float(i) / 256.0f);
        Put(bytes, 8 + 4 * (stored + i), 1000 + i);
    }
    BR::StateChunkStore store;
    store.Add(kCals, bytes.data(), uint32_t(bytes.size()));
    Restore(driver->Module(), store);
    const BR::QuantizerTable& table = BR::Test::Quantizer(*driver).Calibration();
    ASSERT_EQ(table.count, 129);
    EXPECT_EQ(table.voltages[128], 128.0f / 256.0f);
    EXPECT_EQ(table.notes[0], 1000);  // read behind all 200 stored voltages
    EXPECT_EQ(table.notes[128], 1128);
}
