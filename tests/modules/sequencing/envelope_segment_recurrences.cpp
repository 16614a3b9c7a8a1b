// The two segment recurrences: parabolic first and second differences by shape and direction, the
// exponential coefficients, and the overshoot rule at the end of an exponential segment.
#include <gtest/gtest.h>

#include <cmath>

#include "modules/sequencing/Envelope.h"

namespace {
// Renders one prepared stage (placed at A1, with A2 flat at its level) from `start`.
std::vector<float> RunStage(const BR::EnvStage& stage, float start, uint32_t count,
                            BR::Envelope* envOut = nullptr) {
    BR::Envelope env;
    env.stageIndex = BR::kEnvA1;
    env.level = start;
    env.stages[BR::kEnvA1] = stage;
    std::vector<float> out(count);
    BR::renderEnvelope(env, out.data(), count);
    if (envOut) *envOut = env;
    return out;
}
}  // namespace

TEST(EnvelopeRecurrence, ParabolicShapeOneIsAStraightLine) {
    BR::EnvStage stage;
    BR::setupEnvStage(stage, 0, 1.0f, 1.0f, 0.0f, 1.0f, 4.0f);
    EXPECT_EQ(stage.increment, 0.25f);
    EXPECT_EQ(stage.coefficient, 0.0f);
    EXPECT_EQ(RunStage(stage, 0.0f, 4), (std::vector<float>{0.25f, 0.5f, 0.75f, 1.0f}));
    BR::setupEnvStage(stage, 0, 1.0f, 1.0f, 1.0f, 0.0f, 4.0f);
    EXPECT_EQ(RunStage(stage, 1.0f, 4), (std::vector<float>{0.75f, 0.5f, 0.25f, 0.0f}));
}

TEST(EnvelopeRecurrence, ParabolicShapeZeroBendsTheSameWayBothDirections) {
    BR::EnvStage stage;
    // Rising: a = 1, b = 0, r = 1/4: increment 1/16, coefficient 1/8; slow start, fast end.
    BR::setupEnvStage(stage, 0, 1.0f, 0.0f, 0.0f, 1.0f, 4.0f);
    EXPECT_EQ(stage.increment, 0.0625f);
    EXPECT_EQ(stage.coefficient, 0.125f);
    EXPECT_EQ(RunStage(stage, 0.0f, 4), (std::vector<float>{0.0625f, 0.25f, 0.5625f, 1.0f}));
    // Falling: a = 1, b = -2: increment -7/16, coefficient 1/8; fast start, slow end.
    BR::setupEnvStage(stage, 0, 1.0f, 0.0f, 1.0f, 0.0f, 4.0f);
    EXPECT_EQ(stage.increment, -0.4375f);
    EXPECT_EQ(stage.coefficient, 0.125f);
    EXPECT_EQ(RunStage(stage, 1.0f, 4), (std::vector<float>{0.5625f, 0.25f, 0.0625f, 0.0f}));
}

TEST(EnvelopeRecurrence, ParabolicLeavesFallingAndTargetAlone) {
    BR::EnvStage stage;
    stage.falling = true;
    stage.target = 0.75f;
    BR::setupEnvStage(stage, 0, 0.5f, 0.5f, 0.0f, 1.0f, 48000.0f);
    EXPECT_TRUE(stage.falling);
    EXPECT_EQ(stage.target, 0.75f);
    EXPECT_EQ(stage.type, 0);
    EXPECT_EQ(stage.samplesLeft, 24000u);
}

TEST(EnvelopeRecurrence, ExponentialCoefficients) {
    for (float shape : {0.0f, 0.5f, 1.0f}) {
        BR::EnvStage stage;
        BR::setupEnvStage(stage, 1, 0.01f, shape, 0.2f, 0.9f, 48000.0f);
        const float e = std::exp(shape * 4.8f - 5.0f);
        const double c = std::exp(-std::log((0.7 + double(e)) / e) / 480.0);
        EXPECT_EQ(stage.type, 1);
        EXPECT_FALSE(stage.falling);
        EXPECT_EQ(stage.coefficient, float(c)) << shape;
        EXPECT_NEAR(stage.increment, float((0.9 + double(e)) * (1.0 - c)), 1e-9f) << shape;
        EXPECT_EQ(stage.target, 0.9f);
        EXPECT_EQ(stage.samplesLeft, 480u);

        BR::setupEnvStage(stage, 1, 0.01f, shape, 0.9f, 0.2f, 48000.0f);
        EXPECT_TRUE(stage.falling);
        EXPECT_NEAR(stage.increment, float((0.2 - double(e)) * (1.0 - c)), 1e-9f) << shape;
    }
}

TEST(EnvelopeRecurrence, ExponentialReachesTargetInAboutItsSamples) {
    for (float shape : {0.0f, 0.5f, 1.0f}) {
        BR::EnvStage stage;
        BR::setupEnvStage(stage, 1, 0.01f, shape, 0.0f, 1.0f, 48000.0f);
        BR::Envelope env;
        const auto out = RunStage(stage, 0.0f, 480, &env);
        // Whether it reaches the target on the last sample or runs out of samples just short of
        // it, the segment is over after 480 samples, at the target within float error.
        EXPECT_EQ(env.stageIndex, BR::kEnvA2) << shape;
        EXPECT_NEAR(out[479], 1.0f, 1e-4f) << shape;
        EXPECT_LT(out[470], 1.0f) << shape;
        for (size_t i = 1; i < out.size(); ++i)
            ASSERT_GE(out[i], out[i - 1]) << shape << " " << i;
    }
}

TEST(EnvelopeRecurrence, EndingSampleWritesTargetButLevelKeepsTheOvershoot) {
    BR::EnvStage stage;
    BR::setupEnvStage(stage, 1, 0.001f, 0.5f, 0.0f, 1.0f, 48000.0f);  // 48 samples, rising to 1
    BR::Envelope env;
    env.stageIndex = BR::kEnvA1;
    env.stages[BR::kEnvA1] = stage;
    // A2 parabolic, flat: the level it writes is the one A1 left.
    BR::setupEnvStage(env.stages[BR::kEnvA2], 0, 1.0f, 0.5f, 1.0f, 1.0f, 48000.0f);
    float out[60];
    BR::renderEnvelope(env, out, 60);
    float level = 0.0f;
    int i = 0;
    for (;; ++i) {
        level = stage.coefficient * level + stage.increment;
        if (level >= 1.0f) break;
        ASSERT_EQ(out[i], level) << i;
    }
    EXPECT_EQ(out[i], 1.0f);       // the target itself
    EXPECT_GT(level, 1.0f);        // overshot
    EXPECT_EQ(out[i + 1], level);  // no snapping: A2 continues from the overshot value
    EXPECT_EQ(env.stages[BR::kEnvA1].samplesLeft, 0u);
    EXPECT_EQ(env.stageIndex, BR::kEnvA2);
}

TEST(EnvelopeRecurrence, FallingNotANumberEndsTheSegment) {
    BR::EnvStage stage;
    BR::setupEnvStage(stage, 1, 1.0f, 0.5f, 1.0f, 0.0f, 48000.0f);
    BR::Envelope env;
    const auto out = RunStage(stage, std::nanf(""), 2, &env);
    EXPECT_EQ(out[0], 0.0f);
    EXPECT_EQ(env.stages[BR::kEnvA1].samplesLeft, 0u);
}

TEST(EnvelopeRecurrence, SeveralStagesInOneCall) {
    // At 1024 Hz these times are whole sample counts, so each parabolic segment lands on its level.
    BR::EnvParameters p;
    p.time[BR::kSegA1] = 4.0f / 1024.0f;
    p.time[BR::kSegA2] = 9.0f / 1024.0f;
    p.time[BR::kSegA3] = 4.0f / 1024.0f;
    p.levelA1 = 0.5f;
    p.resetToZero = true;
    for (int s = 0; s < BR::kNumEnvSegments; ++s)
        p.type[s] = 0;
    BR::Envelope env;
    BR::envNoteOn(env, 1.0f, p, 1024.0f);
    EXPECT_EQ(env.stages[BR::kEnvA1].samplesLeft, 4u);
    EXPECT_EQ(env.stages[BR::kEnvA2].samplesLeft, 9u);
    EXPECT_EQ(env.stages[BR::kEnvA3].samplesLeft, 4u);
    float out[20];
    BR::renderEnvelope(env, out, 20);
    EXPECT_EQ(env.stageIndex, BR::kEnvSustain);
    EXPECT_EQ(env.stages[BR::kEnvSustain].samplesLeft, 0xFFFFFFFFu - 3u);  // counted down, not reloaded
    EXPECT_NEAR(out[3], 0.5f, 1e-6f);
    EXPECT_NEAR(out[12], 1.0f, 1e-6f);
    EXPECT_NEAR(out[16], 0.5f, 1e-6f);
    EXPECT_EQ(out[19], out[16]);
}

TEST(EnvelopeRecurrence, FractionalSampleCountEndsEarly) {
    // 4.8 samples: the curve is laid over 4.8 samples but the segment runs 4 of them.
    BR::EnvStage stage;
    BR::setupEnvStage(stage, 0, 0.0001f, 1.0f, 0.0f, 1.0f, 48000.0f);
    EXPECT_EQ(stage.samplesLeft, 4u);
    const auto out = RunStage(stage, 0.0f, 5);
    EXPECT_NEAR(out[3], 4.0f / 4.8f, 1e-5f);
    EXPECT_EQ(out[4], out[3]);
}
