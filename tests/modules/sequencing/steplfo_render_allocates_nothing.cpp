// Rendering the Step LFO through RenderAudio allocates nothing: every sync mode, swing, trigger and
// reset inputs, notes, register edits, and the write-back of the steps at a transport stop.
#include <gtest/gtest.h>

#include "StepLFORig.h"
#include "tests/support/AllocationCounter.h"

using StepLFOTest::Set;

TEST(StepLFORealtime, RenderAudioAllocatesNothing) {
    auto driver = BR::Test::MakeDriver("steplfo");
    BR::DriverTransport transport;
    transport.tempo = 133.0;
    driver->SetTransport(&transport);
    for (const char* lane : {"L", "R"}) {
        const std::string s = lane;
        Set(*driver, "Random Enable " + s, 1.0f);
        Set(*driver, "Randomness " + s, -0.3f);
        Set(*driver, "DAC Enable " + s, 1.0f);
        Set(*driver, "DAC Scale Mode " + s, 2.0f);
        Set(*driver, "DAC Bit 1 " + s, 0.4f);
        Set(*driver, "Swing " + s, 62.0f);
        Set(*driver, "Smoothing " + s, 1.5f);
        Set(*driver, "Reset By Note " + s, 2.0f);
        Set(*driver, "Beat Divisor " + s, 5.0f);
        Set(*driver, "Interpolation " + s, 1.0f);
    }
    Set(*driver, "Trigger Input R", 3.0f);
    Set(*driver, "Reset Input L", 4.0f);
    const uint32_t block = 256;
    std::vector<std::vector<float>> in(6, std::vector<float>(block, 0.0f));
    for (uint32_t i = 0; i < block; ++i) {
        in[2][i] = (i / 30) % 2 ? 1.0f : 0.0f;
        in[3][i] = (i / 70) % 2 ? 1.0f : 0.0f;
        in[0][i] = 0.1f;
    }
    std::vector<const float*> inputs;
    for (auto& c : in)
        inputs.push_back(c.data());
    std::vector<float> outL(block), outR(block);
    float* outputs[2] = {outL.data(), outR.data()};
    const uint8_t note[3] = {0x90, 60, 100}, off[3] = {0x80, 60, 0};
    const BR::TimedMidi midi[2] = {{40, 3, note}, {140, 3, off}};
    driver->Process(inputs.data(), outputs, block, midi, 2);

    uint64_t allocations = 0;
    for (int b = 0; b < 96; ++b) {
        Set(*driver, "Sync L", float(b % 6));
        Set(*driver, "Sync R", float((b / 6) % 6));
        transport.playing = b % 10 != 9;  // stops now and then: the steps are written back
        const int32_t edit[3] = {b % 2, b % 48, b % 4};
        driver->Module().SetProperty(64152, edit, 12);
        BR::Test::AllocationScope scope;
        driver->Process(inputs.data(), outputs, block, midi, 2);
        allocations += scope.Count();
    }
    EXPECT_EQ(allocations, 0u);
}
