// A parabolic segment ends on its sample count, not on a level: float error leaves the level a
// little off its nominal end, and the next stage starts from that value without a snap.
#include <gtest/gtest.h>

#include "modules/sequencing/Envelope.h"

TEST(EnvelopeParabolicEnd, NextStageStartsFromTheUnsnappedLevel) {
    BR::EnvParameters p;
    for (int s = 0; s < BR::kNumEnvSegments; ++s)
        p.type[s] = 0;
    p.time[BR::kSegA1] = 0.0f;
    p.time[BR::kSegA2] = 0.1f;  // 4800 samples from 0 to 1
    p.time[BR::kSegA3] = 0.1f;
    p.shape[BR::kSegA2] = 0.3f;
    p.levelA1 = 0.0f;
    p.levelA2 = 1.0f;
    p.sustain = 0.5f;
    p.resetToZero = true;
    BR::Envelope env;
    BR::envNoteOn(env, 1.0f, p, 48000.0f);
    const BR::EnvStage a2 = env.stages[BR::kEnvA2];
    const BR::EnvStage a3 = env.stages[BR::kEnvA3];
    ASSERT_EQ(a2.samplesLeft, 4800u);

    float out[4802];
    BR::renderEnvelope(env, out, 4801);  // A1 (one sample), then all of A2
    EXPECT_EQ(env.stageIndex, BR::kEnvA3);
    EXPECT_EQ(env.stages[BR::kEnvA2].samplesLeft, 0u);

    // The recurrence run by hand over 4800 samples.
    float level = 0.0f, increment = a2.increment;
    for (int i = 0; i < 4800; ++i) {
        level += increment;
        increment += a2.coefficient;
    }
    EXPECT_EQ(out[4800], level);
    EXPECT_EQ(env.level, level);
    EXPECT_NE(level, 1.0f);  // float error: not exactly the nominal end
    EXPECT_NEAR(level, 1.0f, 1e-3f);
    EXPECT_EQ(env.stages[BR::kEnvA2].increment, increment);  // written back

    // A3 was prepared from the nominal 1.0 but runs from where A2 left the level.
    BR::renderEnvelope(env, out + 4801, 1);
    EXPECT_EQ(out[4801], level + a3.increment);
}
