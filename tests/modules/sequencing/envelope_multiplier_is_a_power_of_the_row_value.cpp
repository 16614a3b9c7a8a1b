// The time multiplier is 10^(value - 1) of the "Multiplier" row as it stands: the four steps give
// 0.1, 1, 10 and 100, and a value between them (as a host's linear automation sets it) scales the
// times between them rather than snapping to the step below.
#include <gtest/gtest.h>

#include <cmath>

#include "modules/sequencing/Envelope.h"
#include "modules/sequencing/Trigger.h"
#include "tests/support/Render.h"

TEST(EnvelopeMultiplier, PowerOfTheValue) {
    EXPECT_FLOAT_EQ(BR::EnvTimeMultiplier(0.0f), 0.1f);
    EXPECT_FLOAT_EQ(BR::EnvTimeMultiplier(1.0f), 1.0f);
    EXPECT_FLOAT_EQ(BR::EnvTimeMultiplier(2.0f), 10.0f);
    EXPECT_FLOAT_EQ(BR::EnvTimeMultiplier(3.0f), 100.0f);
    EXPECT_FLOAT_EQ(BR::EnvTimeMultiplier(1.5f), std::sqrt(10.0f));
    EXPECT_FLOAT_EQ(BR::EnvTimeMultiplier(2.75f), std::pow(10.0f, 1.75f));
}

TEST(EnvelopeMultiplier, BetweenStepsScalesAttackReleaseAndDisplay) {
    BR::EnvParameters p;
    p.time[BR::kSegA2] = 0.1f;
    p.time[BR::kSegR1] = 0.2f;
    p.resetToZero = true;
    p.multiplier = 1.5f;
    BR::Envelope env;
    BR::envNoteOn(env, 1.0f, p, 48000.0f);
    // 0.1 s * 3.1623 * 48000 = 15178 samples (4800 if the value were truncated to 1).
    EXPECT_NEAR(double(env.stages[BR::kEnvA2].samplesLeft), 15178.0, 1.0);
    BR::envNoteOff(env, p, 48000.0f);
    EXPECT_NEAR(double(env.stages[BR::kEnvR1].samplesLeft), 30357.0, 1.0);
    // The display counts the remaining samples back in raw seconds: all of R1 is still to go.
    BR::EnvDisplayValues display;
    BR::envBlockUpdate(env, p, 48000.0f, display);
    const float total = 1.0f + 0.0f + 0.1f + 0.1f + 0.2f + 0.0f;
    EXPECT_NEAR(display.position, (0.2f + 1.0f) / total, 1e-4f);
}

TEST(EnvelopeMultiplier, TriggerRowBetweenSteps) {
    auto driver = BR::Test::MakeDriver("trigger");
    driver->SetParameterByName("Output Mode", 2.0f);
    driver->SetParameterByName("Env 1 Multiplier", 0.5f);  // 10^-0.5
    driver->SetParameterByName("Env 1 Reset To Zero", 1.0f);
    BR::Test::RenderFrames(*driver, 74, 74, {}, {{10, {0x90, 60, 127}}});
    const auto& env = static_cast<BrelCorvaneTrigger::BrelCorvane&>(driver->Module()).GetEnvelope();
    // A2 of 0.1 s: 1517.9 samples, less the 63 rendered after A1's one sample.
    EXPECT_NEAR(double(env.stages[BR::kEnvA2].samplesLeft), 1517.0 - 63.0, 1.0);
}
