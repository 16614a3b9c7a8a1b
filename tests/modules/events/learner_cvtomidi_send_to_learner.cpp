// CV To MIDI with "Send To Learner" hands every controller it sends to the table at once, as if it had
// arrived at its input: learned from the first, it then drives the parameter of another instance
// within the same render; without the switch nothing reaches the table.
#include <gtest/gtest.h>

#include "CVToMIDIRig.h"
#include "LearnerRig.h"

using BR::Test::LearnerTest;

TEST_F(LearnerTest, CVToMIDIControllersDriveAParameter) {
    auto dc = BR::Test::MakeDriver("dc");
    auto learner = BR::Test::MakeDriver("learner");
    BR::Test::CVToMIDIRig rig;
    rig.Set("Enable CC L", 1);
    rig.Set("Send CC L", 74);
    rig.Set("Channel L", 2);
    std::vector<float> ramp(4410), zero(4410, 0.0f);
    for (size_t i = 0; i < ramp.size(); ++i)
        ramp[i] = float(i) / 2205.0f - 1.0f;

    BR::SetActiveParameter(&dc->Module(), BR::Test::Row(*dc, "Output Positive R"));
    BrelCorvaneLearner::SetLearnActive(true);
    rig.Render(ramp, zero);
    EXPECT_EQ(BrelCorvaneLearner::NumMappings(), 0);  // "Send To Learner" is off
    ASSERT_FALSE(rig.sent.empty());

    rig.Set("Send To Learner", 1);
    rig.sent.clear();
    rig.Render({-1.0f}, {0.0f});  // the first controller learns
    BrelCorvaneLearner::SetLearnActive(false);
    ASSERT_EQ(BrelCorvaneLearner::NumMappings(), 1);
    BrelCorvaneLearner::MidiMapping m{};
    ASSERT_TRUE(BrelCorvaneLearner::FindMapping(&dc->Module(), BR::Test::Row(*dc, "Output Positive R"), m));
    EXPECT_EQ(m.source.instance, &rig.Module());
    EXPECT_EQ(m.source.channel, 1u);
    EXPECT_EQ(m.source.number, 74u);

    std::vector<float> values;
    rig.sent.clear();
    for (size_t i = 441; i < ramp.size(); i += 441) {
        rig.Render(std::vector<float>(441, ramp[i]), std::vector<float>(441, 0.0f));
        ASSERT_FALSE(rig.sent.empty());
        const uint8_t cc = rig.sent.back().data2;
        EXPECT_FLOAT_EQ(BR::Test::Value(*dc, "Output Positive R"), cc * 0.007874016f) << i;
        values.push_back(BR::Test::Value(*dc, "Output Positive R"));
    }
    EXPECT_LT(values.front(), 0.15f);
    EXPECT_GT(values.back(), 0.85f);
}
