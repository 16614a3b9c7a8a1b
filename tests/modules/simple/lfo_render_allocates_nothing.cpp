// Rendering the LFO through RenderAudio performs no heap allocation: every wave, swing, smoothing,
// "Transport" and "Quadrature" modes, a running transport and notes that reset the phase.
#include <gtest/gtest.h>

#include "tests/support/AllocationCounter.h"
#include "tests/support/TransportRender.h"

TEST(LFORealtime, RenderAudioAllocatesNothing) {
    auto driver = BR::Test::MakeDriver("lfo", 48000.0f);
    for (const char* name : {"Sine L", "Triangle L", "Square L", "Saw L", "Random L", "Noise L", "Saw R"})
        driver->SetParameterByName(name, 0.3f);
    driver->SetParameterByName("Sync L", 2.0f);
    driver->SetParameterByName("Swing L", 62.0f);
    driver->SetParameterByName("Smoothing L", 3.0f);
    driver->SetParameterByName("Sync R", 3.0f);
    driver->SetParameterByName("Smoothing R", -3.0f);
    driver->SetParameterByName("Reset By Note L", 1.0f);
    driver->SetParameterByName("Reset By Note R", 1.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 128.0, 0.5);
    driver->SetTransport(&transport);
    const uint32_t block = 256;
    std::vector<float> in(block, 0.25f), outL(block), outR(block);
    const float* inputs[2] = {in.data(), in.data()};
    float* outputs[2] = {outL.data(), outR.data()};
    const uint8_t noteOn[3] = {0x90, 60, 100}, noteOff[3] = {0x80, 60, 0}, cc[3] = {0xB0, 1, 64};
    const BR::TimedMidi midi[3] = {{0, 3, noteOn}, {17, 3, cc}, {200, 3, noteOff}};
    driver->Process(inputs, outputs, block, midi, 3);

    BR::Test::AllocationScope scope;
    for (int b = 0; b < 200; ++b) {
        if (b == 100) transport.playing = false;
        driver->Module().ToAudioQueue().Write(64094u);
        driver->Process(inputs, outputs, block, midi, 3);
    }
    EXPECT_EQ(scope.Count(), 0u);
    EXPECT_NE(outL[0], outL[block - 1]);
}
