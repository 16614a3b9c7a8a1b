// CV To MIDI's names, rows, value strings and flags; the destination name (property 64100) is kept in the
// state under its own tag and set again, through the property, from it.
#include <gtest/gtest.h>

#include "CVToMIDIRig.h"
#include "framework/StateChunkStore.h"

TEST(CVToMIDIIdentity, NamesRowsAndFlags) {
    auto driver = BR::Test::MakeDriver("cvtomidi");
    BrelCorvaneBase& m = driver->Module();
    EXPECT_STREQ(m.GetModuleName(), "Corvane CV To MIDI");
    EXPECT_STREQ(m.GetGuiScriptName(), "gui_cvtomidi.lua");
    ASSERT_EQ(m.NumTableParameters(), 32);
    const BR::ParameterDefinition* t = m.ParameterTable();
    EXPECT_STREQ(t[0].name, "OSC Port Offset");
    EXPECT_STREQ(t[1].name, "Enable L");
    EXPECT_STREQ(t[14].name, "Max Note Length L");
    EXPECT_STREQ(t[15].name, "Enable R");
    EXPECT_STREQ(t[25].name, "Pitch Centre R");
    EXPECT_EQ(t[27].defaultValue, 0.01f);
    EXPECT_STREQ(t[28].name, "Max Note Length R");
    EXPECT_STREQ(t[29].name, "Max Rate L");
    EXPECT_STREQ(t[31].name, "Send To Learner");
    for (int i = 0; i < 32; ++i)
        EXPECT_EQ(m.GetParameterFlags(i), i == 0 || i == 14 || i == 28 ? 0x200000u : 0u) << i;
    BR::CountedTextList* list = nullptr;
    ASSERT_EQ(m.GetParameterValueStrings(22, &list), BR::kNoErr);
    EXPECT_EQ(list->Get(), (std::vector<std::string>{"Continuous", "Gate Only", "Gated"}));
    list->Release();
    ASSERT_EQ(m.GetParameterValueStrings(9, &list), BR::kNoErr);
    EXPECT_EQ(list->Get(), (std::vector<std::string>{"None", "Normal", "Legato"}));
    list->Release();
}

TEST(CVToMIDIIdentity, DestinationNameRoundTrip) {
    BrelCorvaneCVToMIDI::BrelCorvane source;
    const char name[] = "Synth MIDI 1";
    ASSERT_EQ(source.SetProperty(64100, name, sizeof name), BR::kNoErr);
    uint32_t size = 0;
    bool writable = false;
    ASSERT_EQ(source.GetPropertyInfo(64100, &size, &writable), BR::kNoErr);
    EXPECT_EQ(size, sizeof name);
    EXPECT_TRUE(writable);
    EXPECT_FALSE(source.Sender().HasDevice());  // nothing of that name: a silent module
    ASSERT_EQ(source.GetChunkSize(BR::kChunkIdChunky, &size), BR::kNoErr);
    BR::ChunkRecord record;
    ASSERT_EQ(source.GetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    BR::StateChunkStore store;
    ASSERT_TRUE(store.Parse(record.data.data(), record.data.size()));
    BR::StateChunkStore::Blob blob;
    ASSERT_TRUE(store.Find(0x6D696570, blob));
    EXPECT_STREQ(reinterpret_cast<const char*>(blob.data), name);
    BrelCorvaneCVToMIDI::BrelCorvane target;
    ASSERT_EQ(target.SetChunk(BR::kChunkIdChunky, &record), BR::kNoErr);
    EXPECT_EQ(target.DestinationName(), name);
}
