// The "elck" chunk holds every parameter's identifier and value, Master Bypass among them, and gives
// them back exactly. Restoring calls PrepareParameterRestore first; parameters that the chunk lacks
// keep their values; a damaged chunk is refused whole and changes nothing.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "framework/StateChunkStore.h"
#include "tests/support/ProbeModule.h"

using namespace BR::Test;

namespace {
class Restorable : public ProbeModule {
public:
    void PrepareParameterRestore() override {
        ++prepares;
        gainAtPrepare = GetTableValue(kGain);
    }
    int prepares = 0;
    float gainAtPrepare = 0;
};

BR::ChunkRecord Controls(BrelCorvaneBase& module) {
    uint32_t size = 0;
    EXPECT_EQ(module.GetChunkSize(BR::kChunkIdControls, &size), BR::kNoErr);
    BR::ChunkRecord record{};
    EXPECT_EQ(module.GetChunk(BR::kChunkIdControls, &record), BR::kNoErr);
    EXPECT_EQ(record.data.size(), size);
    return record;
}

// "Ctl1", count, then {u16 length, identifier, u8 kind, f32 bits} per parameter.
std::vector<uint8_t> Entry(const std::string& id, uint8_t kind, float value) {
    std::vector<uint8_t> bytes;
    bytes.push_back(uint8_t(id.size()));
    bytes.push_back(uint8_t(id.size() >> 8));
    for (char c : id)
        bytes.push_back(uint8_t(c));
    bytes.push_back(kind);
    uint32_t bits = 0;
    std::memcpy(&bits, &value, 4);
    BR::AppendU32(bytes, bits);
    return bytes;
}
BR::ChunkRecord Chunk(const std::vector<std::vector<uint8_t>>& entries, uint32_t count) {
    BR::ChunkRecord record{};
    BR::AppendU32(record.data, BR::FourCC("Ctl1"));
    BR::AppendU32(record.data, count);
    for (const auto& entry : entries)
        record.data.insert(record.data.end(), entry.begin(), entry.end());
    record.size = uint32_t(record.data.size());
    return record;
}
}  // namespace

TEST(ControlsChunk, RoundTripIsExact) {
    Restorable saved;
    ManualHost savedHost(saved);
    saved.SetTableValue(kGain, 0.123456789f);
    saved.SetTableValue(kMode, 2);
    saved.SetTableValue(kSwitch, 1);
    saved.SetTableValue(kOSCPort, 17);
    saved.SetTableValue(kSmoothing, -333.3333f);
    saved.SetTableValue(kCutoff, 12345.678f);
    saved.SetParameterValue(0, 1.0f);
    const BR::ChunkRecord record = Controls(saved);
    // Seven parameters: magic and count, then each identifier with 7 bytes around it.
    size_t expected = 8;
    for (int32_t i = 0; i < saved.GetNumberOfParameters(); ++i)
        expected += 7 + saved.GetParameter(i)->Identifier().size();
    EXPECT_EQ(record.data.size(), expected);

    Restorable loaded;
    ManualHost loadedHost(loaded);
    ASSERT_EQ(loaded.SetChunk(BR::kChunkIdControls, &record), BR::kNoErr);
    EXPECT_EQ(loaded.prepares, 1);
    for (int32_t i = 0; i < saved.GetNumberOfParameters(); ++i)
        EXPECT_EQ(loaded.GetParameter(i)->GetValueAsFloat(), saved.GetParameter(i)->GetValueAsFloat()) << i;
    EXPECT_TRUE(loaded.GetParameter(0)->GetValueAsBool());
}

TEST(ControlsChunk, PrepareComesFirstAndMissingParametersKeepTheirValues) {
    Restorable module;
    ManualHost host(module);
    module.SetTableValue(kGain, 0.75f);
    module.SetTableValue(kCutoff, 440.0f);
    const BR::ChunkRecord record = Chunk({Entry("Gain", 0, -0.25f), Entry("Not A Row", 0, 3.0f)}, 2);
    ASSERT_EQ(module.SetChunk(BR::kChunkIdControls, &record), BR::kNoErr);
    EXPECT_EQ(module.prepares, 1);
    EXPECT_EQ(module.gainAtPrepare, 0.75f);  // before the chunk's value
    EXPECT_EQ(module.GetTableValue(kGain), -0.25f);
    EXPECT_EQ(module.GetTableValue(kCutoff), 440.0f);
}

TEST(ControlsChunk, ADamagedChunkChangesNothing) {
    Restorable module;
    ManualHost host(module);
    module.SetTableValue(kGain, 0.75f);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    std::vector<BR::ChunkRecord> bad = {
        Chunk({Entry("Gain", 0, 0.5f)}, 2),                          // fewer entries than counted
        Chunk({Entry("Gain", 0, 0.5f), Entry("Cutoff", 0, 50)}, 1),  // bytes left over
        Chunk({Entry("Gain", 3, 0.5f)}, 1),                          // no such kind
        Chunk({Entry("Cutoff", 0, 50), Entry("Gain", 0, nan)}, 2),   // not a number
    };
    BR::ChunkRecord wrongMagic = Chunk({Entry("Gain", 0, 0.5f)}, 1);
    wrongMagic.data[0] ^= 1;
    bad.push_back(wrongMagic);
    BR::ChunkRecord truncated = Chunk({Entry("Gain", 0, 0.5f)}, 1);
    truncated.data.pop_back();
    bad.push_back(truncated);
    bad.push_back(BR::ChunkRecord{});
    for (const BR::ChunkRecord& record : bad) {
        EXPECT_NE(module.SetChunk(BR::kChunkIdControls, &record), BR::kNoErr);
        EXPECT_EQ(module.GetTableValue(kGain), 0.75f);
        EXPECT_EQ(module.GetTableValue(kCutoff), 1000.0f);
    }
    EXPECT_EQ(module.prepares, 0);
}
