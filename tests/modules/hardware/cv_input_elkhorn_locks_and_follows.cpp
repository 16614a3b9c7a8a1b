// CV Input "Elkhorn Decoder": the loop locks onto a sine carrier at "Elkhorn Centre" and a few hertz
// off it, the synchronous detector then reads the carrier's amplitude as (offset - A / 2) * scale,
// and it follows steps of the amplitude. Lock time and residual ripple are printed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "modules/hardware/CVInput.h"
#include "tests/support/Render.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

// A sine carrier of `hz` whose amplitude is amplitudes[k] from frame starts[k] on.
std::vector<float> Carrier(double hz, double rate, uint32_t frames, const std::vector<uint32_t>& starts,
                           const std::vector<float>& amplitudes, double phase0) {
    std::vector<float> v(frames);
    size_t k = 0;
    for (uint32_t i = 0; i < frames; ++i) {
        while (k + 1 < starts.size() && i >= starts[k + 1])
            ++k;
        v[i] = float(amplitudes[k] * std::sin(2.0 * kPi * hz * i / rate + phase0));
    }
    return v;
}

// The first frame from which every sample up to `end` stays within `tolerance` of `target`.
uint32_t SettledFrom(const std::vector<float>& y, uint32_t begin, uint32_t end, float target,
                     float tolerance) {
    uint32_t settled = end;
    for (uint32_t i = end; i-- > begin;) {
        if (std::fabs(y[i] - target) > tolerance) break;
        settled = i;
    }
    return settled;
}

float Ripple(const std::vector<float>& y, uint32_t begin, uint32_t end) {
    const auto [lo, hi] = std::minmax_element(y.begin() + begin, y.begin() + end);
    return *hi - *lo;
}

}  // namespace

TEST(CVInputElkhorn, LocksNearCentreAndFollowsAmplitudeSteps) {
    const double rate = 48000.0;
    const uint32_t frames = 48000;
    // Output with the defaults: offset 0.5, scale 1 / 0.5, so A = 0.6 reads (0.5 - 0.3) * 2 = 0.4.
    const std::vector<uint32_t> starts = {0, 24000, 36000};
    const std::vector<float> amplitudes = {0.6f, 0.2f, 0.8f};
    // The detector reads within 2.5 % of full scale: a small static phase error of the loop, which grows
    // with the amplitude, costs a little of the sine branch's gain.
    const float kTolerance = 0.025f;
    for (double offHz : {0.0, 3.0, -5.0}) {
        for (double phase0 : {0.0, 1.3, -2.5}) {
            auto driver = BR::Test::MakeDriver("cvinput", float(rate));
            driver->SetParameterByName("Mode L", 2.0f);
            const auto in = Carrier(17000.0 + offHz, rate, frames, starts, amplitudes, phase0);
            const auto out = BR::Test::RenderFrames(*driver, frames, 256, {in});
            const auto& y = out[0];
            const float targets[3] = {0.4f, 0.8f, 0.2f};
            uint32_t settle[3];
            float ripple[3];
            for (int k = 0; k < 3; ++k) {
                const uint32_t begin = starts[size_t(k)];
                const uint32_t end = k < 2 ? starts[size_t(k) + 1] : frames;
                settle[k] = SettledFrom(y, begin, end, targets[k], kTolerance) - begin;
                ripple[k] = Ripple(y, end - 2000, end);
                EXPECT_LT(settle[k], 4800u) << offHz << " " << phase0 << " " << k;  // within 100 ms
                EXPECT_LT(ripple[k], 0.01f) << offHz << " " << phase0 << " " << k;
                EXPECT_NEAR(y[end - 1], targets[k], kTolerance) << offHz << " " << phase0 << " " << k;
            }
            std::printf(
                "carrier %+.0f Hz from centre, phase %+.1f: lock %u samples (%.1f ms), steps settle in %u "
                "and %u; ripple %.5f %.5f %.5f; read %.4f %.4f %.4f\n",
                offHz, phase0, settle[0], settle[0] * 1000.0 / rate, settle[1], settle[2], ripple[0],
                ripple[1], ripple[2], y[23999], y[35999], y[47999]);
        }
    }
}

TEST(CVInputElkhorn, DesignsRunOnlyWhenAValueChanges) {
    auto driver = BR::Test::MakeDriver("cvinput", 48000.0f);
    auto& m = static_cast<BrelCorvaneCVInput::BrelCorvane&>(driver->Module());
    BR::Test::RenderFrames(*driver, 1, 1);
    const BrelCorvaneCVInput::PllCoefficients& p = m.SharedPll();
    EXPECT_EQ(p.sampleRate, 48000.0f);
    EXPECT_EQ(p.centre, 17000.0f);
    EXPECT_FLOAT_EQ(p.tau1, 100e-7f);
    EXPECT_FLOAT_EQ(p.tau2, 0.1f);
    EXPECT_DOUBLE_EQ(p.omega0, 17000.0 * 2.0 * kPi);
    const double fc = 1.0 / (48000.0 * 2.0 * kPi * double(p.tau2));
    const double t = std::tan(kPi * fc), z = (1.0 - t) / (1.0 + t);
    EXPECT_EQ(p.feedback, double(float(-z)));
    EXPECT_NEAR(p.loopGain, (double(p.tau2) / double(p.tau1)) / ((z + 1.0) / 2.0), 1e-6);
    EXPECT_FLOAT_EQ(m.SharedFilter().cutoff, 0.117f);
    EXPECT_EQ(m.Pll(0).omega, p.omega0);
    EXPECT_EQ(m.Pll(1).omega, p.omega0);
    // The filter frequency is held within 0.068 and 1.0.
    driver->SetParameterByName("Elkhorn Filter Freq", 0.0f);
    BR::Test::RenderFrames(*driver, 1, 1);
    EXPECT_FLOAT_EQ(m.SharedFilter().cutoff, 0.068f);
    driver->SetParameterByName("Elkhorn Centre", 16500.0f);
    BR::Test::RenderFrames(*driver, 1, 1);
    EXPECT_DOUBLE_EQ(m.SharedPll().omega0, 16500.0 * 2.0 * kPi);
}
