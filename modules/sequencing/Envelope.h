// The five-segment envelope (A1, A2, A3, sustain, R1, R2) held once by the Trigger and three times
// by the Voice Controller: segments are prepared per note event and rendered as closed recurrences.
#pragma once

#include <cstdint>

#include "modules/sequencing/EnvelopeRamp.h"

class BrelCorvaneBase;

namespace BR {

// Stage numbers, counting downward as the envelope runs.
enum EnvStageNumber : int32_t {
    kEnvFinished = 0,
    kEnvR2 = 1,
    kEnvR1 = 2,
    kEnvSustain = 3,
    kEnvA3 = 4,
    kEnvA2 = 5,
    kEnvA1 = 6,
    kEnvNumStages = 7,
};

// Segment order of the per-segment parameter rows (times, shapes, types).
enum EnvSegment : int32_t { kSegA1, kSegA2, kSegA3, kSegR1, kSegR2, kNumEnvSegments };

enum EnvCurveType : int32_t { kEnvParabolic = 0, kEnvExponential = 1 };

// One prepared segment. Parabolic: `increment` is the present first difference (written back as the
// segment advances) and `coefficient` the second difference. Exponential: level = coefficient * level +
// increment, ending once the level reaches `target` from the side given by `falling`.
struct EnvStage {
    float increment = 0.0f;
    float coefficient = 0.0f;
    float target = 0.0f;
    bool falling = false;
    uint32_t samplesLeft = 0xFFFFFFFFu;
    int32_t type = kEnvParabolic;  // 0 parabolic, anything else exponential
    // What the exponential fields above were last worked out from. The render loop never writes
    // them, so a segment set up again from the same inputs (as A2, A3 and R2 are at most notes)
    // keeps them and needs no exp or log.
    bool exponentialValid = false;
    float fromSamples = 0.0f, fromShape = 0.0f, fromStart = 0.0f, fromEnd = 0.0f;
    // Samples rendered since the segment was set up, and the segment cache entry it reads or fills
    // (-1 none; valid while the entry's generation is `cacheGeneration`).
    uint32_t rendered = 0;
    int32_t cacheEntry = -1;
    uint32_t cacheGeneration = 0;
    // A straight parabolic segment's ramp plan, kept from one rendered piece to the next.
    RampPlan ramp;
};

// Levels of exponential segments already rendered. An exponential segment is a serial chain,
// level = c * level + add, whose samples depend on nothing but its start level, `c`, `add`, its
// target and its direction: a segment that starts again with the same bits of all five (as at a
// steady gate rate most do) repeats the same samples, which are then copied instead of run through
// the chain, bit for bit. Entries fill while a segment is first rendered, in the order it renders;
// the least recently used one is taken for a new segment, unless it is still in use (kKeep). Fixed
// size, owned by the module and made with it (its pages written then, so that the audio thread never
// meets a first touch): rendering never allocates. Eight entries of 2048 levels, 64 KiB an instance:
// a steady gate needs three or four entries (attack, decay, release), a pattern that repeats only
// every few periods up to twelve, of which the kept ones still copy.
struct EnvSegmentCache {
    static constexpr int32_t kEntries = 8;
    static constexpr uint32_t kCapacity = 2048;      // samples per entry (43 ms at 48 kHz); later ones run
    static constexpr uint32_t kShortest = 32;        // segments shorter than this always run the chain
    static constexpr uint64_t kKeep = 2 * kEntries;  // segment starts an entry in use is kept for
    static constexpr uint32_t kSeen = 16;            // keys of segments that found no entry, remembered
    struct Entry {
        uint32_t start = 0, coefficient = 0, increment = 0, target = 0;  // bit patterns of the key
        bool falling = false;
        bool ended = false;       // the chain reached its target on sample `filled` - 1
        float endLevel = 0.0f;    // the overshot level it then kept
        uint32_t filled = 0;      // samples held, from the segment's start
        uint32_t generation = 0;  // moves on whenever the entry is given to another key
        uint64_t lastUse = 0;     // segment start that last took or found it
        uint64_t lastHit = 0;     // segment start that last found it filled (0: not since it was taken)
    };
    Entry entries[kEntries];
    float levels[kEntries][kCapacity];
    uint64_t clock = 0;
    uint32_t seen[kSeen] = {};
    uint32_t seenNext = 0;
    uint64_t copied = 0, computed = 0;  // samples of cached segments copied and run, for tests and benchmarks
};

struct Envelope {
    int32_t stageIndex = kEnvFinished;
    int32_t sustainStage = kEnvSustain;
    float level = 0.0f;
    float velocityScale = 1.0f;
    // Finished (0) and sustain (3) are never prepared: they run as flat parabolic segments of
    // 2^32 - 1 samples, so the render loop needs no special case for them.
    EnvStage stages[kEnvNumStages];
    // The last time factor worked out, and the "Multiplier" value it belongs to.
    bool factorKnown = false;
    float factorIndex = 0.0f;
    float factor = 1.0f;

    // Stops the envelope; `level` follows at the next envBlockUpdate.
    void Reset() {
        stageIndex = kEnvFinished;
        sustainStage = kEnvSustain;
    }
};

// One envelope's parameters as read once per sub-block, in their row units (times in seconds before
// the multiplier, levels as linear gains, `multiplier` the index 0..3 of "0.1", "1", "10", "100").
struct EnvParameters {
    float time[kNumEnvSegments] = {0.0f, 0.1f, 0.1f, 0.1f, 0.0f};
    float shape[kNumEnvSegments] = {0.5f, 0.5f, 0.5f, 0.5f, 0.5f};
    int32_t type[kNumEnvSegments] = {1, 1, 1, 1, 1};
    float levelA1 = 0.0f;
    float levelA2 = 1.0f;
    float sustain = 0.5f;
    float levelR1 = 0.0f;
    float velocityDepth = 0.0f;
    bool resetToZero = false;
    float multiplier = 1.0f;
};

// Where one envelope's rows lie in a module's table. `timeA1` starts fourteen consecutive rows:
// five times, five shapes, "Level A1", "Level A2", "Sustain", "Level R1"; `typeA1` starts five.
struct EnvParameterRows {
    int32_t timeA1;
    int32_t typeA1;
    int32_t velocityDepth;
    int32_t resetToZero;
    int32_t multiplier;
};

// Rows from "Env 1 Time A1" to the next envelope's, and from "Env 1 Type A1" to the next envelope's.
constexpr int32_t kEnvRowStride = 14;
constexpr int32_t kEnvTypeRowStride = 5;

// What the envelope display of the editor reads: position along the whole shape (0..1, with
// sustain counted as one nominal second) and the present level.
struct EnvDisplayValues {
    float position = 0.0f;
    float level = 0.0f;
};

// What the display position derives from the rows and the sample rate alone, worked out again only when
// they change (PrepareEnvDisplay): per stage, the raw seconds counted as done when it ends (sustain as
// one nominal second) and the raw seconds a sample left in it takes off (0 for sustain and finished),
// and 1 / the total. The position is display data, never audio: multiplications by these reciprocals
// stand in for the divisions.
struct EnvDisplayScale {
    float doneAtEnd[kEnvNumStages] = {};
    float secondsPerSample[kEnvNumStages] = {};
    float inverseTotal = 1.0f;
};

// The time factor of a "Multiplier" value: 10^(value - 1), also between the indices.
float EnvTimeMultiplier(float multiplierIndex);

// Reads one envelope's parameter rows from a module.
void ReadEnvParameters(const BrelCorvaneBase& module, const EnvParameterRows& rows, EnvParameters& out);
// The same from the values the present block sees (the render path's reading).
void ReadEnvBlockParameters(const BrelCorvaneBase& module, const EnvParameterRows& rows, EnvParameters& out);

// Prepares one segment from `startLevel` to `endLevel` lasting `time` seconds (after the multiplier);
// every segment lasts at least one sample.
void setupEnvStage(EnvStage& stage, int32_t type, float time, float shape, float startLevel, float endLevel,
                   float sampleRate);

// Starts the attack; `velocity` is 0..1 (MIDI velocity times 0.007874016).
void envNoteOn(Envelope& envelope, float velocity, const EnvParameters& parameters, float sampleRate);

// Starts the release from wherever the envelope stands.
void envNoteOff(Envelope& envelope, const EnvParameters& parameters, float sampleRate);

// The display scale of these parameters at this rate; `timeFactor` is EnvTimeMultiplier of their
// "Multiplier" value.
void PrepareEnvDisplay(EnvDisplayScale& scale, const EnvParameters& parameters, float sampleRate,
                       float timeFactor);

// At the start of every rendered sub-block: sustain follows its parameter at once, a finished
// envelope sits at 0, and the display values are computed.
void envBlockUpdate(Envelope& envelope, const EnvParameters& parameters, float sampleRate,
                    EnvDisplayValues& display);

// The same with the display scale prepared when the rows or the rate last changed.
inline void envBlockUpdate(Envelope& envelope, const EnvParameters& parameters, const EnvDisplayScale& scale,
                           EnvDisplayValues& display) {
    const int32_t stage = envelope.stageIndex;
    if (stage == envelope.sustainStage) envelope.level = parameters.sustain * envelope.velocityScale;
    if (stage == kEnvFinished) envelope.level = 0.0f;
    if (stage <= kEnvFinished || stage >= kEnvNumStages) {
        display.position = 0.0f;
        display.level = stage == kEnvFinished ? 0.0f : envelope.level;
        return;
    }
    const float left = float(envelope.stages[stage].samplesLeft) * scale.secondsPerSample[stage];
    display.position = (scale.doneAtEnd[stage] - left) * scale.inverseTotal;
    display.level = envelope.level;
}

// Writes `count` levels, passing through as many stages as the samples reach. On the sample where an
// exponential segment ends the output is its target, while `level` keeps the overshot value. With a
// `cache`, exponential segments that repeat are copied from it (the same samples, bit for bit).
void renderEnvelope(Envelope& envelope, float* out, uint32_t count, EnvSegmentCache* cache = nullptr);
// The same levels, each written as level * scale + offset (a multiply, then an add, each rounded): the
// bits of renderEnvelope followed by that mapping, in one pass where the samples are made.
void renderEnvelopeMapped(Envelope& envelope, float* out, uint32_t count, EnvSegmentCache* cache, float scale,
                          float offset);

}  // namespace BR
