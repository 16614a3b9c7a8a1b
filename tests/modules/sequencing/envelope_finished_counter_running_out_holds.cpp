// The finished stage is a flat segment of 2^32 - 1 samples whose counter is never reloaded. When it
// has run down, the envelope still renders every sample asked for, holding its level, and stays
// finished; a note-on starts it as usual.
#include <gtest/gtest.h>

#include <algorithm>

#include "modules/sequencing/Envelope.h"

TEST(EnvelopeFinishedCounter, RunningOutHoldsTheLevel) {
    BR::Envelope env;
    ASSERT_EQ(env.stages[BR::kEnvFinished].samplesLeft, 0xFFFFFFFFu);
    env.level = 0.25f;
    env.stages[BR::kEnvFinished].samplesLeft = 3;  // as after 2^32 - 4 finished samples
    float out[10];
    std::fill(out, out + 10, -1.0f);
    BR::renderEnvelope(env, out, 10);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(out[i], 0.25f) << i;
    EXPECT_EQ(env.stageIndex, BR::kEnvFinished);
    EXPECT_EQ(env.stages[BR::kEnvFinished].samplesLeft, 0u);
    EXPECT_EQ(env.level, 0.25f);

    // A later block renders too, and a note-on runs the attack from there.
    BR::renderEnvelope(env, out, 4);
    EXPECT_EQ(out[3], 0.25f);
    BR::EnvParameters p;
    p.resetToZero = true;
    BR::envNoteOn(env, 1.0f, p, 48000.0f);
    BR::renderEnvelope(env, out, 2);
    EXPECT_EQ(env.stageIndex, BR::kEnvA2);
    EXPECT_GT(out[1], 0.0f);
}
