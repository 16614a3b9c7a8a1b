// corvane render dc --set "Output Positive L=0.5" --set "Smoothing L=500" --seconds 1 writes the
// 2 / 24000 per-sample slew, sample for sample, and silence on the right channel.
#include <gtest/gtest.h>

#include "host/cli/WavFile.h"
#include "tests/support/RunCommand.h"

TEST(CliRenderDC, SlewSampleForSample) {
    const std::string folder = BR::Test::MakeTempFolder();
    const std::string wav = folder + "/dc.wav";
    const auto result = BR::Test::RunCorvane(
        "render dc --set \"Output Positive L=0.5\" --set \"Smoothing L=500\" --seconds 1 --out " + wav);
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.err.find(wav), std::string::npos);

    const BR::AudioData audio = BR::ReadWav(wav);
    EXPECT_EQ(audio.sampleRate, 48000);
    ASSERT_EQ(audio.channels.size(), 2u);
    ASSERT_EQ(audio.Frames(), 48000u);
    // The slew limiter's own recurrence in 32-bit floats: rise by 2 / 24000 until within a step.
    const float step = 2.0f / (500.0f * 0.001f * 48000.0f);
    float state = 0.0f;
    size_t reached = 0;
    for (size_t i = 0; i < audio.Frames(); ++i) {
        const float d = 0.5f - state;
        state = d >= step ? state + step : 0.5f;
        ASSERT_EQ(audio.channels[0][i], state) << "frame " << i;
        ASSERT_EQ(audio.channels[1][i], 0.0f) << "frame " << i;
        if (!reached && state == 0.5f) reached = i;
    }
    EXPECT_EQ(reached, 6000u);  // half the swing of 0 to 1 takes half of 12000 samples
    EXPECT_NEAR(audio.channels[0][2999], 0.25f, 1e-4f);
    std::system(("rm -rf '" + folder + "'").c_str());
}
