// Property 64015 gives the envelope display's layout (7, 14, 28, 5), and restoring a parameter chunk
// first sets the five type rows to Parabolic, so that a state saved without them plays parabolic.
#include <gtest/gtest.h>

#include <cstring>

#include "framework/StateChunkStore.h"
#include "tests/support/Render.h"

TEST(TriggerProperties, EnvelopeLayout) {
    auto driver = BR::Test::MakeDriver("trigger");
    int32_t layout[4] = {0, 0, 0, 0};
    ASSERT_EQ(driver->Module().GetProperty(64015, layout), BR::kNoErr);
    EXPECT_EQ(layout[0], 7);
    EXPECT_EQ(layout[1], 14);
    EXPECT_EQ(layout[2], 28);
    EXPECT_EQ(layout[3], 5);
    uint32_t size = 0;
    bool writable = true;
    ASSERT_EQ(driver->Module().GetPropertyInfo(64015, &size, &writable), BR::kNoErr);
    EXPECT_EQ(size, 16u);
    EXPECT_FALSE(writable);
    EXPECT_EQ(driver->Module().GetProperty(64094, layout), BR::kErrInvalidProperty);
    // The rows it points at.
    EXPECT_STREQ(driver->Module().ParameterTable()[7].name, "Env 1 Time A1");
    EXPECT_STREQ(driver->Module().ParameterTable()[28].name, "Env 1 Type A1");
}

TEST(TriggerRestore, OldStateWithoutTypesPlaysParabolic) {
    auto driver = BR::Test::MakeDriver("trigger");
    EXPECT_EQ(driver->Module().GetTableValue(28), 1.0f);  // a new instance is exponential
    // An "elck" chunk of an older session: only "Output Mode" and "Env 1 Sustain".
    BR::ChunkRecord record{};
    BR::AppendU32(record.data, BR::FourCC("Ctl1"));
    BR::AppendU32(record.data, 2);
    auto add = [&record](const std::string& id, float value) {
        record.data.push_back(uint8_t(id.size()));
        record.data.push_back(0);
        record.data.insert(record.data.end(), id.begin(), id.end());
        record.data.push_back(0);
        uint32_t bits;
        std::memcpy(&bits, &value, 4);
        BR::AppendU32(record.data, bits);
    };
    add("Output Mode", 2.0f);
    add("Env 1 Sustain", 0.25f);
    record.size = uint32_t(record.data.size());
    ASSERT_EQ(driver->Module().SetChunk(BR::kChunkIdControls, &record), BR::kNoErr);
    for (int32_t row = 28; row < 33; ++row)
        EXPECT_EQ(driver->Module().GetTableValue(row), 0.0f) << row;
    EXPECT_EQ(driver->Module().GetTableValue(1), 2.0f);
    EXPECT_EQ(driver->Module().GetTableValue(19), 0.25f);
}

TEST(TriggerRestore, StateWithTypesKeepsThem) {
    auto source = BR::Test::MakeDriver("trigger");
    source->SetParameterByName("Env 1 Type A2", 1.0f);
    source->SetParameterByName("Env 1 Type R1", 0.0f);
    BR::ChunkRecord record{};
    ASSERT_EQ(source->Module().GetChunk(BR::kChunkIdControls, &record), BR::kNoErr);
    auto target = BR::Test::MakeDriver("trigger");
    ASSERT_EQ(target->Module().SetChunk(BR::kChunkIdControls, &record), BR::kNoErr);
    EXPECT_EQ(target->Module().GetTableValue(29), 1.0f);
    EXPECT_EQ(target->Module().GetTableValue(31), 0.0f);
    EXPECT_EQ(target->Module().GetTableValue(28), 1.0f);
}
