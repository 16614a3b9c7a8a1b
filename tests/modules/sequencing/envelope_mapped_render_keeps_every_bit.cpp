// The envelope rendered with its output mapping applied where the samples are made writes the bits of a
// plain render followed by level * scale + offset: parabolic, straight and exponential segments (with
// and without the segment cache), sustain and finished, in pieces of 1, 7, 32 and 256 samples, with
// rising, falling and zero scales.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "framework/SampleKernels.h"
#include "modules/sequencing/Envelope.h"

namespace {

BR::EnvParameters Shapes(int32_t type, float shape) {
    BR::EnvParameters p;
    for (int s = 0; s < BR::kNumEnvSegments; ++s) {
        p.type[s] = type;
        p.shape[s] = shape;
    }
    p.time[BR::kSegA1] = 0.01f;
    p.levelA1 = 1.0f;
    p.time[BR::kSegA2] = 0.02f;
    p.levelA2 = 0.7f;
    p.time[BR::kSegA3] = 0.01f;
    p.sustain = 0.5f;
    p.time[BR::kSegR1] = 0.03f;
    p.levelR1 = 0.2f;
    p.time[BR::kSegR2] = 0.01f;
    p.velocityDepth = 0.5f;
    return p;
}

// Gates every 4000 samples (high for 2500 of them, sustain reached), at changing velocities.
std::vector<float> Render(const BR::EnvParameters& p, uint32_t total, uint32_t piece, bool mapped,
                          float scale, float offset, BR::EnvSegmentCache* cache) {
    BR::Envelope env;
    std::vector<float> out(total);
    BR::EnvDisplayValues display;
    for (uint32_t done = 0; done < total;) {
        const uint32_t phase = done % 4000;
        if (phase == 0) BR::envNoteOn(env, 0.5f + 0.1f * float((done / 4000) % 3), p, 48000.0f);
        if (phase == 2500) BR::envNoteOff(env, p, 48000.0f);
        BR::envBlockUpdate(env, p, 48000.0f, display);
        const uint32_t next = phase < 2500 ? 2500 - phase : 4000 - phase;
        const uint32_t n = std::min({piece, total - done, next});
        if (mapped) {
            BR::renderEnvelopeMapped(env, out.data() + done, n, cache, scale, offset);
        } else {
            BR::renderEnvelope(env, out.data() + done, n, cache);
            BR::ScaleOffsetSamples(out.data() + done, n, scale, offset);
        }
        done += n;
    }
    return out;
}

void ExpectSame(const BR::EnvParameters& p, bool withCache) {
    const uint32_t total = 20000;
    for (const auto& [scale, offset] : {std::pair{1.0f, 0.0f}, {2.0f, -1.0f}, {-0.7f, 0.3f}, {0.0f, 0.25f}}) {
        for (uint32_t piece : {1u, 7u, 32u, 256u}) {
            auto cacheA = std::make_unique<BR::EnvSegmentCache>();
            auto cacheB = std::make_unique<BR::EnvSegmentCache>();
            const auto plain =
                Render(p, total, piece, false, scale, offset, withCache ? cacheA.get() : nullptr);
            const auto mapped =
                Render(p, total, piece, true, scale, offset, withCache ? cacheB.get() : nullptr);
            if (scale != 0.0f) {
                ASSERT_NE(plain[1000], plain[3000]);  // the envelope moves
            }
            for (uint32_t i = 0; i < total; ++i) {
                uint32_t a, b;
                std::memcpy(&a, &plain[i], sizeof a);
                std::memcpy(&b, &mapped[i], sizeof b);
                ASSERT_EQ(a, b) << "piece " << piece << " scale " << scale << " sample " << i;
            }
            if (withCache) {
                EXPECT_GT(cacheB->copied, 0u);
            }
        }
    }
}

}  // namespace

TEST(EnvelopeMappedRender, Parabolic) {
    ExpectSame(Shapes(BR::kEnvParabolic, 0.5f), false);
}

TEST(EnvelopeMappedRender, Straight) {
    ExpectSame(Shapes(BR::kEnvParabolic, 1.0f), false);
}

TEST(EnvelopeMappedRender, ExponentialWithAndWithoutCache) {
    ExpectSame(Shapes(BR::kEnvExponential, 0.5f), false);
    ExpectSame(Shapes(BR::kEnvExponential, 0.2f), true);
}

TEST(EnvelopeMappedRender, FinishedHoldsMapped) {
    BR::Envelope env;
    env.level = 0.25f;
    env.stages[BR::kEnvFinished].samplesLeft = 3;  // runs out within the call
    std::vector<float> out(10);
    BR::renderEnvelopeMapped(env, out.data(), 10, nullptr, 2.0f, -1.0f);
    for (float v : out)
        EXPECT_EQ(v, -0.5f);
}
