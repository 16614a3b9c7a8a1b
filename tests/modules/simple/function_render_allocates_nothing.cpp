// Rendering Function through RenderAudio performs no heap allocation, with MIDI in the blocks and every
// curve in turn.
#include <gtest/gtest.h>

#include "tests/support/AllocationCounter.h"
#include "tests/support/Render.h"

TEST(FunctionRealtime, RenderAudioAllocatesNothing) {
    auto driver = BR::Test::MakeDriver("Function");
    driver->SetParameterByName("Enable L", 1.0f);
    driver->SetParameterByName("Enable R", 1.0f);
    driver->SetParameterByName("Function R", 1.0f);
    const uint32_t block = 256;
    std::vector<float> in(block, 0.25f), outL(block), outR(block);
    const float* inputs[2] = {in.data(), in.data()};
    float* outputs[2] = {outL.data(), outR.data()};
    const uint8_t noteOn[3] = {0x90, 60, 100}, cc[3] = {0xB0, 1, 64};
    const BR::TimedMidi midi[2] = {{0, 3, noteOn}, {99, 3, cc}};
    driver->Process(inputs, outputs, block, midi, 2);

    BR::Test::AllocationScope scope;
    for (int b = 0; b < 64; ++b) {
        driver->Module().SetTableValue(2, float(b % 4));
        driver->Module().ToAudioQueue().Write(64094u);
        driver->Process(inputs, outputs, block, midi, 2);
    }
    EXPECT_EQ(scope.Count(), 0u);
    EXPECT_FLOAT_EQ(outR[0], -1.0f);  // log2(0.25) + 1
}
