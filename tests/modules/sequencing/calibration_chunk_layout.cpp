// The "calt" payload is 653 bytes: version 1, count 129, 129 float values, 129 valid bytes. Loading
// needs at least 9 bytes, version 1 and count * 5 + 8 bytes, takes at most 129 entries and turns every
// valid byte into 0 or 1; a refused payload leaves the table as it was.
#include <gtest/gtest.h>

#include <cstring>

#include "framework/StateChunkStore.h"
#include "modules/sequencing/Calibration.h"

namespace {
std::vector<uint8_t> Payload(uint32_t version, uint32_t count, float base, uint8_t flag) {
    std::vector<uint8_t> data;
    BR::AppendU32(data, version);
    BR::AppendU32(data, count);
    for (uint32_t k = 0; k < count; ++k) {
        const float v = base + float(k) * 0.001f;
        uint32_t bits;
        std::memcpy(&bits, &v, 4);
        BR::AppendU32(data, bits);
    }
    for (uint32_t k = 0; k < count; ++k)
        data.push_back(k % 2 ? flag : 0);
    return data;
}
}  // namespace

TEST(CalibrationChunk, SavedLayout) {
    BR::CalibrationTable table;
    table.notes[60].value = 0.25f;
    table.valid[60] = 1;
    const std::vector<uint8_t> data = table.SaveChunk();
    ASSERT_EQ(data.size(), 653u);
    EXPECT_EQ(BR::ReadU32(data.data()), 1u);
    EXPECT_EQ(BR::ReadU32(data.data() + 4), 129u);
    float v;
    const uint32_t bits = BR::ReadU32(data.data() + 8 + 60 * 4);
    std::memcpy(&v, &bits, 4);
    EXPECT_EQ(v, 0.25f);
    EXPECT_EQ(data[8 + 129 * 4 + 60], 1);
    EXPECT_EQ(data[8 + 129 * 4 + 59], 0);
    EXPECT_EQ(BR::FourCC("calt"), 0x63616C74u);
}

TEST(CalibrationChunk, RoundTripNormalisesValidBytes) {
    BR::CalibrationTable table;
    ASSERT_TRUE(table.LoadChunk(Payload(1, 129, 0.1f, 7).data(), 653));
    EXPECT_FLOAT_EQ(table.notes[128].value, 0.1f + 0.128f);
    EXPECT_EQ(table.valid[1], 1);
    EXPECT_EQ(table.valid[2], 0);
    BR::CalibrationTable copy;
    const auto saved = table.SaveChunk();
    ASSERT_TRUE(copy.LoadChunk(saved.data(), uint32_t(saved.size())));
    EXPECT_EQ(std::memcmp(copy.notes, table.notes, sizeof table.notes), 0);
    EXPECT_EQ(std::memcmp(copy.valid, table.valid, sizeof table.valid), 0);
}

TEST(CalibrationChunk, RefusedPayloadsLeaveTheTable) {
    BR::CalibrationTable table;
    table.notes[3].value = 0.5f;
    table.valid[3] = 1;
    auto wrongVersion = Payload(2, 129, 0.2f, 1);
    EXPECT_FALSE(table.LoadChunk(wrongVersion.data(), uint32_t(wrongVersion.size())));
    auto full = Payload(1, 129, 0.2f, 1);
    EXPECT_FALSE(table.LoadChunk(full.data(), 8));
    EXPECT_FALSE(table.LoadChunk(full.data(), 652));  // one byte short of count * 5 + 8
    EXPECT_FALSE(table.LoadChunk(nullptr, 653));
    EXPECT_EQ(table.notes[3].value, 0.5f);
    EXPECT_EQ(table.valid[3], 1);
    EXPECT_EQ(table.notes[4].value, 0.0f);
}

TEST(CalibrationChunk, ShorterAndLongerCounts) {
    BR::CalibrationTable table;
    table.notes[20].value = -0.5f;
    auto shortPayload = Payload(1, 10, 0.3f, 1);
    ASSERT_TRUE(table.LoadChunk(shortPayload.data(), uint32_t(shortPayload.size())));
    EXPECT_FLOAT_EQ(table.notes[9].value, 0.309f);
    EXPECT_EQ(table.notes[20].value, -0.5f);  // beyond the stored count: untouched
    EXPECT_EQ(table.valid[9], 1);

    auto longPayload = Payload(1, 200, 0.0f, 1);
    ASSERT_TRUE(table.LoadChunk(longPayload.data(), uint32_t(longPayload.size())));
    EXPECT_FLOAT_EQ(table.notes[128].value, 0.128f);
    EXPECT_EQ(table.valid[127], 1);  // flags read from behind all 200 values
    EXPECT_EQ(table.valid[128], 0);
}
