// The segment cache keeps entries that are still in use: a steady pattern of more segments than the
// cache has entries (gates at six velocities in turn: eighteen segments) still copies the segments it
// holds, where evicting the least recently used entry would evict each one just before its next use and
// copy nothing. When the pattern changes, the unused entries go to the new segments after kKeep segment
// starts, and copying resumes. The output keeps every bit of an envelope rendered without a cache.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "modules/sequencing/Envelope.h"

namespace {

constexpr uint32_t kPeriod = 4800;  // 10 Hz at 48 kHz, high for half of it
constexpr float kRate = 48000.0f;

BR::EnvParameters Steady() {
    BR::EnvParameters p;  // A 10 ms to 1, D 50 ms to 0.5, R 100 ms, all exponential
    p.time[BR::kSegA1] = 0.01f;
    p.levelA1 = 1.0f;
    p.time[BR::kSegA2] = 0.05f;
    p.levelA2 = 0.5f;
    p.time[BR::kSegA3] = 0.0f;
    p.time[BR::kSegR1] = 0.1f;
    p.time[BR::kSegR2] = 0.0f;
    p.velocityDepth = 1.0f;  // the velocity scales every level: new levels, new segments
    return p;
}

struct Rendering {
    BR::Envelope env;
    std::unique_ptr<BR::EnvSegmentCache> cache;
    std::vector<float> out;
};

// Renders periods [from, to) in pieces of 64, the note's velocity of period k given by `velocity`.
template <typename Velocity>
void Render(Rendering& run, const BR::EnvParameters& p, uint32_t from, uint32_t to, Velocity velocity) {
    run.out.resize(size_t(to) * kPeriod);
    for (uint32_t k = from; k < to; ++k) {
        for (uint32_t at = 0; at < kPeriod; at += 64) {
            if (at == 0) BR::envNoteOn(run.env, velocity(k), p, kRate);
            if (at == kPeriod / 2) BR::envNoteOff(run.env, p, kRate);
            BR::renderEnvelope(run.env, run.out.data() + size_t(k) * kPeriod + at, 64, run.cache.get());
        }
    }
}

void ExpectSameBits(const Rendering& a, const Rendering& b) {
    ASSERT_EQ(a.out.size(), b.out.size());
    for (size_t i = 0; i < a.out.size(); ++i)
        ASSERT_EQ(std::memcmp(&a.out[i], &b.out[i], sizeof(float)), 0) << "sample " << i;
}

float SixVelocities(uint32_t k) {
    return 0.5f + 0.08f * float(k % 6);
}

}  // namespace

TEST(EnvelopeSegmentCacheKeep, PatternOfMoreSegmentsThanEntriesStillCopies) {
    const BR::EnvParameters p = Steady();
    Rendering cached{{}, std::make_unique<BR::EnvSegmentCache>(), {}}, plain{{}, nullptr, {}};
    Render(cached, p, 0, 20, SixVelocities);
    Render(plain, p, 0, 20, SixVelocities);
    const uint64_t copied = cached.cache->copied;
    Render(cached, p, 20, 40, SixVelocities);
    Render(plain, p, 20, 40, SixVelocities);
    ExpectSameBits(cached, plain);
    // Eighteen segments of which eight are held: a fair share of the last twenty periods is copied.
    EXPECT_GT(cached.cache->copied - copied, 20u * 400u);
}

TEST(EnvelopeSegmentCacheKeep, NewPatternTakesOverUnusedEntries) {
    const BR::EnvParameters p = Steady();
    Rendering cached{{}, std::make_unique<BR::EnvSegmentCache>(), {}}, plain{{}, nullptr, {}};
    Render(cached, p, 0, 20, SixVelocities);
    Render(plain, p, 0, 20, SixVelocities);
    // From period 20 every note has velocity 0.45: three new segments while all entries are in use.
    auto steady = [](uint32_t k) { return k < 20 ? SixVelocities(k) : 0.45f; };
    Render(cached, p, 20, 23, steady);
    Render(plain, p, 20, 23, steady);
    const uint64_t early = cached.cache->copied;
    Render(cached, p, 23, 25, steady);
    EXPECT_EQ(cached.cache->copied, early);  // the old entries are still kept
    // kKeep segment starts later (three per period) they are free to take, and copying resumes.
    Render(cached, p, 25, 40, steady);
    Render(plain, p, 23, 40, steady);
    ExpectSameBits(cached, plain);
    const uint64_t settled = cached.cache->copied, settledComputed = cached.cache->computed;
    Render(cached, p, 40, 45, steady);
    // Every exponential sample of these periods is copied but the release's past an entry's capacity.
    const uint64_t copied = cached.cache->copied - settled,
                   computed = cached.cache->computed - settledComputed;
    EXPECT_GT(copied, 5u * 2000u);
    EXPECT_LT(computed, copied / 4u);
}
