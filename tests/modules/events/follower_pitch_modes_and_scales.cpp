// "Hz/V" and the "V Scale Mode" choices turn the measured frequency into the stated voltages.
#include <gtest/gtest.h>

#include "FollowerSignals.h"

namespace {

struct Result {
    float frequency, volts, out;
};

Result Measure(float hz, const std::vector<std::pair<const char*, float>>& settings) {
    auto driver = BR::Test::MakeDriver("follower", 48000.0f);
    for (const auto& [name, value] : settings)
        EXPECT_TRUE(driver->SetParameterByName(name, value)) << name;
    BR::Test::RenderStepping(*driver, BR::Test::Sine(hz, 48000.0f, 24000), 256);
    auto& f = BR::Test::Follower(*driver);
    EXPECT_FALSE(f.NoPitch());
    return {f.Frequency(), f.PitchVolts(), f.PitchOut()};
}

}  // namespace

TEST(FollowerPitchModes, HertzPerVolt) {
    // Zero at note 57 (220 Hz): 660 Hz at 100 Hz per volt is 4.4 V.
    const Result r = Measure(660.0f, {{"Pitch Mode", 1}, {"Hz Per Volt", 100}, {"Zero V Coarse", 57}});
    const float ref = std::exp((57.0f - 69.0f) * 0.083333336f * 0.6931472f) * 440.0f;
    EXPECT_NEAR(ref, 220.0f, 0.001f);
    EXPECT_FLOAT_EQ(r.volts, (r.frequency - ref) / 100.0f);
    EXPECT_NEAR(r.volts, 4.4f, 0.005f);
    EXPECT_FLOAT_EQ(r.out, r.volts / 10.0f);
}

TEST(FollowerPitchModes, VoltsPerOctaveWithFineZeroAndScales) {
    // 2 V per octave, zero at 69 - 50 cents: 880 Hz is 12.5 semitones above, 2.0833 V.
    const Result manual = Measure(
        880.0f,
        {{"Volts Per Octave", 2}, {"Zero V Coarse", 69}, {"Zero V Fine", -50}, {"Manual V Scale", 4}});
    EXPECT_NEAR(manual.volts, 12.5f * 2.0f / 12.0f, 0.002f);
    EXPECT_FLOAT_EQ(manual.out, manual.volts / 4.0f);

    const Result ardentUp = Measure(880.0f, {{"V Scale Mode", 1}, {"Zero V Coarse", 57}});
    EXPECT_NEAR(ardentUp.volts, 2.0f, 0.002f);
    EXPECT_FLOAT_EQ(ardentUp.out, ardentUp.volts * 0.1882353f);
    const Result ardentDown = Measure(110.0f, {{"V Scale Mode", 1}, {"Zero V Coarse", 57}});
    EXPECT_NEAR(ardentDown.volts, -1.0f, 0.002f);
    EXPECT_EQ(ardentDown.out, 0.0f);  // unipolar

    const Result cinder = Measure(110.0f, {{"V Scale Mode", 2}, {"Zero V Coarse", 57}});
    EXPECT_NEAR(cinder.volts, -1.0f, 0.002f);
    EXPECT_FLOAT_EQ(cinder.out, cinder.volts * 0.18754579f);
}
