// Rendering DC through RenderAudio performs no heap allocation, with MIDI items and queued commands
// in the blocks.
#include <gtest/gtest.h>

#include "tests/support/AllocationCounter.h"
#include "tests/support/Render.h"

TEST(DCRealtime, RenderAudioAllocatesNothing) {
    auto driver = BR::Test::MakeDriver("dc");
    driver->SetParameterByName("Output Positive L", 0.5f);
    driver->SetParameterByName("Smoothing L", 20.0f);
    driver->SetParameterByName("Smoothing R", -20.0f);
    const uint32_t block = 256;
    std::vector<float> in(block, 0.25f), outL(block), outR(block);
    const float* inputs[2] = {in.data(), in.data()};
    float* outputs[2] = {outL.data(), outR.data()};
    const uint8_t noteOn[3] = {0x90, 60, 100}, noteOff[3] = {0x80, 60, 0}, cc[3] = {0xB0, 1, 64};
    const BR::TimedMidi midi[3] = {{0, 3, noteOn}, {17, 3, cc}, {200, 3, noteOff}};
    // One block first, so that anything lazily built outside the render path exists.
    driver->Process(inputs, outputs, block, midi, 3);

    BR::Test::AllocationScope scope;
    for (int b = 0; b < 50; ++b) {
        driver->Module().ToAudioQueue().Write(64094u);
        driver->Process(inputs, outputs, block, midi, 3);
    }
    EXPECT_EQ(scope.Count(), 0u);
    EXPECT_GT(outL[block - 1], 0.0f);
}
