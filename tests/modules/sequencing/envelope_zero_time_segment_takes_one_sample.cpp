// A segment of time 0 still lasts exactly one sample, in either curve type and for every segment.
#include <gtest/gtest.h>

#include "modules/sequencing/Envelope.h"

TEST(EnvelopeZeroTime, SetupGivesOneSample) {
    for (int32_t type : {0, 1}) {
        BR::EnvStage stage;
        BR::setupEnvStage(stage, type, 0.0f, 0.5f, 0.0f, 1.0f, 48000.0f);
        EXPECT_EQ(stage.samplesLeft, 1u) << type;
        BR::setupEnvStage(stage, type, 0.00001f, 0.5f, 1.0f, 0.0f, 48000.0f);  // 0.48 samples
        EXPECT_EQ(stage.samplesLeft, 1u) << type;
    }
}

TEST(EnvelopeZeroTime, EveryZeroSegmentRendersOneSample) {
    for (int32_t type : {0, 1}) {
        BR::EnvParameters p;
        for (int s = 0; s < BR::kNumEnvSegments; ++s) {
            p.time[s] = 0.0f;
            p.type[s] = type;
        }
        p.levelA1 = 0.25f;
        p.levelA2 = 1.0f;
        p.sustain = 0.5f;
        p.levelR1 = 0.125f;
        p.resetToZero = true;
        BR::Envelope env;
        BR::envNoteOn(env, 1.0f, p, 48000.0f);
        float out[4];
        // A1, A2, A3: one sample each, each ending on its level; then sustain.
        const int32_t stagesAfter[3] = {BR::kEnvA2, BR::kEnvA3, BR::kEnvSustain};
        const float levels[3] = {0.25f, 1.0f, 0.5f};
        for (int i = 0; i < 3; ++i) {
            BR::renderEnvelope(env, out, 1);
            EXPECT_EQ(env.stageIndex, stagesAfter[i]) << type << " " << i;
            EXPECT_NEAR(out[0], levels[i], 1e-6f) << type << " " << i;
        }
        BR::renderEnvelope(env, out, 4);
        EXPECT_EQ(env.stageIndex, BR::kEnvSustain);
        BR::envNoteOff(env, p, 48000.0f);
        BR::renderEnvelope(env, out, 1);
        EXPECT_EQ(env.stageIndex, BR::kEnvR2) << type;
        EXPECT_NEAR(out[0], 0.125f, 1e-6f) << type;
        BR::renderEnvelope(env, out, 1);
        EXPECT_EQ(env.stageIndex, BR::kEnvFinished) << type;
        EXPECT_NEAR(out[0], 0.0f, 1e-6f) << type;
    }
}
