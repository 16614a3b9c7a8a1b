// An envelope rendered in one call equals the same envelope rendered in pieces of 1, 7 and 256
// samples, sample for sample, with note events at the same samples and both curve types.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "modules/sequencing/Envelope.h"

namespace {

struct Event {
    uint32_t at;
    bool on;
    float velocity;
};

// Renders `total` samples in pieces of at most `piece`, cutting also at each event.
std::vector<float> Render(const BR::EnvParameters& p, const std::vector<Event>& events, uint32_t total,
                          uint32_t piece) {
    BR::Envelope env;
    std::vector<float> out(total);
    uint32_t done = 0;
    size_t next = 0;
    while (done < total) {
        while (next < events.size() && events[next].at == done) {
            if (events[next].on) {
                BR::envNoteOn(env, events[next].velocity, p, 48000.0f);
            } else {
                BR::envNoteOff(env, p, 48000.0f);
            }
            ++next;
        }
        uint32_t n = std::min(piece, total - done);
        if (next < events.size()) n = std::min(n, events[next].at - done);
        BR::renderEnvelope(env, out.data() + done, n);
        done += n;
    }
    return out;
}

void ExpectSplitsEqual(const BR::EnvParameters& p) {
    // Attack, sustain, a retrigger inside the attack, release, a note-on during the release, release.
    const std::vector<Event> events = {{10, true, 0.8f},    {2000, false, 0}, {2600, true, 1.0f},
                                       {2700, true, 0.5f},  {9000, false, 0}, {9500, true, 0.9f},
                                       {10000, false, 0.0f}};
    const uint32_t total = 24000;
    const auto whole = Render(p, events, total, total);
    for (uint32_t piece : {1u, 7u, 256u}) {
        const auto split = Render(p, events, total, piece);
        for (uint32_t i = 0; i < total; ++i)
            ASSERT_EQ(split[i], whole[i]) << "piece " << piece << " sample " << i;
    }
    // The envelope went through its whole course.
    EXPECT_GT(*std::max_element(whole.begin(), whole.end()), 0.5f);
    EXPECT_NEAR(whole[total - 1], 0.0f, 1e-3f);
}

BR::EnvParameters Shapes(int32_t type) {
    BR::EnvParameters p;
    const float times[5] = {0.005f, 0.01f, 0.02f, 0.03f, 0.05f};
    const float shapes[5] = {0.1f, 0.9f, 0.4f, 0.0f, 0.7f};
    for (int s = 0; s < BR::kNumEnvSegments; ++s) {
        p.time[s] = times[s];
        p.shape[s] = shapes[s];
        p.type[s] = type < 0 ? s % 2 : type;
    }
    p.levelA1 = 0.3f;
    p.levelA2 = 1.0f;
    p.sustain = 0.6f;
    p.levelR1 = 0.2f;
    p.velocityDepth = 0.5f;
    return p;
}

}  // namespace

TEST(EnvelopeBlockSplit, Parabolic) {
    ExpectSplitsEqual(Shapes(0));
}

TEST(EnvelopeBlockSplit, Exponential) {
    ExpectSplitsEqual(Shapes(1));
}

TEST(EnvelopeBlockSplit, MixedTypesAndTimeMultiplier) {
    BR::EnvParameters p = Shapes(-1);
    p.multiplier = 0.0f;  // 0.1: ten times shorter
    ExpectSplitsEqual(p);
}
