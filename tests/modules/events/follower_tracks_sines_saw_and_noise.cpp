// Sines across the detector's range, a sawtooth and a noisy sine are followed within half a cent (sines), a
// cent (sawtooth) and ten cents (noise); the errors are printed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "FollowerSignals.h"

namespace {

struct Error {
    double mean = 0.0;
    double worst = 0.0;
};

// Error of output L over the second half of one second of `input`, in cents.
Error Follow(const std::vector<float>& input, double hz, float rate) {
    auto driver = BR::Test::MakeDriver("follower", rate);
    const auto out = BR::Test::RenderStepping(*driver, input, 512);
    Error e;
    const size_t from = out[0].size() / 2;
    for (size_t i = from; i < out[0].size(); ++i) {
        const double c = std::fabs(BR::Test::CentsOff(out[0][i], hz));
        e.mean += c;
        e.worst = std::max(e.worst, c);
    }
    e.mean /= double(out[0].size() - from);
    return e;
}

}  // namespace

TEST(FollowerAccuracy, SinesAcrossTheRange) {
    for (float rate : {44100.0f, 48000.0f, 96000.0f})
        for (float hz : {55.0f, 82.4f, 110.0f, 220.0f, 440.0f, 880.0f, 1320.0f, 1760.0f}) {
            const Error e = Follow(BR::Test::Sine(hz, rate, uint32_t(rate)), hz, rate);
            std::printf("sine %7.1f Hz at %6.0f: mean %.3f cents, worst %.3f cents\n", hz, rate, e.mean,
                        e.worst);
            EXPECT_LT(e.worst, 0.5) << hz << " Hz at " << rate;
        }
}

TEST(FollowerAccuracy, Sawtooth) {
    for (float hz : {110.0f, 220.0f, 440.0f}) {
        const Error e = Follow(BR::Test::Sawtooth(hz, 44100.0f, 44100), hz, 44100.0f);
        std::printf("sawtooth %5.1f Hz: mean %.3f cents, worst %.3f cents\n", hz, e.mean, e.worst);
        EXPECT_LT(e.worst, 1.0) << hz;
    }
}

TEST(FollowerAccuracy, SineWithNoise) {
    // Noise 26 dB below the sine's peak (uniform, amplitude 0.025 against 0.5).
    auto input = BR::Test::Sine(330.0f, 44100.0f, 44100);
    BR::Test::AddNoise(input, 0.025f, 7);
    const Error e = Follow(input, 330.0, 44100.0f);
    std::printf("noisy sine 330 Hz: mean %.3f cents, worst %.3f cents\n", e.mean, e.worst);
    EXPECT_LT(e.mean, 3.0);
    EXPECT_LT(e.worst, 10.0);
}
