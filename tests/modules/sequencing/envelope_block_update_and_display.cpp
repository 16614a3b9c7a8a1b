// The per-sub-block update: sustain follows its parameter at once, a finished envelope sits at 0,
// and the display position and level for the editor.
#include <gtest/gtest.h>

#include "modules/sequencing/Envelope.h"

namespace {
BR::EnvParameters Times() {
    BR::EnvParameters p;
    const float t[5] = {0.1f, 0.2f, 0.3f, 0.4f, 0.5f};  // total 1 + 1.5 = 2.5
    for (int s = 0; s < 5; ++s) {
        p.time[s] = t[s];
        p.type[s] = 0;
    }
    p.resetToZero = true;
    return p;
}
}  // namespace

TEST(EnvelopeBlockUpdate, SustainFollowsTheKnob) {
    BR::EnvParameters p = Times();
    p.velocityDepth = 1.0f;
    BR::Envelope env;
    BR::EnvDisplayValues display;
    BR::envNoteOn(env, 0.5f, p, 1000.0f);
    env.stageIndex = BR::kEnvSustain;
    p.sustain = 0.8f;
    BR::envBlockUpdate(env, p, 1000.0f, display);
    EXPECT_FLOAT_EQ(env.level, 0.4f);
    EXPECT_FLOAT_EQ(display.level, 0.4f);
    EXPECT_FLOAT_EQ(display.position, 0.6f / 2.5f);
}

TEST(EnvelopeBlockUpdate, FinishedSitsAtZero) {
    BR::Envelope env;
    BR::EnvDisplayValues display{0.3f, 0.3f};
    env.level = -0.001f;  // an overshoot of R2 below 0
    BR::envBlockUpdate(env, Times(), 1000.0f, display);
    EXPECT_EQ(env.level, 0.0f);
    EXPECT_EQ(display.position, 0.0f);
    EXPECT_EQ(display.level, 0.0f);
}

TEST(EnvelopeBlockUpdate, DisplayPositionThroughTheStages) {
    const BR::EnvParameters p = Times();
    BR::Envelope env;
    BR::EnvDisplayValues display;
    BR::envNoteOn(env, 1.0f, p, 1000.0f);  // A1 100 samples, A2 200, A3 300
    BR::envBlockUpdate(env, p, 1000.0f, display);
    EXPECT_NEAR(display.position, 0.0f, 1e-6f);
    float out[1000];
    BR::renderEnvelope(env, out, 150);  // 50 samples into A2
    BR::envBlockUpdate(env, p, 1000.0f, display);
    EXPECT_EQ(env.stageIndex, BR::kEnvA2);
    EXPECT_NEAR(display.position, 0.15f / 2.5f, 1e-6f);
    EXPECT_EQ(display.level, env.level);

    BR::envNoteOff(env, p, 1000.0f);  // R1 400 samples, R2 500
    BR::renderEnvelope(env, out, 100);
    BR::envBlockUpdate(env, p, 1000.0f, display);
    // A1 + A2 + A3 + R1 - 0.3 s left + 1 for the sustain.
    EXPECT_NEAR(display.position, 1.7f / 2.5f, 1e-6f);

    BR::EnvParameters slow = p;
    slow.multiplier = 2.0f;  // ten times: the remaining samples count in raw seconds
    BR::envNoteOff(env, slow, 1000.0f);
    BR::renderEnvelope(env, out, 1000);  // 1 s of the 4 s of R1
    BR::envBlockUpdate(env, slow, 1000.0f, display);
    EXPECT_NEAR(display.position, 1.7f / 2.5f, 1e-6f);
}
