// The Step LFO's in-step runs (the samples after the first of a step rendered without the step
// search) give the same bits as the full per-sample form: random settings of every kind, host blocks
// of 1, 7 and 256 frames, phases that land exactly on step boundaries and just beside them.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

#include "StepLFORig.h"

using StepLFOTest::Set;

namespace {

struct Rig {
    std::unique_ptr<BR::HostDriver> driver;
    BR::DriverTransport transport;
};

// One lane's rows, drawn from `rng`. `exact` picks rates whose phase increment is a power of two, so
// that phases fall exactly on the asymmetry point and on step boundaries.
using Rows = std::vector<std::pair<std::string, float>>;

Rows LaneRows(std::mt19937& rng, const std::string& s, bool exact) {
    auto uniform = [&rng](float lo, float hi) { return std::uniform_real_distribution<float>(lo, hi)(rng); };
    auto pick = [&rng](int lo, int hi) { return float(std::uniform_int_distribution<int>(lo, hi)(rng)); };
    auto chance = [&rng](double p) { return std::bernoulli_distribution(p)(rng); };
    Rows rows;
    auto set = [&](const std::string& name, float value) { rows.push_back({name + " " + s, value}); };

    const float sync = exact ? (chance(0.7) ? 0.0f : 4.0f) : pick(0, 5);
    set("Sync", sync);
    if (exact) {
        // Cycles a second of 4.6875 x 10 or 11.71875 x 1 at 48 kHz: 2^-10 or 2^-12 a sample. The
        // phase meets the asymmetry point exactly, and the boundaries too where the steps divide 1024.
        set("Speed Mode", 0.0f);
        const bool fast = chance(0.5);
        set("Speed", fast ? 4.6875f : 11.71875f);
        set("Speed Multiplier", fast ? 2.0f : 1.0f);
        const float lengths[] = {16.0f, 8.0f, 4.0f, 15.0f, 13.0f, 3.0f, 1.0f};
        set("Length In Steps", lengths[std::uniform_int_distribution<int>(0, 6)(rng)]);
        // Points at 1/8 .. 7/8 (or none); below 1/2 the map's two sides round differently there.
        const float asymmetry[] = {0.0f, 50.0f, -50.0f, -25.0f, -75.0f, 100.0f, -100.0f, 75.0f};
        set("Asymmetry", asymmetry[std::uniform_int_distribution<int>(0, 7)(rng)]);
        // On a boundary of 32 steps, or a hair beside it (where a reset or a quadrature lane puts it).
        const float k = pick(0, 32);
        const float hair = chance(0.5) ? 0.0f : uniform(-0.01f, 0.01f);
        set("Phase", std::clamp(k * 360.0f / 32.0f + hair, 0.0f, 360.0f));
    } else {
        set("Speed Mode", pick(0, 1));
        set("Speed", uniform(0.05f, 20.0f));
        set("Speed Multiplier", pick(0, 3));
        set("Length Mode", pick(0, 1));
        set("Start Step", pick(1, 96));
        set("Length In Steps", chance(0.2) ? 1.0f : pick(1, 96));
        set("End Step", pick(1, 96));
        set("Asymmetry", chance(0.3) ? pick(-1, 1) * 100.0f : uniform(-100.0f, 100.0f));
        set("Phase", chance(0.3) ? pick(0, 8) * 45.0f : uniform(0.0f, 360.0f));
    }
    set("Beat Divisor", pick(0, 5));
    set("Beats", pick(1, 4));
    set("Triplet", pick(0, 1));
    set("Offset", uniform(-1.0f, 1.0f));
    set("Multiplier", uniform(-2.0f, 2.0f));
    set("Range Mode", pick(0, 1));
    set("Interpolation", pick(0, 1));
    set("Input Mode", pick(0, 2));
    set("Smoothing", chance(0.3) ? uniform(-5.0f, 5.0f) : 0.0f);
    // Swing, or a trigger input on a free lane, would move the exact phases off their grid.
    set("Swing", !exact && chance(0.3) ? uniform(10.0f, 90.0f) : 50.0f);
    set("Swing Type", pick(0, 1));
    set("Signal Input", pick(0, 6));
    set("Trigger Input", (!exact || sync != 0.0f) && chance(0.4) ? pick(1, 6) : 0.0f);
    set("Reset Input", chance(0.2) ? pick(1, 6) : 0.0f);
    set("Reset By Note", pick(0, 4));
    set("Random Enable", pick(0, 1));
    set("Random Set Next", pick(0, 1));
    set("Register Length", pick(1, 48));
    set("Randomness", uniform(-1.0f, 1.0f));
    for (int k = 1; k <= 96; ++k)
        set("Step " + std::to_string(k), uniform(-1.0f, 1.0f));
    rows.push_back({"Gate Length " + s, chance(0.5) ? 100.0f : uniform(0.0f, 100.0f)});
    return rows;
}

// Inputs 1-6: a sine, noise, and square waves of several periods (edges for the trigger and reset inputs).
BR::Test::Channels Inputs(std::mt19937& rng, uint32_t frames) {
    BR::Test::Channels in(6, std::vector<float>(frames));
    std::uniform_real_distribution<float> noise(-1.0f, 1.0f);
    const uint32_t periods[4] = {std::uniform_int_distribution<uint32_t>(3, 40)(rng),
                                 std::uniform_int_distribution<uint32_t>(40, 400)(rng),
                                 std::uniform_int_distribution<uint32_t>(100, 1500)(rng), 97};
    for (uint32_t i = 0; i < frames; ++i) {
        in[0][i] = std::sin(0.013f * float(i));
        in[1][i] = noise(rng);
        for (int k = 0; k < 4; ++k)
            in[size_t(2 + k)][i] = (i / periods[k]) % 2 ? 1.0f : 0.0f;
    }
    return in;
}

std::vector<BR::Test::MidiAt> Notes(std::mt19937& rng, uint32_t frames) {
    std::vector<BR::Test::MidiAt> notes;
    uint32_t at = 0;
    while ((at += std::uniform_int_distribution<uint32_t>(50, 900)(rng)) < frames)
        notes.push_back({at, {0x90, uint8_t(std::uniform_int_distribution<int>(0, 127)(rng)), 100}});
    return notes;
}

void Configure(Rig& rig, const Rows& rows, double tempo, bool playing) {
    rig.transport.tempo = tempo;
    rig.transport.playing = playing;
    rig.driver->SetTransport(&rig.transport);
    for (const auto& [name, value] : rows)
        Set(*rig.driver, name, value);
}

uint32_t Bits(float x) {
    return std::bit_cast<uint32_t>(x);
}

// Samples rendered by in-step runs over the compared cases, and all samples rendered.
uint64_t runSamples = 0, allSamples = 0;

// Renders one random case both ways and compares every sample and the lanes' state, bit for bit.
void CompareCase(uint32_t seed, bool exact, uint32_t block, uint32_t frames) {
    std::mt19937 rng(seed);
    const Rows rows = [&] {
        Rows both = LaneRows(rng, "L", exact);
        const Rows right = LaneRows(rng, "R", exact);
        both.insert(both.end(), right.begin(), right.end());
        return both;
    }();
    const double tempo = std::uniform_real_distribution<double>(40.0, 240.0)(rng);
    const bool playing = std::bernoulli_distribution(0.85)(rng);
    const auto inputs = Inputs(rng, frames);
    const auto notes = Notes(rng, frames);

    Rig runs{BR::Test::MakeDriver("steplfo"), {}}, full{BR::Test::MakeDriver("steplfo"), {}};
    StepLFOTest::Module(*full.driver).SetInStepRuns(false);
    Configure(runs, rows, tempo, playing);
    Configure(full, rows, tempo, playing);
    // Half the frames, then rows of both lanes changed between two blocks (as a host would), then
    // the rest: the lanes' standing, their lines and their settings follow the change.
    const uint32_t half = frames / 2 / block * block;
    const auto notesFrom = [&](uint32_t from, uint32_t to) {
        std::vector<BR::Test::MidiAt> part;
        for (const auto& note : notes)
            if (note.frame >= from && note.frame < to) part.push_back({note.frame - from, note.bytes});
        return part;
    };
    const auto inputsFrom = [&](uint32_t from) {
        BR::Test::Channels part;
        for (const auto& channel : inputs)
            part.emplace_back(channel.begin() + from, channel.end());
        return part;
    };
    auto a = BR::Test::RenderFrames(*runs.driver, half, block, inputs, notesFrom(0, half));
    auto b = BR::Test::RenderFrames(*full.driver, half, block, inputs, notesFrom(0, half));
    Rows changes;
    const char* names[] = {"Sync",   "Trigger Input", "Reset Input", "Step 1",        "Step 2",
                           "Step 3", "Gate Length",   "Multiplier",  "Interpolation", "Speed"};
    for (const char* lane : {" L", " R"})
        for (const char* name : names)
            if (std::bernoulli_distribution(0.3)(rng)) {
                const std::string row = std::string(name) + lane;
                const float value =
                    row.rfind("Sync", 0) == 0 ? float(std::uniform_int_distribution<int>(0, 5)(rng))
                    : row.rfind("Trigger", 0) == 0 || row.rfind("Reset", 0) == 0
                        ? float(std::uniform_int_distribution<int>(0, 6)(rng))
                    : row.rfind("Interpolation", 0) == 0
                        ? float(std::uniform_int_distribution<int>(0, 1)(rng))
                    : row.rfind("Gate", 0) == 0  ? std::uniform_real_distribution<float>(0.0f, 100.0f)(rng)
                    : row.rfind("Speed", 0) == 0 ? std::uniform_real_distribution<float>(0.05f, 20.0f)(rng)
                                                 : std::uniform_real_distribution<float>(-1.0f, 1.0f)(rng);
                changes.push_back({row, value});
            }
    for (const auto& [name, value] : changes) {
        Set(*runs.driver, name, value);
        Set(*full.driver, name, value);
    }
    const auto a2 =
        BR::Test::RenderFrames(*runs.driver, frames - half, block, inputsFrom(half), notesFrom(half, frames));
    const auto b2 =
        BR::Test::RenderFrames(*full.driver, frames - half, block, inputsFrom(half), notesFrom(half, frames));
    for (size_t c = 0; c < a.size(); ++c) {
        a[c].insert(a[c].end(), a2[c].begin(), a2[c].end());
        b[c].insert(b[c].end(), b2[c].begin(), b2[c].end());
    }
    ASSERT_EQ(StepLFOTest::Module(*full.driver).InStepSamples(), 0u);
    runSamples += StepLFOTest::Module(*runs.driver).InStepSamples();
    allSamples += 2 * frames;
    for (int lane = 0; lane < 2; ++lane) {
        for (uint32_t i = 0; i < frames; ++i)
            ASSERT_EQ(Bits(a[size_t(lane)][i]), Bits(b[size_t(lane)][i]))
                << "seed " << seed << " block " << block << " lane " << lane << " frame " << i << ": "
                << a[size_t(lane)][i] << " against " << b[size_t(lane)][i];
        const auto& x = StepLFOTest::Module(*runs.driver).State(lane);
        const auto& y = StepLFOTest::Module(*full.driver).State(lane);
        ASSERT_EQ(x.phase, y.phase) << "seed " << seed << " lane " << lane;
        ASSERT_EQ(x.currentStep, y.currentStep) << "seed " << seed << " lane " << lane;
        ASSERT_EQ(Bits(x.displayPosition), Bits(y.displayPosition)) << "seed " << seed << " lane " << lane;
    }
}

}  // namespace

// Most samples of the random cases come from the runs (the rest are step boundaries, standing lanes
// and lanes without a rate), so the comparison is between two forms indeed.
TEST(StepLFOInStepRuns, MatchThePerSampleFormOnRandomSettings) {
    runSamples = allSamples = 0;
    for (uint32_t seed = 1; seed <= 100; ++seed)
        for (uint32_t block : {7u, 256u})
            CompareCase(seed, false, block, 4000);
    for (uint32_t seed = 1000; seed <= 1024; ++seed)
        CompareCase(seed, false, 1, 1500);
    EXPECT_GT(runSamples, allSamples / 4);
}

TEST(StepLFOInStepRuns, MatchThePerSampleFormWithPhasesOnStepBoundaries) {
    runSamples = allSamples = 0;
    for (uint32_t seed = 2000; seed <= 2059; ++seed)
        for (uint32_t block : {7u, 256u})
            CompareCase(seed, true, block, 4000);
    for (uint32_t seed = 3000; seed <= 3015; ++seed)
        CompareCase(seed, true, 1, 1500);
    EXPECT_GT(runSamples, allSamples / 4);
}

// The runs do render: a lane that stays in one step for many samples fills them with the same values
// whichever form renders it (a change of the step's value between samples would show).
TEST(StepLFOInStepRuns, LongStepsInterpolateAsThePerSampleForm) {
    for (bool inStepRuns : {true, false}) {
        auto driver = StepLFOTest::FreeRamp();
        StepLFOTest::Module(*driver).SetInStepRuns(inStepRuns);
        Set(*driver, "Interpolation L", 1.0f);
        const auto out = BR::Test::RenderFrames(*driver, 1024, 256);
        // Both lanes, 16 steps of 64 samples: all but the first of each step come from a run.
        EXPECT_EQ(StepLFOTest::Module(*driver).InStepSamples(), inStepRuns ? 2u * 16u * 63u : 0u);
        const auto ramp = StepLFOTest::Ramp();
        for (size_t i = 0; i < 1024; ++i) {
            const size_t step = (i / 64) % 16;
            const float from = ramp[step], to = ramp[(step + 1) % 16];
            const float pos = float(double(i) / 1024.0) * 16.0f;
            ASSERT_EQ(out[0][i], from + (to - from) * (pos - float(step))) << i << " runs " << inStepRuns;
        }
    }
}

// The asymmetry point inside a step (an odd number of steps), met exactly by the phase: below 1/2 the
// map's two sides give different positions there, and the sample on the point takes the second side's.
TEST(StepLFOInStepRuns, PhaseExactlyOnTheAsymmetryPointInsideAStep) {
    for (float asymmetry : {-75.0f, -50.0f, -25.0f, 25.0f})
        for (float count : {15.0f, 13.0f, 3.0f})
            for (uint32_t block : {1u, 7u, 256u}) {
                std::vector<float> out[2];
                for (bool inStepRuns : {true, false}) {
                    auto driver = BR::Test::MakeDriver("steplfo");
                    StepLFOTest::Module(*driver).SetInStepRuns(inStepRuns);
                    StepLFOTest::FreeLane(*driver, "L");
                    Set(*driver, "Speed Mode L", 0.0f);
                    Set(*driver, "Speed L", 4.6875f);
                    Set(*driver, "Speed Multiplier L", 2.0f);  // 2^-10 a sample
                    Set(*driver, "Length In Steps L", count);
                    Set(*driver, "Asymmetry L", asymmetry);
                    Set(*driver, "Interpolation L", 1.0f);
                    for (int k = 1; k <= 16; ++k)
                        Set(*driver, "Step " + std::to_string(k) + " L", 0.1f * float(k) - 0.7f);
                    out[inStepRuns] = BR::Test::RenderFrames(*driver, 2048, block)[0];
                }
                for (size_t i = 0; i < 2048; ++i)
                    ASSERT_EQ(Bits(out[0][i]), Bits(out[1][i]))
                        << "asymmetry " << asymmetry << " steps " << count << " block " << block << " frame "
                        << i;
            }
}
