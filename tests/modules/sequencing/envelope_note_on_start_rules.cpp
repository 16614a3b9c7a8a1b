// Note-on: the velocity scale for positive and negative depths, and where the attack starts from:
// zero with "Reset To Zero", a shortened A2 when A1 has no time, a shortened A1 otherwise.
#include <gtest/gtest.h>

#include "modules/sequencing/Envelope.h"

TEST(EnvelopeNoteOn, VelocityScale) {
    BR::EnvParameters p;
    BR::Envelope env;
    p.velocityDepth = 0.6f;
    BR::envNoteOn(env, 1.0f, p, 48000.0f);
    EXPECT_FLOAT_EQ(env.velocityScale, 1.0f);
    BR::envNoteOn(env, 0.0f, p, 48000.0f);
    EXPECT_FLOAT_EQ(env.velocityScale, 0.4f);
    p.velocityDepth = -0.6f;  // soft notes make the larger envelope
    BR::envNoteOn(env, 0.0f, p, 48000.0f);
    EXPECT_FLOAT_EQ(env.velocityScale, 1.0f);
    BR::envNoteOn(env, 1.0f, p, 48000.0f);
    EXPECT_FLOAT_EQ(env.velocityScale, 0.4f);
    p.velocityDepth = 0.0f;
    BR::envNoteOn(env, 0.0f, p, 48000.0f);
    EXPECT_FLOAT_EQ(env.velocityScale, 1.0f);
    EXPECT_EQ(env.stageIndex, BR::kEnvA1);
    EXPECT_EQ(env.sustainStage, BR::kEnvSustain);
}

TEST(EnvelopeNoteOn, LevelsAreScaled) {
    BR::EnvParameters p;
    p.levelA1 = 0.5f;
    p.time[BR::kSegA1] = 0.01f;
    p.levelA2 = 1.0f;
    p.sustain = 0.5f;
    p.velocityDepth = 1.0f;
    p.resetToZero = true;
    BR::Envelope env;
    BR::envNoteOn(env, 0.5f, p, 48000.0f);
    EXPECT_FLOAT_EQ(env.stages[BR::kEnvA1].target, 0.25f);
    EXPECT_FLOAT_EQ(env.stages[BR::kEnvA2].target, 0.5f);
    EXPECT_FLOAT_EQ(env.stages[BR::kEnvA3].target, 0.25f);
}

TEST(EnvelopeNoteOn, ResetToZeroStartsFromZero) {
    BR::EnvParameters p;
    p.resetToZero = true;
    p.time[BR::kSegA1] = 0.0f;
    BR::Envelope env;
    env.level = 0.8f;
    BR::envNoteOn(env, 1.0f, p, 48000.0f);
    EXPECT_EQ(env.level, 0.0f);
    EXPECT_EQ(env.stages[BR::kEnvA2].samplesLeft, 4800u);  // not shortened
}

TEST(EnvelopeNoteOn, ZeroA1ShortensA2ByTheDistanceLeft) {
    BR::EnvParameters p;
    p.time[BR::kSegA1] = 0.0f;
    p.time[BR::kSegA2] = 0.1f;
    p.levelA1 = 0.0f;
    p.levelA2 = 1.0f;
    BR::Envelope env;
    env.level = 0.75f;  // ratio |(0.75 - 1) / (0 - 1)| = 0.25
    BR::envNoteOn(env, 1.0f, p, 48000.0f);
    EXPECT_NEAR(double(env.stages[BR::kEnvA2].samplesLeft), 1200.0, 1.0);
    // A1 runs from the present level to itself; A2 from there.
    EXPECT_EQ(env.stages[BR::kEnvA1].samplesLeft, 1u);
    EXPECT_FALSE(env.stages[BR::kEnvA1].falling);
    EXPECT_EQ(env.stages[BR::kEnvA1].target, 0.75f);
    EXPECT_EQ(env.level, 0.75f);

    env.level = 2.5f;  // ratio |(2.5 - 1) / (0 - 1)| = 1.5: A2 keeps its time
    BR::envNoteOn(env, 1.0f, p, 48000.0f);
    EXPECT_EQ(env.stages[BR::kEnvA2].samplesLeft, 4800u);
    EXPECT_TRUE(env.stages[BR::kEnvA2].falling);
}

TEST(EnvelopeNoteOn, NonZeroA1ShortensA1) {
    BR::EnvParameters p;
    p.time[BR::kSegA1] = 0.1f;
    p.levelA1 = 0.8f;
    BR::Envelope env;
    env.level = 0.6f;  // ratio |(0.6 - 0.8) / 0.8| = 0.25
    BR::envNoteOn(env, 1.0f, p, 48000.0f);
    EXPECT_NEAR(double(env.stages[BR::kEnvA1].samplesLeft), 1200.0, 1.0);
    p.levelA1 = 0.0f;  // no A1 height: its time stands
    BR::envNoteOn(env, 1.0f, p, 48000.0f);
    EXPECT_EQ(env.stages[BR::kEnvA1].samplesLeft, 4800u);
}

TEST(EnvelopeNoteOn, MultiplierScalesTimes) {
    BR::EnvParameters p;
    p.time[BR::kSegA2] = 0.1f;
    p.resetToZero = true;
    BR::Envelope env;
    const uint32_t expected[4] = {480, 4800, 48000, 480000};
    for (int m = 0; m < 4; ++m) {
        p.multiplier = float(m);
        BR::envNoteOn(env, 1.0f, p, 48000.0f);
        EXPECT_NEAR(double(env.stages[BR::kEnvA2].samplesLeft), double(expected[m]), 1.0) << m;
    }
    EXPECT_FLOAT_EQ(BR::EnvTimeMultiplier(3.0f), 100.0f);
    EXPECT_FLOAT_EQ(BR::EnvTimeMultiplier(0.0f), 0.1f);
}
