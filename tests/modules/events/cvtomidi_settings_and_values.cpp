// Block settings: "Max Rate" 1000 at 44100 is 44 samples; controller values of -1, 0 and 1 over -1..1
// are 0, 64 and 127 (held from 128); equal "CC Min" and "CC Max" give 0; pitch 0.25 at 48/48 is note 60.
#include <gtest/gtest.h>

#include "CVToMIDIRig.h"

TEST(CVToMIDISettings, MaxRate1000At44100Is44Samples) {
    BR::Test::CVToMIDIRig rig(44100.0f);
    rig.Render({0.0f}, {0.0f});
    EXPECT_EQ(rig.Module().Settings(0).minInterval, 44);
    EXPECT_EQ(rig.Module().Settings(1).minInterval, 44);
    rig.Set("Max Rate R", 10.0f);
    rig.Render({0.0f}, {0.0f});
    EXPECT_EQ(rig.Module().Settings(1).minInterval, 4410);
}

TEST(CVToMIDIControllers, MinusOneZeroAndOne) {
    BR::Test::CVToMIDIRig rig;
    rig.Set("Enable CC L", 1);
    rig.Set("Send CC L", 7);
    rig.Set("Channel L", 3);
    std::vector<float> cv(200, -1.0f);
    std::fill(cv.begin() + 50, cv.begin() + 100, 0.0f);
    std::fill(cv.begin() + 100, cv.end(), 1.0f);
    rig.Render(cv, std::vector<float>(200, 0.0f));
    // Each change waits out the 44 samples after the one before.
    const std::vector<BR::Test::SentMessage> expected = {
        {0, 0xB2, 7, 0}, {50, 0xB2, 7, 64}, {100, 0xB2, 7, 127}};
    EXPECT_EQ(rig.sent, expected);
}

TEST(CVToMIDIControllers, EqualMinAndMaxGiveZero) {
    BR::Test::CVToMIDIRig rig;
    rig.Set("Enable CC L", 1);
    rig.Set("CC Min L", 0.5f);
    rig.Set("CC Max L", 0.5f);
    std::vector<float> cv(300);
    for (size_t i = 0; i < cv.size(); ++i)
        cv[i] = float(i) / 150.0f - 1.0f;
    rig.Render(cv, cv);
    EXPECT_EQ(rig.Module().Settings(0).ccScale, 0.0f);
    ASSERT_EQ(rig.sent.size(), 1u);  // 0 once, then never a different value
    EXPECT_EQ(rig.sent[0], (BR::Test::SentMessage{0, 0xB0, 1, 0}));
}

TEST(CVToMIDINotes, QuarterVoltAtCentre48Slope48IsNote60) {
    BR::Test::CVToMIDIRig rig;
    rig.Set("Enable Note L", 1);
    rig.Render(std::vector<float>(10, 0.25f), std::vector<float>(10, 0.0f));
    ASSERT_GE(rig.sent.size(), 1u);
    EXPECT_EQ(rig.sent[0], (BR::Test::SentMessage{0, 0x90, 60, 64}));
}
