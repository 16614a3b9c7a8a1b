// The six waves and the three input modes, one at a time, at 48 Hz (1000 samples a cycle): sine from
// the system's polynomial, triangle min(4p - 1, 3 - 4p), square +1 up to "Pulse Width" and -1 above,
// saw 2p - 1, noise from the system's generator (one draw a sample, from state 0), and random holding
// the noise drawn at each wrap. "Multiply" gives (w + offset) * x, "Combine" (w + offset + 1) * x.
#include <gtest/gtest.h>

#include "framework/PolySine.h"
#include "framework/RandomGenerator.h"
#include "modules/simple/LFO.h"
#include "tests/support/Render.h"

namespace {
std::vector<float> Wave(const char* wave, float level, std::vector<std::pair<const char*, float>> more = {},
                        const BR::Test::Channels& in = {}) {
    auto driver = BR::Test::MakeDriver("lfo", 48000.0f);
    driver->SetParameterByName("Speed L", 4.8f);
    driver->SetParameterByName("Speed Multiplier L", 2.0f);  // times 10: 48 Hz
    driver->SetParameterByName(wave, level);
    for (const auto& [name, value] : more)
        driver->SetParameterByName(name, value);
    return BR::Test::RenderFrames(*driver, 3000, 256, in)[0];
}
}  // namespace

TEST(LFOWaves, ShapesAtTheirPhases) {
    const auto sine = Wave("Sine L", 1.0f);
    EXPECT_EQ(sine[0], 0.0f);
    EXPECT_NEAR(sine[250], 1.0f, 1e-4f);
    EXPECT_NEAR(sine[750], -1.0f, 1e-4f);
    EXPECT_NEAR(sine[100], BR::PolySine(0.1f), 1e-4f);
    const auto triangle = Wave("Triangle L", 0.5f);
    EXPECT_EQ(triangle[0], -0.5f);
    EXPECT_NEAR(triangle[250], 0.0f, 1e-4f);
    EXPECT_NEAR(triangle[500], 0.5f, 1e-4f);
    EXPECT_NEAR(triangle[750], 0.0f, 1e-4f);
    const auto square = Wave("Square L", 1.0f, {{"Pulse Width L", 30.0f}});
    EXPECT_EQ(square[0], 1.0f);
    EXPECT_EQ(square[290], 1.0f);
    EXPECT_EQ(square[310], -1.0f);
    EXPECT_EQ(square[999], -1.0f);
    EXPECT_EQ(square[1005], 1.0f);
    const auto saw = Wave("Saw L", -1.0f, {{"Offset L", 0.25f}});
    EXPECT_EQ(saw[0], 1.25f);
    EXPECT_NEAR(saw[500], 0.25f, 1e-4f);
}

TEST(LFOWaves, NoiseAndRandomFromTheSystemGenerator) {
    const auto noise = Wave("Noise L", 1.0f);
    BR::RandomGenerator generator;
    for (size_t i = 0; i < noise.size(); ++i)
        ASSERT_EQ(noise[i], generator.Next()) << i;

    const auto random = Wave("Random L", 1.0f);
    // Held at 0 until the first wrap, then the noise of the wrapping sample, for a whole cycle.
    BR::RandomGenerator replay;
    std::vector<float> draws;
    for (int i = 0; i < 3000; ++i)
        draws.push_back(replay.Next());
    EXPECT_EQ(random[0], 0.0f);
    EXPECT_EQ(random[990], 0.0f);
    size_t wrap = 990;
    while (random[wrap] == 0.0f)
        ++wrap;
    EXPECT_NEAR(double(wrap), 999.0, 1.0);
    EXPECT_EQ(random[wrap], draws[wrap]);
    EXPECT_EQ(random[wrap + 900], draws[wrap]);
    EXPECT_EQ(random[wrap + 1000], draws[wrap + 1000]);
}

TEST(LFOWaves, InputModes) {
    const BR::Test::Channels in = {std::vector<float>(3000, 0.5f)};
    const auto add = Wave("Square L", 0.5f, {{"Offset L", 0.1f}}, in);
    EXPECT_FLOAT_EQ(add[10], 0.5f + 0.1f + 0.5f);
    const auto multiply = Wave("Square L", 0.5f, {{"Offset L", 0.1f}, {"Input Mode L", 1.0f}}, in);
    EXPECT_FLOAT_EQ(multiply[10], (0.5f + 0.1f) * 0.5f);
    EXPECT_FLOAT_EQ(multiply[600], (-0.5f + 0.1f) * 0.5f);
    const auto combine = Wave("Square L", 0.5f, {{"Offset L", 0.1f}, {"Input Mode L", 2.0f}}, in);
    EXPECT_FLOAT_EQ(combine[10], (0.5f + 0.1f + 1.0f) * 0.5f);
    EXPECT_FLOAT_EQ(combine[600], (-0.5f + 0.1f + 1.0f) * 0.5f);
}

TEST(LFOWaves, SmoothingAndStatus) {
    auto driver = BR::Test::MakeDriver("lfo", 48000.0f);
    driver->SetParameterByName("Speed L", 4.8f);
    driver->SetParameterByName("Speed Multiplier L", 2.0f);
    driver->SetParameterByName("Square L", 1.0f);
    driver->SetParameterByName("Smoothing L", 10.0f);  // slew of 2 / 480 a sample
    const auto out = BR::Test::RenderFrames(*driver, 2000, 256)[0];
    EXPECT_FLOAT_EQ(out[0], 2.0f / 480.0f);
    EXPECT_NEAR(out[239], 1.0f, 1e-4f);
    const auto& status = driver->Module().GetStatusBlock()->As<BrelCorvaneLFO::LfoStatus>();
    EXPECT_EQ(status.displayLevel[0], out[1999]);
    EXPECT_NEAR(status.displayPhase[0], 0.0f, 1e-4f);  // two whole cycles
    EXPECT_DOUBLE_EQ(status.rateHz[0], double(4.8f * 10.0f));
    EXPECT_EQ(status.phaseOffset[0], -1.0);
}
