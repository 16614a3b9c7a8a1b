// Rendering the Trigger through RenderAudio allocates nothing, in every output mode and with CV
// triggering, with notes, controllers and the Don't Panic command in the blocks.
#include <gtest/gtest.h>

#include "tests/support/AllocationCounter.h"
#include "tests/support/Render.h"

TEST(TriggerRealtime, RenderAudioAllocatesNothing) {
    auto driver = BR::Test::MakeDriver("trigger");
    driver->SetParameterByName("Smoothing", 2.0f);
    const uint32_t block = 256;
    std::vector<float> in(block), out(block);
    for (uint32_t i = 0; i < block; ++i)
        in[i] = (i / 40) % 2 ? 0.8f : -0.2f;
    const float* inputs[1] = {in.data()};
    float* outputs[1] = {out.data()};
    const uint8_t noteOn[3] = {0x90, 60, 100}, noteOff[3] = {0x80, 60, 0}, cc123[3] = {0xB0, 123, 0},
                  cc120[3] = {0xB0, 120, 0}, cc64[3] = {0xB0, 64, 127};
    const BR::TimedMidi midi[5] = {
        {0, 3, noteOn}, {17, 3, cc64}, {90, 3, noteOff}, {150, 3, cc123}, {200, 3, cc120}};
    driver->Process(inputs, outputs, block, midi, 5);

    uint64_t allocations = 0;
    for (int b = 0; b < 64; ++b) {
        driver->SetParameterByName("Output Mode", float(b % 4));
        driver->SetParameterByName("CV Trigger Enable", float((b / 4) % 2));
        driver->SetParameterByName("Smoothing", b % 3 == 0 ? -3.0f : 3.0f);
        driver->Module().ToAudioQueue().Write(64094u);
        BR::Test::AllocationScope scope;
        driver->Process(inputs, outputs, block, midi, 5);
        allocations += scope.Count();
    }
    EXPECT_EQ(allocations, 0u);
}
