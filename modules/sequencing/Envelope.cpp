// Envelope segment preparation at note events, the per-sub-block update and the render loop.
#include "Envelope.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "framework/BrelCorvaneBase.h"
#include "framework/SampleKernels.h"

namespace BR {

namespace {

// The largest end level a rescaled release may head for (see envNoteOff).
constexpr float kMaxReleaseLevel = 1e6f;

// Stage number of each segment, in the order of the parameter rows.
constexpr int32_t kSegmentStage[kNumEnvSegments] = {kEnvA1, kEnvA2, kEnvA3, kEnvR1, kEnvR2};

void SetupSegment(Envelope& envelope, int32_t segment, float time, float startLevel, float endLevel,
                  const EnvParameters& parameters, float sampleRate) {
    setupEnvStage(envelope.stages[kSegmentStage[segment]], parameters.type[segment], time,
                  parameters.shape[segment], startLevel, endLevel, sampleRate);
}

// Equal as stored: -0 and 0 differ (the target is written out), and a NaN matches itself.
bool SameBits(float a, float b) {
    return std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b);
}

// EnvTimeMultiplier of the envelope's present "Multiplier" value, worked out once per value.
float TimeFactor(Envelope& envelope, float multiplierIndex) {
    if (!envelope.factorKnown || !SameBits(multiplierIndex, envelope.factorIndex)) {
        envelope.factorKnown = true;
        envelope.factorIndex = multiplierIndex;
        envelope.factor = EnvTimeMultiplier(multiplierIndex);
    }
    return envelope.factor;
}

}  // namespace

float EnvTimeMultiplier(float multiplierIndex) {
    // The power of the row's value as it stands: a host that moves the row between its steps scales
    // the times smoothly between them.
    return std::pow(10.0f, multiplierIndex - 1.0f);
}

namespace {
template <typename Read>
void ReadEnvRows(const EnvParameterRows& rows, EnvParameters& out, Read value) {
    for (int32_t s = 0; s < kNumEnvSegments; ++s) {
        out.time[s] = value(rows.timeA1 + s);
        out.shape[s] = value(rows.timeA1 + kNumEnvSegments + s);
        out.type[s] = int32_t(value(rows.typeA1 + s));
    }
    const int32_t levels = rows.timeA1 + 2 * kNumEnvSegments;
    out.levelA1 = value(levels);
    out.levelA2 = value(levels + 1);
    out.sustain = value(levels + 2);
    out.levelR1 = value(levels + 3);
    out.velocityDepth = value(rows.velocityDepth);
    out.resetToZero = value(rows.resetToZero) != 0.0f;
    out.multiplier = value(rows.multiplier);
}
}  // namespace

void ReadEnvParameters(const BrelCorvaneBase& module, const EnvParameterRows& rows, EnvParameters& out) {
    ReadEnvRows(rows, out, [&](int32_t row) { return module.GetTableValue(row); });
}

void ReadEnvBlockParameters(const BrelCorvaneBase& module, const EnvParameterRows& rows, EnvParameters& out) {
    ReadEnvRows(rows, out, [&](int32_t row) { return module.BlockValue(row); });
}

void setupEnvStage(EnvStage& stage, int32_t type, float time, float shape, float startLevel, float endLevel,
                   float sampleRate) {
    stage.type = type;
    stage.rendered = 0;
    stage.cacheEntry = -1;
    float samples = time * sampleRate;
    if (!(samples >= 1.0f)) samples = 1.0f;
    const float delta = endLevel - startLevel;
    stage.samplesLeft = samples >= 4294967295.0f ? 0xFFFFFFFFu : uint32_t(samples);

    if (type == kEnvParabolic) {
        const float r = 1.0f / samples;
        float a, b;
        if (delta >= 0.0f) {
            a = (1.0f - shape) * delta;
            b = shape * delta;
        } else {
            a = (shape - 1.0f) * delta;
            b = (2.0f - shape) * delta;
        }
        stage.increment = (a * r + b) * r;
        stage.coefficient = 2.0f * a * r * r;
        stage.exponentialValid = false;  // the render loop moves `increment` of this kind
        return;
    }
    if (stage.exponentialValid && SameBits(samples, stage.fromSamples) && SameBits(shape, stage.fromShape) &&
        SameBits(startLevel, stage.fromStart) && SameBits(endLevel, stage.fromEnd))
        return;  // increment, coefficient, target and direction hold these inputs' values already

    // The level heads for a point `e` beyond the target, reaching the target in about `samples`
    // samples at a finite slope: small shapes bend hard, large ones are almost straight.
    const float e = std::exp(shape * 4.8f - 5.0f);
    const double c = std::exp(-std::log((std::fabs(double(delta)) + e) / e) / double(samples));
    stage.falling = startLevel > endLevel;
    const double aim = stage.falling ? double(endLevel) - e : double(endLevel) + e;
    stage.increment = float(aim * (1.0 - c));
    stage.coefficient = float(c);
    stage.target = endLevel;
    stage.exponentialValid = true;
    stage.fromSamples = samples;
    stage.fromShape = shape;
    stage.fromStart = startLevel;
    stage.fromEnd = endLevel;
}

void envNoteOn(Envelope& envelope, float velocity, const EnvParameters& parameters, float sampleRate) {
    const float d = parameters.velocityDepth;
    const float scale = d >= 0.0f ? d * velocity + 1.0f - d : d + 1.0f - (1.0f - velocity) * d;
    envelope.stageIndex = kEnvA1;
    envelope.sustainStage = kEnvSustain;
    envelope.velocityScale = scale;

    float l1 = parameters.levelA1 * scale;
    const float l2 = parameters.levelA2 * scale;
    const float ls = parameters.sustain * scale;
    const float m = TimeFactor(envelope, parameters.multiplier);
    float t1 = parameters.time[kSegA1] * m;
    float t2 = parameters.time[kSegA2] * m;
    const float t3 = parameters.time[kSegA3] * m;

    if (parameters.resetToZero) {
        envelope.level = 0.0f;
    } else if (t1 == 0.0f) {
        // A1 has no length: A2 takes off from where the envelope is, shortened in proportion to the
        // distance still to go.
        if (l2 != l1) {
            const float ratio = std::fabs((envelope.level - l2) / (l1 - l2));
            if (ratio < 1.0f) t2 *= ratio;
        }
        l1 = envelope.level;
    } else if (l1 != 0.0f) {
        const float ratio = std::fabs((envelope.level - l1) / l1);
        if (ratio < 1.0f) t1 *= ratio;
    }

    SetupSegment(envelope, kSegA1, t1, envelope.level, l1, parameters, sampleRate);
    SetupSegment(envelope, kSegA2, t2, l1, l2, parameters, sampleRate);
    SetupSegment(envelope, kSegA3, t3, l2, ls, parameters, sampleRate);
}

void envNoteOff(Envelope& envelope, const EnvParameters& parameters, float sampleRate) {
    envelope.stageIndex = envelope.sustainStage - 1;
    const float s = parameters.sustain * envelope.velocityScale;
    float r1 = parameters.levelR1 * envelope.velocityScale;
    // Keeps R1 in proportion when the release starts from another level than the sustain.
    if (s > 0.001f) r1 *= envelope.level / s;
    // A "Level R1" above a small sustain rescales by up to a thousand, and notes retriggered during
    // such releases compound it (the attack takes off from where the release got to): unbounded, the
    // level reaches infinity within a few dozen notes. Held at a million times full scale, far beyond
    // ordinary use and finite through every sum and scaling of the signal path.
    r1 = std::clamp(r1, -kMaxReleaseLevel, kMaxReleaseLevel);
    const float m = TimeFactor(envelope, parameters.multiplier);
    SetupSegment(envelope, kSegR1, parameters.time[kSegR1] * m, envelope.level, r1, parameters, sampleRate);
    SetupSegment(envelope, kSegR2, parameters.time[kSegR2] * m, r1, 0.0f, parameters, sampleRate);
}

void PrepareEnvDisplay(EnvDisplayScale& scale, const EnvParameters& parameters, float sampleRate,
                       float timeFactor) {
    // Raw times before the multiplier: the display's axis shows the times as set. Segments at or past
    // a stage count as done, with sustain's nominal second once the release runs; the samples left in
    // the stage come off again.
    float total = 1.0f;
    for (int32_t s = 0; s < kNumEnvSegments; ++s)
        total += parameters.time[s];
    const float perSample = 1.0f / sampleRate / timeFactor;
    for (int32_t stage = kEnvFinished + 1; stage < kEnvNumStages; ++stage) {
        float done = 0.0f;
        for (int32_t s = 0; s < kNumEnvSegments; ++s)
            if (stage <= kSegmentStage[s]) done += parameters.time[s];
        if (stage < kEnvSustain) done += 1.0f;
        scale.doneAtEnd[stage] = done;
        scale.secondsPerSample[stage] = stage == kEnvSustain ? 0.0f : perSample;
    }
    scale.doneAtEnd[kEnvFinished] = 0.0f;
    scale.secondsPerSample[kEnvFinished] = 0.0f;
    scale.inverseTotal = 1.0f / total;
}

void envBlockUpdate(Envelope& envelope, const EnvParameters& parameters, float sampleRate,
                    EnvDisplayValues& display) {
    const int32_t stage = envelope.stageIndex;
    if (stage == envelope.sustainStage) envelope.level = parameters.sustain * envelope.velocityScale;
    if (stage == kEnvFinished) envelope.level = 0.0f;

    if (stage == kEnvFinished) {
        display.position = 0.0f;
        display.level = 0.0f;
        return;
    }
    // The position PrepareEnvDisplay's scale gives, worked out from the rows at each call.
    float total = 1.0f, done = 0.0f;
    for (int32_t s = 0; s < kNumEnvSegments; ++s) {
        total += parameters.time[s];
        if (stage <= kSegmentStage[s]) done += parameters.time[s];
    }
    if (stage != envelope.sustainStage && stage >= 0 && stage < kEnvNumStages)
        done -= float(envelope.stages[stage].samplesLeft) / sampleRate /
                TimeFactor(envelope, parameters.multiplier);
    if (stage < kEnvSustain) done += 1.0f;
    display.position = done / total;
    display.level = envelope.level;
}

namespace {

uint32_t Bits(float x) {
    return std::bit_cast<uint32_t>(x);
}

// Runs an exponential segment's chain for up to `n` samples from `level`; returns the samples written
// and sets `ended` when the level reached the target (that sample reads the target).
uint32_t RunExponential(const EnvStage& stage, float& levelInOut, float* y, uint32_t n, bool& ended) {
    const float c = stage.coefficient, add = stage.increment, target = stage.target;
    float level = levelInOut;
    uint32_t done = n;
    if (!stage.falling) {
        for (uint32_t i = 0; i < n; ++i) {
            level = c * level + add;
            if (level >= target) {
                y[i] = target;
                done = i + 1;
                ended = true;
                break;
            }
            y[i] = level;
        }
    } else {
        for (uint32_t i = 0; i < n; ++i) {
            level = c * level + add;
            if (!(level > target)) {  // a not-a-number level ends the segment too
                y[i] = target;
                done = i + 1;
                ended = true;
                break;
            }
            y[i] = level;
        }
    }
    levelInOut = level;
    return done;
}

// The cache entry that holds (or is to hold) this segment's samples, or -1 when it runs uncached.
// A segment takes its entry at its first sample, keyed by the level it starts from.
int32_t CacheEntryOf(EnvSegmentCache& cache, EnvStage& stage, float level) {
    if (stage.rendered != 0) {
        const int32_t k = stage.cacheEntry;
        return k >= 0 && cache.entries[k].generation == stage.cacheGeneration ? k : -1;
    }
    if (stage.samplesLeft < EnvSegmentCache::kShortest) return -1;
    const uint32_t start = Bits(level), c = Bits(stage.coefficient), add = Bits(stage.increment),
                   target = Bits(stage.target);
    // The victim for a new key: the least recently used entry of those not hit lately (an entry copied
    // within the last kKeep segment starts stays: a steady pattern of more segments than entries then
    // keeps copying the ones it holds, where plain LRU would evict each just before its next use).
    int32_t found = -1, victim = -1;
    ++cache.clock;  // counts segment starts, cached or not
    for (int32_t k = 0; k < EnvSegmentCache::kEntries; ++k) {
        const EnvSegmentCache::Entry& e = cache.entries[k];
        if (e.start == start && e.coefficient == c && e.increment == add && e.target == target &&
            e.falling == stage.falling && e.filled != 0) {
            found = k;
            break;
        }
        const bool hitLately = e.lastHit != 0 && cache.clock - e.lastHit <= EnvSegmentCache::kKeep;
        if (!hitLately && (victim < 0 || e.lastUse < cache.entries[victim].lastUse)) victim = k;
    }
    if (found >= 0) {
        cache.entries[found].lastHit = cache.clock;
    } else {
        // A key met for the first time takes only an entry that is neither hit lately nor filled
        // lately; one met before (a segment that repeats) takes any entry not hit lately. Transient
        // segments (levels still settling) thus give way to repeating ones at their second start.
        const uint32_t hash = (start * 0x9E3779B1u) ^ (c * 0x85EBCA77u) ^ (add * 0xC2B2AE3Du) ^ target ^
                              (stage.falling ? 0x27D4EB2Fu : 0u);
        bool seen = false;
        for (uint32_t h : cache.seen)
            seen = seen || h == hash;
        const bool fresh = victim >= 0 && cache.entries[victim].filled != 0 &&
                           cache.clock - cache.entries[victim].lastUse <= EnvSegmentCache::kKeep;
        if (victim < 0 || (fresh && !seen)) {
            cache.seen[cache.seenNext] = hash;
            cache.seenNext = (cache.seenNext + 1) % EnvSegmentCache::kSeen;
            return -1;
        }
        found = victim;
        cache.entries[found].lastHit = 0;
        EnvSegmentCache::Entry& e = cache.entries[found];
        e.start = start;
        e.coefficient = c;
        e.increment = add;
        e.target = target;
        e.falling = stage.falling;
        e.ended = false;
        e.filled = 0;
        ++e.generation;
    }
    cache.entries[found].lastUse = cache.clock;
    stage.cacheEntry = found;
    stage.cacheGeneration = cache.entries[found].generation;
    return found;
}

// The exponential segment through the cache: what the entry holds from this point is copied, the rest
// runs the chain from the last level held and is added to the entry while it follows on.
uint32_t RunCached(EnvSegmentCache& cache, int32_t k, const EnvStage& stage, float& level, float* y,
                   uint32_t n, bool& ended) {
    EnvSegmentCache::Entry& e = cache.entries[k];
    float* held = cache.levels[k];
    const uint32_t at = stage.rendered;
    uint32_t done = 0;
    if (at < e.filled) {
        done = std::min(n, e.filled - at);
        std::memcpy(y, held + at, done * sizeof(float));
        cache.copied += done;
        if (e.ended && at + done == e.filled) {
            level = e.endLevel;
            ended = true;
            return done;
        }
        level = y[done - 1];  // a sample short of the end holds the level itself
        if (done == n) return done;
    }
    const uint32_t from = at + done;
    const uint32_t more = RunExponential(stage, level, y + done, n - done, ended);
    cache.computed += more;
    if (from == e.filled && !e.ended && e.filled < EnvSegmentCache::kCapacity) {
        const uint32_t keep = std::min(more, EnvSegmentCache::kCapacity - e.filled);
        std::memcpy(held + from, y + done, keep * sizeof(float));
        e.filled += keep;
        if (ended && keep == more) {
            e.ended = true;
            e.endLevel = level;
        }
    }
    return done + more;
}

// Levels written as they are, or through the output mapping of renderEnvelope's mapped form.
struct AsLevels {
    float operator()(float level) const { return level; }
    void Ramp(float& level, float step, float* y, uint32_t n, RampPlan& plan) const {
        RampSamples(level, step, y, n, &plan);
    }
    void After(float*, uint32_t) const {}
};

struct AsMapped {
    float scale, offset;
    float operator()(float level) const { return level * scale + offset; }
    void Ramp(float& level, float step, float* y, uint32_t n, RampPlan& plan) const {
        RampSamplesMapped(level, step, y, n, scale, offset, &plan);
    }
    // Exponential samples are written as levels first (the segment cache keeps levels), then mapped.
    void After(float* y, uint32_t n) const { ScaleOffsetSamples(y, n, scale, offset); }
};

template <typename Map>
void RenderStages(Envelope& envelope, float* out, uint32_t count, EnvSegmentCache* cache, Map map) {
    float level = envelope.level;
    int32_t index = envelope.stageIndex;
    if (index < kEnvFinished || index >= kEnvNumStages) index = kEnvFinished;
    uint32_t written = 0;
    while (written < count) {
        EnvStage& stage = envelope.stages[index];
        const uint32_t n = std::min(stage.samplesLeft, count - written);
        if (n == 0 && index == kEnvFinished) {
            // The finished stage ran down its counter (after 2^32 - 1 samples). With no stage below
            // it and no samples left, the loop would never write the rest of the block: it holds.
            FillSamples(out + written, count - written, map(level));
            break;
        }
        float* y = out + written;
        uint32_t done = n;
        bool ended = false;
        if (stage.type == kEnvParabolic) {
            float increment = stage.increment;
            const float coefficient = stage.coefficient;
            if (Bits(increment + coefficient) == Bits(increment)) {
                // The first difference no longer moves (shape 1, sustain, finished): a straight ramp.
                map.Ramp(level, increment, y, n, stage.ramp);
            } else {
                for (uint32_t i = 0; i < n; ++i) {
                    level += increment;
                    increment += coefficient;
                    y[i] = map(level);
                }
                stage.increment = increment;
            }
        } else {
            const int32_t entry = cache && n != 0 ? CacheEntryOf(*cache, stage, level) : -1;
            done = entry >= 0 ? RunCached(*cache, entry, stage, level, y, n, ended)
                              : RunExponential(stage, level, y, n, ended);
            map.After(y, done);
        }
        written += done;
        stage.rendered += done;
        // An ended exponential segment keeps the overshot level: the next stage starts from it.
        stage.samplesLeft = ended ? 0u : stage.samplesLeft - done;
        if (stage.samplesLeft == 0) index = std::max(index - 1, int32_t(kEnvFinished));
    }
    envelope.level = level;
    envelope.stageIndex = index;
}

}  // namespace

void renderEnvelope(Envelope& envelope, float* out, uint32_t count, EnvSegmentCache* cache) {
    RenderStages(envelope, out, count, cache, AsLevels{});
}

void renderEnvelopeMapped(Envelope& envelope, float* out, uint32_t count, EnvSegmentCache* cache, float scale,
                          float offset) {
    RenderStages(envelope, out, count, cache, AsMapped{scale, offset});
}

}  // namespace BR
