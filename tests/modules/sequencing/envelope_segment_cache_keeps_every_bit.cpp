// An envelope rendered through a segment cache writes the same bits as without one, in pieces of 1, 7
// and 256 samples: at a steady gate (segments repeat and are copied), with gates of changing length
// (entries copied part way and then grown), with more different segments than entries, and with
// segments longer than an entry holds. A steady gate copies most of its samples.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "modules/sequencing/Envelope.h"

namespace {

struct Event {
    uint32_t at;
    bool on;
    float velocity;
};

std::vector<float> Render(const BR::EnvParameters& p, const std::vector<Event>& events, uint32_t total,
                          uint32_t piece, BR::EnvSegmentCache* cache) {
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
        BR::renderEnvelope(env, out.data() + done, n, cache);
        done += n;
    }
    return out;
}

// Gates of `high[k % size]` samples every `period` samples, at velocity `velocity(k)`.
template <typename Velocity>
std::vector<Event> Gates(uint32_t total, uint32_t period, const std::vector<uint32_t>& high,
                         Velocity velocity) {
    std::vector<Event> events;
    for (uint32_t k = 0; (k + 1) * period <= total; ++k) {
        events.push_back({k * period, true, velocity(k)});
        events.push_back({k * period + high[k % high.size()], false, 0.0f});
    }
    return events;
}

struct Counts {
    uint64_t copied = 0, computed = 0;
};

// Returns the cache's counters after the last of the pieces.
Counts ExpectSameBits(const BR::EnvParameters& p, const std::vector<Event>& events, uint32_t total) {
    const auto plain = Render(p, events, total, total, nullptr);
    auto cache = std::make_unique<BR::EnvSegmentCache>();
    for (uint32_t piece : {1u, 7u, 256u, total}) {
        cache = std::make_unique<BR::EnvSegmentCache>();
        const auto cached = Render(p, events, total, piece, cache.get());
        for (uint32_t i = 0; i < total; ++i) {
            uint32_t a, b;
            std::memcpy(&a, &plain[i], sizeof a);
            std::memcpy(&b, &cached[i], sizeof b);
            if (a != b) {
                ADD_FAILURE() << "piece " << piece << " sample " << i << ": " << plain[i] << " against "
                              << cached[i];
                return {};
            }
        }
    }
    EXPECT_GT(*std::max_element(plain.begin(), plain.end()), 0.3f);  // the envelope moved
    return {cache->copied, cache->computed};
}

// The peer benchmark's envelope: A 10 ms to 1, D 50 ms to 0.5, R 100 ms, all exponential.
BR::EnvParameters Steady() {
    BR::EnvParameters p;
    p.time[BR::kSegA1] = 0.01f;
    p.levelA1 = 1.0f;
    p.time[BR::kSegA2] = 0.05f;
    p.levelA2 = 0.5f;
    p.time[BR::kSegA3] = 0.0f;
    p.sustain = 0.5f;
    p.time[BR::kSegR1] = 0.1f;
    p.levelR1 = 0.0f;
    p.time[BR::kSegR2] = 0.0f;
    return p;
}

}  // namespace

TEST(EnvelopeSegmentCache, SteadyGateIsCopiedBitForBit) {
    const uint32_t total = 96000;  // twenty periods of a 10 Hz gate
    const auto counts =
        ExpectSameBits(Steady(), Gates(total, 4800, {2400}, [](uint32_t) { return 1.0f; }), total);
    // The levels settle within the first periods; from then on every segment repeats from the same
    // level and is copied, but for the release's samples past an entry's capacity (A3 and R2, of one
    // sample each, always run the chain).
    const uint32_t beyond = 2400u - BR::EnvSegmentCache::kCapacity;
    EXPECT_LT(counts.computed, 5u * 4800u + 15u * beyond);
    EXPECT_GT(counts.copied, total - 5u * 4800u - 15u * beyond - 2u * 20u);
}

TEST(EnvelopeSegmentCache, GatesOfChangingLengthGrowEntries) {
    BR::EnvParameters p = Steady();
    p.resetToZero = true;  // each attack starts from 0, so A1 repeats while the gates differ
    p.shape[BR::kSegA2] = 0.2f;
    const uint32_t total = 96000;
    const auto counts =
        ExpectSameBits(p, Gates(total, 6000, {900, 3000, 1500, 4500}, [](uint32_t) { return 0.8f; }), total);
    EXPECT_GT(counts.copied, 0u);
}

TEST(EnvelopeSegmentCache, MoreSegmentsThanEntries) {
    // A new velocity at every note: new levels, new keys, entries taken over again and again.
    const uint32_t total = 96000;
    ExpectSameBits(
        Steady(),
        Gates(total, 1200, {500, 700, 300}, [](uint32_t k) { return 0.2f + 0.05f * float(k % 17); }), total);
}

TEST(EnvelopeSegmentCache, SegmentsLongerThanAnEntry) {
    BR::EnvParameters p = Steady();
    p.time[BR::kSegA2] = 0.3f;  // 14400 samples, far beyond what an entry holds
    p.time[BR::kSegR1] = 0.4f;
    const uint32_t total = 144000;
    const auto counts = ExpectSameBits(p, Gates(total, 36000, {16000}, [](uint32_t) { return 1.0f; }), total);
    EXPECT_GT(counts.copied, 0u);
    EXPECT_GT(counts.computed, 2u * BR::EnvSegmentCache::kCapacity);
}

TEST(EnvelopeSegmentCache, MixedTypesAndShortSegments) {
    BR::EnvParameters p;
    const float times[5] = {0.0005f, 0.002f, 0.0001f, 0.003f, 0.0f};
    for (int s = 0; s < BR::kNumEnvSegments; ++s) {
        p.time[s] = times[s];
        p.shape[s] = 0.1f + 0.2f * float(s);
        p.type[s] = s == 1 ? 0 : 1;
    }
    p.levelA1 = 0.7f;
    p.levelR1 = 0.3f;
    const uint32_t total = 48000;
    ExpectSameBits(p, Gates(total, 480, {200, 100}, [](uint32_t) { return 1.0f; }), total);
}
