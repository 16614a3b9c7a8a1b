// A matching note-off with no note held still starts the release from the finished envelope's level 0.
// R1's end level is "Env 1 Level R1" times the last note's velocity factor, kept in proportion to
// level / sustain while the scaled sustain is above 0.001: so the output rises towards "Level R1"
// only with the scaled sustain at 0.001 or less, and otherwise stays at 0.
#include <gtest/gtest.h>

#include "modules/sequencing/Envelope.h"
#include "modules/sequencing/Trigger.h"
#include "tests/support/Render.h"

namespace {
BrelCorvaneTrigger::BrelCorvane& Module(BR::HostDriver& driver) {
    return static_cast<BrelCorvaneTrigger::BrelCorvane&>(driver.Module());
}
std::unique_ptr<BR::HostDriver> Envelope(float sustain) {
    auto driver = BR::Test::MakeDriver("trigger");
    driver->SetParameterByName("Output Mode", 2.0f);
    driver->SetParameterByName("Env 1 Level R1", 0.5f);
    driver->SetParameterByName("Env 1 Time R2", 1.0f);
    driver->SetParameterByName("Env 1 Sustain", sustain);
    return driver;
}
}  // namespace

TEST(TriggerStrayNoteOff, RisesToLevelR1WithSustainZero) {
    auto driver = Envelope(0.0f);
    const auto out = BR::Test::RenderFrames(*driver, 9600, 256, {}, {{100, {0x80, 60, 64}}});
    EXPECT_EQ(out[0][99], 0.0f);
    EXPECT_GT(out[0][2000], 0.1f);
    // R1 of 0.1 s from 0 to 0.5 ends on its target at sample 100 + 4800 - 1.
    const auto& env = Module(*driver).GetEnvelope();
    EXPECT_EQ(out[0][4899], 0.5f);
    EXPECT_EQ(env.stageIndex, BR::kEnvR2);
    EXPECT_FALSE(Module(*driver).GateOpen());
    EXPECT_FLOAT_EQ(Module(*driver).ReleaseVelocity(), 64.0f * 0.007874016f);
}

TEST(TriggerStrayNoteOff, ScaledByTheLastNotesVelocity) {
    auto driver = Envelope(0.0015f);
    driver->SetParameterByName("Env 1 Velocity Depth", 0.5f);
    // A note at velocity 0 (scale 0.5: sustain 0.00075, not above 0.001) that ends and finishes.
    BR::Test::RenderFrames(*driver, 96000, 1024, {}, {{10, {0x90, 60, 1}}, {20, {0x80, 60, 0}}});
    ASSERT_EQ(Module(*driver).GetEnvelope().stageIndex, BR::kEnvFinished);
    ASSERT_NEAR(Module(*driver).GetEnvelope().velocityScale, 0.5f + 0.5f * 0.007874016f, 1e-6f);
    BR::Test::RenderFrames(*driver, 10, 10, {}, {{5, {0x80, 60, 0}}});
    EXPECT_FLOAT_EQ(Module(*driver).GetEnvelope().stages[BR::kEnvR1].target,
                    0.5f * Module(*driver).GetEnvelope().velocityScale);
}

TEST(TriggerStrayNoteOff, StaysAtZeroWithSustainAboveTheThreshold) {
    for (float sustain : {0.5f, 0.0011f}) {
        auto driver = Envelope(sustain);
        const auto out = BR::Test::RenderFrames(*driver, 9600, 256, {}, {{100, {0x80, 60, 64}}});
        EXPECT_EQ(Module(*driver).GetEnvelope().stageIndex, BR::kEnvFinished) << sustain;
        EXPECT_EQ(Module(*driver).GetEnvelope().stages[BR::kEnvR1].target, 0.0f) << sustain;
        for (size_t i = 0; i < 9600; ++i)
            ASSERT_EQ(out[0][i], 0.0f) << sustain << " " << i;
    }
}
