// A release whose "Level R1" lies above a small sustain is rescaled by level / sustain, up to a thousand
// times; notes retriggered during such releases compound it (the attack takes off from where the
// release has got to), and the level used to run to infinity within a few dozen notes (the fuzzer's
// Voice Controller gave an infinite output). The rescaled end level is held at a million times full
// scale: every level stays finite, and a release from an ordinary level is rescaled as before.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "modules/sequencing/Envelope.h"
#include "tests/support/Render.h"

namespace {
BR::EnvParameters RisingRelease() {
    BR::EnvParameters p;
    p.sustain = 0.0011f;  // just above the threshold: R1 is rescaled by level / 0.0011
    p.levelR1 = 1.0f;
    return p;
}
}  // namespace

TEST(EnvelopeRelease, RetriggersDuringARisingReleaseStayFinite) {
    const BR::EnvParameters p = RisingRelease();
    BR::Envelope env;
    std::vector<float> out(2400);
    float peak = 0.0f;
    for (int note = 0; note < 200; ++note) {
        BR::envNoteOn(env, 1.0f, p, 48000.0f);
        BR::renderEnvelope(env, out.data(), 480);  // 10 ms of attack
        BR::envNoteOff(env, p, 48000.0f);
        ASSERT_TRUE(std::isfinite(env.stages[BR::kEnvR1].target)) << "note " << note;
        ASSERT_LE(std::fabs(env.stages[BR::kEnvR1].target), 1e6f) << "note " << note;
        BR::renderEnvelope(env, out.data(), uint32_t(out.size()));  // 50 ms of the release
        for (float v : out) {
            ASSERT_TRUE(std::isfinite(v)) << "note " << note;
            peak = std::max(peak, std::fabs(v));
        }
        ASSERT_TRUE(std::isfinite(env.level)) << "note " << note;
    }
    // The level did climb far above full scale: the bound is what held it.
    EXPECT_GT(peak, 1000.0f);
    EXPECT_LE(peak, 1.001e6f);
}

TEST(EnvelopeRelease, OrdinaryRisingReleaseIsRescaledAsBefore) {
    // Released at 1 from a sustain of 0.5 with "Level R1" 0.8: the end level is 0.8 * 1 / 0.5.
    BR::EnvParameters p;
    p.sustain = 0.5f;
    p.levelR1 = 0.8f;
    BR::Envelope env;
    BR::envNoteOn(env, 1.0f, p, 48000.0f);
    env.level = 1.0f;
    BR::envNoteOff(env, p, 48000.0f);
    EXPECT_FLOAT_EQ(env.stages[BR::kEnvR1].target, 1.6f);
}

TEST(EnvelopeRelease, VoiceControllerOutputsStayFiniteUnderFastRetriggers) {
    // A note every four samples, released after two: before the bound, the third output (Env1 at
    // full depth) passed 1e21 within 200 samples and went on to infinity.
    auto driver = BR::Test::MakeDriver("voicecontroller");
    driver->SetParameterByName("Env 1 Sustain", 0.0079f);
    driver->SetParameterByName("Env 1 Level R1", 1.0f);
    driver->SetParameterByName("Env 1 Time R1", 0.0f);
    driver->SetParameterByName("Env 1 Time R2", 1.0f);
    std::vector<BR::Test::MidiAt> midi;
    for (uint32_t frame = 10; frame < 1000; frame += 4) {
        midi.push_back({frame, {0x90, 60, 64}});
        midi.push_back({frame + 2, {0x80, 60, 0}});
    }
    const BR::Test::Channels out = BR::Test::RenderFrames(*driver, 1024, 64, {}, midi);
    float peak = 0.0f;
    for (const auto& channel : out)
        for (float v : channel) {
            ASSERT_TRUE(std::isfinite(v));
            peak = std::max(peak, std::fabs(v));
        }
    EXPECT_GT(peak, 1000.0f);
    EXPECT_LE(peak, 1.001e6f);
}
