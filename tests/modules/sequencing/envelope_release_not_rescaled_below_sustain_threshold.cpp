// When the scaled sustain is 0.001 or less, R1 keeps its end level "Level R1" * velocityScale whatever
// the present level; above that, R1 is scaled by level / sustain.
#include <gtest/gtest.h>

#include "modules/sequencing/Envelope.h"

namespace {
BR::EnvParameters Exponential(float sustain) {
    BR::EnvParameters p;
    p.sustain = sustain;
    p.levelR1 = 0.4f;
    p.velocityDepth = 0.5f;  // velocity 1 gives scale 1; velocity 0.5 gives 0.75
    return p;
}
}  // namespace

TEST(EnvelopeRelease, SustainAtThresholdLeavesR1Unscaled) {
    BR::EnvParameters p = Exponential(0.001f);
    BR::Envelope env;
    BR::envNoteOn(env, 1.0f, p, 48000.0f);
    ASSERT_EQ(env.velocityScale, 1.0f);
    env.level = 0.7f;
    BR::envNoteOff(env, p, 48000.0f);
    EXPECT_EQ(env.stageIndex, BR::kEnvR1);
    EXPECT_EQ(env.stages[BR::kEnvR1].target, 0.4f);
    EXPECT_TRUE(env.stages[BR::kEnvR1].falling);
    EXPECT_EQ(env.stages[BR::kEnvR2].target, 0.0f);
}

TEST(EnvelopeRelease, ScaledSustainBelowThresholdLeavesR1Unscaled) {
    // Sustain 0.0012 at scale 0.75 is 0.0009: not rescaled, end level 0.4 * 0.75.
    BR::EnvParameters p = Exponential(0.0012f);
    BR::Envelope env;
    BR::envNoteOn(env, 0.5f, p, 48000.0f);
    ASSERT_FLOAT_EQ(env.velocityScale, 0.75f);
    env.level = 0.05f;
    BR::envNoteOff(env, p, 48000.0f);
    EXPECT_FLOAT_EQ(env.stages[BR::kEnvR1].target, 0.3f);
}

TEST(EnvelopeRelease, SustainAboveThresholdRescalesR1) {
    BR::EnvParameters p = Exponential(0.5f);
    BR::Envelope env;
    BR::envNoteOn(env, 1.0f, p, 48000.0f);
    env.level = 0.25f;
    BR::envNoteOff(env, p, 48000.0f);
    EXPECT_FLOAT_EQ(env.stages[BR::kEnvR1].target, 0.4f * 0.25f / 0.5f);
    EXPECT_FLOAT_EQ(env.stages[BR::kEnvR2].target, 0.0f);
}
