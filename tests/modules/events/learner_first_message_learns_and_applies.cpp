// Learning needs no change of value: with learn on, the first controller or pressure message makes the
// mapping and at once applies its value. Learning another controller for the parameter replaces the
// first; moving one controller to a second parameter leaves it driving both.
#include <gtest/gtest.h>

#include "LearnerRig.h"

using BR::Test::LearnerTest;
namespace L = BrelCorvaneLearner;

TEST_F(LearnerTest, FirstMessageMakesTheMappingAndApplies) {
    auto dc = BR::Test::MakeDriver("dc");
    auto learner = BR::Test::MakeDriver("learner");
    BR::SetActiveParameter(&dc->Module(), 0);  // "Output Positive L"
    const uint8_t on = 1;
    ASSERT_EQ(learner->Module().SetProperty(64130, &on, 1), BR::kNoErr);
    EXPECT_EQ(L::NumMappings(), 0);
    BR::Test::SendMIDI(*dc, {0xB2, 11, 100});  // one message, no movement
    ASSERT_EQ(L::NumMappings(), 1);
    EXPECT_FLOAT_EQ(BR::Test::Value(*dc, "Output Positive L"), 100.0f * 0.007874016f);
    L::MidiMapping m{};
    ASSERT_TRUE(L::FindMapping(&dc->Module(), 0, m));
    EXPECT_EQ(m.source.instance, &dc->Module());
    EXPECT_EQ(m.source.channel, 2u);
    EXPECT_EQ(m.source.kind, 0u);
    EXPECT_EQ(m.source.number, 11u);
    EXPECT_EQ(m.minimum, 0.0f);
    EXPECT_EQ(m.maximum, 1.0f);
    EXPECT_EQ(m.unit, uint32_t(BR::kUnitGeneric));
}

TEST_F(LearnerTest, ChannelAndPolyPressureAreLearned) {
    auto dc = BR::Test::MakeDriver("dc");
    auto learner = BR::Test::MakeDriver("learner");
    BR::Test::Learn(*dc, "Multiplier L", *dc, {0xD5, 127});  // channel pressure, value in the first byte
    L::MidiMapping m{};
    ASSERT_TRUE(L::FindMapping(&dc->Module(), BR::Test::Row(*dc, "Multiplier L"), m));
    EXPECT_EQ(m.source.kind, 3u);
    EXPECT_EQ(m.source.number, 0u);
    EXPECT_EQ(m.source.channel, 5u);
    EXPECT_FLOAT_EQ(BR::Test::Value(*dc, "Multiplier L"), 2.0f);  // -2..2, bipolar: 127 is the top
    BR::Test::SendMIDI(*dc, {0xD5, 64});
    EXPECT_EQ(BR::Test::Value(*dc, "Multiplier L"), 0.0f);

    BR::Test::Learn(*dc, "Input Add L", *dc, {0xA0, 60, 127});  // poly pressure of note 60
    ASSERT_TRUE(L::FindMapping(&dc->Module(), BR::Test::Row(*dc, "Input Add L"), m));
    EXPECT_EQ(m.source.kind, 2u);
    EXPECT_EQ(m.source.number, 60u);
    BR::Test::SendMIDI(*dc, {0xA0, 61, 0});  // another note's pressure is another source
    EXPECT_FLOAT_EQ(BR::Test::Value(*dc, "Input Add L"), 1.0f);
    BR::Test::SendMIDI(*dc, {0xA0, 60, 0});
    EXPECT_EQ(BR::Test::Value(*dc, "Input Add L"), 0.0f);
}

TEST_F(LearnerTest, RelearningReplacesAndOneControllerDrivesTwo) {
    auto dc = BR::Test::MakeDriver("dc");
    auto learner = BR::Test::MakeDriver("learner");
    BR::Test::Learn(*dc, "Output Positive L", *dc, {0xB0, 1, 0});
    BR::Test::Learn(*dc, "Output Positive L", *dc, {0xB0, 2, 0});  // replaces controller 1
    EXPECT_EQ(L::NumMappings(), 1);
    BR::Test::SendMIDI(*dc, {0xB0, 1, 127});
    EXPECT_EQ(BR::Test::Value(*dc, "Output Positive L"), 0.0f);
    BR::Test::SendMIDI(*dc, {0xB0, 2, 127});
    EXPECT_FLOAT_EQ(BR::Test::Value(*dc, "Output Positive L"), 1.0f);

    BR::Test::Learn(*dc, "Output Positive R", *dc, {0xB0, 2, 0});
    EXPECT_EQ(L::NumMappings(), 2);
    BR::Test::SendMIDI(*dc, {0xB0, 2, 127});
    EXPECT_FLOAT_EQ(BR::Test::Value(*dc, "Output Positive L"), 1.0f);
    EXPECT_FLOAT_EQ(BR::Test::Value(*dc, "Output Positive R"), 1.0f);
}

TEST_F(LearnerTest, LearnOffOrNoActiveParameterLearnsNothing) {
    auto dc = BR::Test::MakeDriver("dc");
    auto learner = BR::Test::MakeDriver("learner");
    BR::SetActiveParameter(&dc->Module(), 0);
    BR::Test::SendMIDI(*dc, {0xB0, 7, 100});  // learn is off
    EXPECT_EQ(L::NumMappings(), 0);
    L::SetLearnActive(true);
    BR::SetActiveParameter(nullptr, -1);
    BR::Test::SendMIDI(*dc, {0xB0, 7, 100});
    EXPECT_EQ(L::NumMappings(), 0);
    {
        auto gone = BR::Test::MakeDriver("dc");
        BR::SetActiveParameter(&gone->Module(), 0);
    }
    BR::Test::SendMIDI(*dc, {0xB0, 7, 100});  // the active instance no longer exists
    EXPECT_EQ(L::NumMappings(), 0);
    EXPECT_EQ(BR::Test::Value(*dc, "Output Positive L"), 0.0f);
}
