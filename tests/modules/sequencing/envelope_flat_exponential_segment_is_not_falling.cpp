// An exponential segment whose start equals its end has `falling` false, and so ends on its first
// sample when the level is at or above the target.
#include <gtest/gtest.h>

#include "modules/sequencing/Envelope.h"

TEST(EnvelopeFlatExponential, EndsOnFirstSample) {
    BR::Envelope env;
    env.stageIndex = BR::kEnvR1;
    env.level = 0.5f;
    BR::setupEnvStage(env.stages[BR::kEnvR1], 1, 1.0f, 0.5f, 0.5f, 0.5f, 48000.0f);
    EXPECT_FALSE(env.stages[BR::kEnvR1].falling);
    EXPECT_EQ(env.stages[BR::kEnvR1].samplesLeft, 48000u);
    // R2 flat at 0.5 too, so that the sample after the ending shows where the level stands.
    BR::setupEnvStage(env.stages[BR::kEnvR2], 0, 1.0f, 0.5f, 0.5f, 0.5f, 48000.0f);
    float out[2];
    BR::renderEnvelope(env, out, 1);
    EXPECT_EQ(out[0], 0.5f);
    EXPECT_EQ(env.stages[BR::kEnvR1].samplesLeft, 0u);
    EXPECT_EQ(env.stageIndex, BR::kEnvR2);
    // With no height the recurrence is the identity (coefficient 1, increment 0).
    EXPECT_EQ(env.stages[BR::kEnvR1].coefficient, 1.0f);
    EXPECT_EQ(env.stages[BR::kEnvR1].increment, 0.0f);
    EXPECT_EQ(env.level, 0.5f);
}

TEST(EnvelopeFlatExponential, FromBelowItRunsUntilTheTarget) {
    BR::Envelope env;
    env.stageIndex = BR::kEnvR1;
    env.level = 0.2f;
    BR::setupEnvStage(env.stages[BR::kEnvR1], 1, 0.001f, 0.5f, 0.5f, 0.5f, 48000.0f);
    ASSERT_FALSE(env.stages[BR::kEnvR1].falling);
    float out[1];
    BR::renderEnvelope(env, out, 1);
    EXPECT_EQ(env.stageIndex, BR::kEnvR1);
    EXPECT_EQ(out[0], 0.2f);
    // It never gets there and ends on its sample count (48) instead.
    float rest[47];
    BR::renderEnvelope(env, rest, 47);
    EXPECT_EQ(env.stageIndex, BR::kEnvR2);
    EXPECT_EQ(rest[46], 0.2f);
}
