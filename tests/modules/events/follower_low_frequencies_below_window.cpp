// Below the window's limit (50 Hz at 44100: 882 samples) a pure tone shows up as no pitch, and a tone
// with a strong harmonic as that harmonic; never as its own low pitch.
#include <gtest/gtest.h>

#include <cmath>

#include "FollowerSignals.h"

TEST(FollowerLowLimit, WindowIs882SamplesAt44100) {
    auto driver = BR::Test::MakeDriver("follower", 44100.0f);
    BR::Test::RenderFrames(*driver, 16, 16);
    EXPECT_EQ(BR::Test::Follower(*driver).WindowSamples(), 882u);
    auto fast = BR::Test::MakeDriver("follower", 192000.0f);
    BR::Test::RenderFrames(*fast, 16, 16);
    EXPECT_EQ(BR::Test::Follower(*fast).WindowSamples(), 2047u);
}

TEST(FollowerLowLimit, ThirtyHertzSineHasNoPitch) {
    auto driver = BR::Test::MakeDriver("follower", 44100.0f);
    int noPitchBlocks = 0, pitchedBelowLimit = 0;
    BR::Test::RenderStepping(*driver, BR::Test::Sine(30.0f, 44100.0f, 88200), 64,
                             [&](BrelCorvaneFollower::BrelCorvane& f) {
                                 if (f.NoPitch())
                                     ++noPitchBlocks;
                                 else if (f.Frequency() < 49.9f)
                                     ++pitchedBelowLimit;
                             });
    EXPECT_GT(noPitchBlocks, 0);
    EXPECT_EQ(pitchedBelowLimit, 0);
}

TEST(FollowerLowLimit, ThirtyHertzWithStrongFourthHarmonicReadsTheHarmonic) {
    const float rate = 44100.0f;
    std::vector<float> x(88200);
    for (size_t i = 0; i < x.size(); ++i) {
        const double t = double(i) / rate;
        x[i] = float(0.1 * std::sin(2 * M_PI * 30 * t) + 0.5 * std::sin(2 * M_PI * 120 * t));
    }
    auto driver = BR::Test::MakeDriver("follower", rate);
    int pitched = 0, atHarmonic = 0;
    BR::Test::RenderStepping(*driver, x, 64, [&](BrelCorvaneFollower::BrelCorvane& f) {
        if (f.NoPitch()) return;
        ++pitched;
        if (std::fabs(f.Frequency() - 120.0f) < 12.0f) ++atHarmonic;
        EXPECT_GT(f.Frequency(), 49.9f);
    });
    EXPECT_GT(pitched, 1000);
    EXPECT_GT(atHarmonic, pitched * 9 / 10);
}
