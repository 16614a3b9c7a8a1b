// CV Input "Decoder" and "Generator": synchronous demodulation on a parity that runs across blocks,
// full-wave rectification, the carrier's cubed level, smoothing with the forced one-pole of the
// Elkhorn mode and its override, and a mode change that clears only its own channel's filter.
#include <gtest/gtest.h>

#include <cmath>

#include "modules/hardware/CVInput.h"
#include "tests/support/Render.h"

namespace {
BrelCorvaneCVInput::BrelCorvane& CVInput(BR::HostDriver& driver) {
    return static_cast<BrelCorvaneCVInput::BrelCorvane&>(driver.Module());
}
// A carrier of amplitude a that starts positive at frame 0.
std::vector<float> Carrier(float a, uint32_t frames) {
    std::vector<float> v(frames);
    for (uint32_t i = 0; i < frames; ++i)
        v[i] = i & 1 ? -a : a;
    return v;
}
}  // namespace

TEST(CVInputDecoder, BipolarCarrierInStepGivesSteadyLevel) {
    for (uint32_t block : {1u, 3u, 5u, 64u, 257u}) {
        auto driver = BR::Test::MakeDriver("cvinput");
        driver->SetParameterByName("Bipolar L", 1.0f);
        driver->SetParameterByName("Bipolar R", 1.0f);
        BR::Test::Channels in = {Carrier(0.5f, 1000), Carrier(-0.5f, 1000)};
        const auto out = BR::Test::RenderFrames(*driver, 1000, block, in);
        for (uint32_t i = 0; i < 1000; ++i) {
            ASSERT_EQ(out[0][i], 0.5f) << block << " " << i;
            ASSERT_EQ(out[1][i], -0.5f) << block << " " << i;
        }
    }
}

TEST(CVInputDecoder, BipolarScaleApplies) {
    auto driver = BR::Test::MakeDriver("cvinput");
    driver->SetParameterByName("Bipolar L", 1.0f);
    driver->SetParameterByName("Scale L", -2.0f);
    const auto out = BR::Test::RenderFrames(*driver, 8, 8, {Carrier(0.25f, 8)});
    EXPECT_EQ(out[0], std::vector<float>(8, -0.5f));
}

TEST(CVInputDecoder, FullWaveGivesAmplitudeOfAnyCarrier) {
    auto driver = BR::Test::MakeDriver("cvinput");
    std::vector<float> odd = {0.5f, 0.5f, -0.5f, 0.5f, -0.5f, -0.5f, -0.5f, 0.5f};
    const auto out = BR::Test::RenderFrames(*driver, 8, 3, {odd, Carrier(-0.5f, 8)});
    EXPECT_EQ(out[0], std::vector<float>(8, 0.5f));
    EXPECT_EQ(out[1], std::vector<float>(8, 0.5f));
}

TEST(CVInputGenerator, LevelHalfGivesAmplitudeOneEighth) {
    auto driver = BR::Test::MakeDriver("cvinput");
    driver->SetParameterByName("Mode L", 1.0f);
    driver->SetParameterByName("Level L", 0.5f);
    BR::Test::Channels in = {std::vector<float>(7, 0.9f)};  // ignored
    const auto out = BR::Test::RenderFrames(*driver, 7, 3, in);
    EXPECT_EQ(out[0], (std::vector<float>{0.125f, -0.125f, 0.125f, -0.125f, 0.125f, -0.125f, 0.125f}));
    EXPECT_FLOAT_EQ(CVInput(*driver).Level(0), 0.125f);
}

TEST(CVInputSmoothing, ElkhornForcesOnePoleUnlessSlewIsSet) {
    auto driver = BR::Test::MakeDriver("cvinput", 48000.0f);
    driver->SetParameterByName("Mode L", 2.0f);
    driver->SetParameterByName("Smoothing L", 0.0f);
    BR::Test::RenderFrames(*driver, 4, 4);
    EXPECT_FLOAT_EQ(CVInput(*driver).OnePole(0), std::exp(5.2f / -24.0f));
    EXPECT_EQ(CVInput(*driver).Slew(0), 0.0f);
    // In "Decoder" nothing is forced.
    EXPECT_EQ(CVInput(*driver).OnePole(1), 0.0f);
    driver->SetParameterByName("Smoothing L", 2.0f);
    BR::Test::RenderFrames(*driver, 4, 4);
    EXPECT_FLOAT_EQ(CVInput(*driver).Slew(0), 2.0f / 96.0f);
    EXPECT_EQ(CVInput(*driver).OnePole(0), 0.0f);
    // A longer one-pole than the forced one stays.
    driver->SetParameterByName("Smoothing L", -10.0f);
    BR::Test::RenderFrames(*driver, 4, 4);
    EXPECT_FLOAT_EQ(CVInput(*driver).OnePole(0), std::exp(5.2f / -480.0f));
}

TEST(CVInputSmoothing, DecoderSlewLimitsASwing) {
    auto driver = BR::Test::MakeDriver("cvinput", 48000.0f);
    driver->SetParameterByName("Smoothing L", 1.0f);  // 48 samples for a swing of 2
    const auto out = BR::Test::RenderFrames(*driver, 30, 7, {std::vector<float>(30, 1.0f)});
    for (uint32_t i = 0; i < 23; ++i)
        EXPECT_NEAR(out[0][i], (i + 1) * (2.0f / 48.0f), 1e-5f) << i;
    EXPECT_EQ(out[0][29], 1.0f);
}

TEST(CVInputModes, ChangeOfModeClearsOnlyThatChannelsFilter) {
    std::vector<float> tone(600);
    for (uint32_t i = 0; i < 600; ++i)
        tone[i] = 0.5f * std::sin(float(i) * 2.2f);
    const std::vector<float> head(tone.begin(), tone.begin() + 512), tail(tone.begin() + 512, tone.end());
    auto changed = BR::Test::MakeDriver("cvinput");
    auto steady = BR::Test::MakeDriver("cvinput");
    for (auto* d : {changed.get(), steady.get()}) {
        d->SetParameterByName("Mode L", 2.0f);
        d->SetParameterByName("Mode R", 2.0f);
        BR::Test::RenderFrames(*d, 512, 128, {head, head});
    }
    ASSERT_NE(CVInput(*changed).Filter(0).LatestOutput(), 0.0f);
    changed->SetParameterByName("Mode L", 0.0f);
    const auto a = BR::Test::RenderFrames(*changed, 88, 88, {tail, tail});
    const auto b = BR::Test::RenderFrames(*steady, 88, 88, {tail, tail});
    // "Decoder" runs no filter, so a cleared history reads 0; the right channel is untouched.
    EXPECT_EQ(CVInput(*changed).Filter(0).LatestOutput(), 0.0f);
    EXPECT_EQ(a[1], b[1]);
    // Back to "Elkhorn Decoder": the left filter starts again from silence, unlike the steady one's.
    changed->SetParameterByName("Mode L", 2.0f);
    BR::Test::RenderFrames(*changed, 1, 1, {{0.0f}, {0.0f}});
    EXPECT_EQ(CVInput(*changed).Filter(0).LatestOutput(), 0.0f);
}

TEST(CVInputBadInput, NonNumbersAndInfinitiesGiveBoundedOutput) {
    for (int mode = 0; mode < 3; ++mode) {
        for (float rate : {48000.0f, 1.0f, 0.0f, -5.0f, 1.0e9f}) {
            auto driver = BR::Test::MakeDriver("cvinput", rate);
            driver->SetParameterByName("Mode L", float(mode));
            driver->SetParameterByName("Mode R", float(mode));
            driver->SetParameterByName("Bipolar R", 1.0f);
            driver->SetParameterByName("Smoothing R", 3.0f);
            driver->SetParameterByName("Elkhorn Filter Freq", 1.0f);
            std::vector<float> bad(4000);
            for (uint32_t i = 0; i < 4000; ++i)
                bad[i] = i % 7 == 0 ? NAN : (i % 11 == 0 ? INFINITY : (i % 13 == 0 ? -INFINITY : 0.3f));
            const auto out = BR::Test::RenderFrames(*driver, 4000, 100, {bad, bad});
            for (int c = 0; c < 2; ++c)
                for (uint32_t i = 0; i < 4000; ++i)
                    ASSERT_TRUE(std::isfinite(out[c][i]) && std::fabs(out[c][i]) < 1.0e8f)
                        << mode << " " << rate << " " << c << " " << i << " " << out[c][i];
        }
    }
}

TEST(CVInput, IdentityAndTexts) {
    auto driver = BR::Test::MakeDriver("cvinput");
    BrelCorvaneBase& m = driver->Module();
    EXPECT_STREQ(m.GetModuleName(), "Corvane CV Input");
    EXPECT_STREQ(m.GetGuiScriptName(), "gui_cvinput.lua");
    EXPECT_EQ(m.NumTableParameters(), 18);
    EXPECT_EQ(driver->ParameterIndexByName("Elkhorn Force Smooth"), 18);
    BR::CountedTextList* names = nullptr;
    ASSERT_EQ(m.GetParameterValueStrings(6, &names), 0);
    EXPECT_EQ(names->Get(), (std::vector<std::string>{"Decoder", "Generator", "Elkhorn Decoder"}));
    names->Release();
    EXPECT_EQ(m.GetParameterFlags(5), BR::kDisplayStringFlag);
    EXPECT_EQ(m.GetParameterFlags(0), BR::kDisplayStringFlag);
    EXPECT_EQ(m.GetParameterFlags(2), 0u);
}
