// The Learner's names, rows, value strings and flags; it answers true to 64013, so that state saving
// writes identity numbers while one lives; its destination text is parsed into address and port.
#include <gtest/gtest.h>

#include "LearnerRig.h"
#include "framework/InstanceRegistry.h"
#include "modules/events/Soundplane.h"

using BR::Test::LearnerTest;

TEST_F(LearnerTest, NamesRowsStringsAndFlags) {
    auto driver = BR::Test::MakeDriver("learner");
    ASSERT_TRUE(driver);
    BrelCorvaneBase& m = driver->Module();
    EXPECT_STREQ(m.GetModuleName(), "Corvane Learner");
    EXPECT_STREQ(m.GetGuiScriptName(), "gui_learner.lua");
    EXPECT_STREQ(m.ShortName(), "CRLearner");
    ASSERT_EQ(m.NumTableParameters(), 2);
    EXPECT_EQ(m.NumInputs(), 2);
    EXPECT_EQ(m.NumOutputs(), 2);
    const BR::ParameterDefinition* t = m.ParameterTable();
    EXPECT_STREQ(t[0].name, "OSC Port Offset");
    EXPECT_EQ(t[0].unit, BR::kUnitIndexed);
    EXPECT_EQ(t[0].maximum, 100.0f);
    EXPECT_STREQ(t[1].name, "Send OSC");
    EXPECT_EQ(t[1].unit, BR::kUnitIndexed);
    EXPECT_EQ(t[1].maximum, 3.0f);
    EXPECT_EQ(t[1].defaultValue, 0.0f);
    BR::CountedTextList* list = nullptr;
    ASSERT_EQ(m.GetParameterValueStrings(1, &list), BR::kNoErr);
    EXPECT_EQ(list->Get(), (std::vector<std::string>{"Off", "Long", "Compact", "Short"}));
    list->Release();
    EXPECT_NE(m.GetParameterValueStrings(0, &list), BR::kNoErr);
    EXPECT_EQ(m.GetParameterFlags(0), 0x200000u);
    EXPECT_EQ(m.GetParameterFlags(1), 0u);
    char text[32];
    m.GetParameterValueText(0, text);
    EXPECT_STREQ(text, "Off");
    m.SetTableValue(1, 2.0f);
    m.GetParameterValueText(1, text);
    EXPECT_STREQ(text, "Compact");
}

TEST_F(LearnerTest, PresentFlagGivesIdentityEntries) {
    auto dc = BR::Test::MakeDriver("dc");
    EXPECT_FALSE(BR::InstanceRegistry::AnyLearnerPresent());
    {
        auto learner = BR::Test::MakeDriver("learner");
        bool isLearner = false;
        ASSERT_EQ(learner->Module().GetProperty(64013, &isLearner), BR::kNoErr);
        EXPECT_TRUE(isLearner);
        EXPECT_TRUE(BR::InstanceRegistry::AnyLearnerPresent());
        uint32_t size = 0;
        // With a Learner alive the DC writes "luid" and "guid" (two entries of 4 bytes behind the
        // 12-byte head): 12 + 2 * 12.
        ASSERT_EQ(dc->Module().GetChunkSize(BR::kChunkIdChunky, &size), BR::kNoErr);
        EXPECT_EQ(size, 36u);
    }
    EXPECT_FALSE(BR::InstanceRegistry::AnyLearnerPresent());
    uint32_t size = 0;
    ASSERT_EQ(dc->Module().GetChunkSize(BR::kChunkIdChunky, &size), BR::kNoErr);
    EXPECT_EQ(size, 12u);
}

TEST_F(LearnerTest, DestinationTextIsParsed) {
    BrelCorvaneLearner::BrelCorvane learner;
    const char* text = nullptr;
    ASSERT_EQ(learner.GetProperty(64110, &text), BR::kNoErr);
    EXPECT_STREQ(text, "127.0.0.1:7000");
    EXPECT_EQ(learner.DestinationAddress(), 0x7F000001u);
    EXPECT_EQ(learner.DestinationPort(), 7000);
    uint32_t size = 0;
    bool writable = false;
    ASSERT_EQ(learner.GetPropertyInfo(64110, &size, &writable), BR::kNoErr);
    EXPECT_EQ(size, 15u);
    EXPECT_TRUE(writable);

    const char withScheme[] = "osc.udp://10.1.2.3:9001";
    ASSERT_EQ(learner.SetProperty(64110, withScheme, sizeof withScheme), BR::kNoErr);
    EXPECT_EQ(learner.DestinationAddress(), 0x0A010203u);
    EXPECT_EQ(learner.DestinationPort(), 9001);
    learner.GetProperty(64110, &text);
    EXPECT_STREQ(text, withScheme);

    const char noPort[] = "192.168.0.7";
    ASSERT_EQ(learner.SetProperty(64110, noPort, sizeof noPort), BR::kNoErr);
    EXPECT_EQ(learner.DestinationAddress(), 0xC0A80007u);
    EXPECT_EQ(learner.DestinationPort(), -1);

    const char name[] = "no.such.host:7700";  // not a dotted address: all ones, where nothing answers
    ASSERT_EQ(learner.SetProperty(64110, name, sizeof name), BR::kNoErr);
    EXPECT_EQ(learner.DestinationAddress(), 0xFFFFFFFFu);
    EXPECT_EQ(learner.DestinationPort(), 7700);
}

TEST_F(LearnerTest, LearnActiveIsProcessWide) {
    BrelCorvaneLearner::BrelCorvane a, b;
    const uint8_t on = 1;
    ASSERT_EQ(a.SetProperty(64130, &on, 1), BR::kNoErr);
    bool active = false;
    ASSERT_EQ(b.GetProperty(64130, &active), BR::kNoErr);
    EXPECT_TRUE(active);
    EXPECT_TRUE(BrelCorvaneLearner::LearnActive());
    const int32_t off = 0;  // a 32-bit number, as the command line passes one
    ASSERT_EQ(b.SetProperty(64130, &off, 4), BR::kNoErr);
    a.GetProperty(64130, &active);
    EXPECT_FALSE(active);
    EXPECT_EQ(a.SetProperty(64130, nullptr, 0), BR::kErrInvalidProperty);
}

TEST_F(LearnerTest, LearnSwitchIsTheSoundplanesToo) {
    // Property 64130 of both modules is one process-wide byte: a Soundplane's learn button turns the
    // Learner's learning on, and the Learner turns it off for the Soundplane.
    BrelCorvaneLearner::BrelCorvane learner;
    BrelCorvaneSoundplane::BrelCorvane soundplane;
    const uint8_t on = 1, off = 0;
    ASSERT_EQ(soundplane.SetProperty(64130, &on, 1), BR::kNoErr);
    bool active = false;
    ASSERT_EQ(learner.GetProperty(64130, &active), BR::kNoErr);
    EXPECT_TRUE(active);
    ASSERT_EQ(learner.SetProperty(64130, &off, 1), BR::kNoErr);
    uint8_t byte = 1;
    ASSERT_EQ(soundplane.GetProperty(64130, &byte), BR::kNoErr);
    EXPECT_EQ(byte, 0);
}
