// With A1, A2 and A3 all at time 0 and "Reset To Zero" off, a retrigger of a held note runs through
// the three attack stages in three samples and is back in sustain on the fourth.
#include <gtest/gtest.h>

#include "modules/sequencing/Envelope.h"

TEST(EnvelopeRetrigger, ZeroAttackTimesPassInThreeSamples) {
    for (int32_t type : {0, 1}) {
        BR::EnvParameters p;
        p.time[BR::kSegA1] = p.time[BR::kSegA2] = p.time[BR::kSegA3] = 0.0f;
        for (int s = 0; s < BR::kNumEnvSegments; ++s)
            p.type[s] = type;
        p.levelA1 = 0.3f;
        p.levelA2 = 0.9f;
        p.sustain = 0.6f;
        p.resetToZero = false;
        BR::Envelope env;
        BR::EnvDisplayValues display;
        BR::envNoteOn(env, 1.0f, p, 48000.0f);
        float out[16];
        BR::renderEnvelope(env, out, 16);
        ASSERT_EQ(env.stageIndex, BR::kEnvSustain);
        BR::envBlockUpdate(env, p, 48000.0f, display);
        ASSERT_EQ(env.level, 0.6f);

        BR::envNoteOn(env, 1.0f, p, 48000.0f);  // the note is held: a retrigger
        ASSERT_EQ(env.stageIndex, BR::kEnvA1);
        // t1 is 0, so A1 runs from the present level to itself.
        EXPECT_EQ(env.stages[BR::kEnvA1].samplesLeft, 1u);
        const int32_t expected[3] = {BR::kEnvA2, BR::kEnvA3, BR::kEnvSustain};
        for (int i = 0; i < 3; ++i) {
            BR::renderEnvelope(env, out, 1);
            EXPECT_EQ(env.stageIndex, expected[i]) << "type " << type << " sample " << i;
        }
        EXPECT_NEAR(out[0], 0.6f, 1e-6f);
    }
}
