// Rendering Sync through RenderAudio performs no heap allocation: with MIDI in the blocks, a running
// transport that wraps round a loop, stops and starts again, swing, run pulses and the FSK tone.
#include <gtest/gtest.h>

#include "tests/support/AllocationCounter.h"
#include "tests/support/TransportRender.h"

TEST(SyncRealtime, RenderAudioAllocatesNothing) {
    for (float fsk : {0.0f, 1.0f}) {
        auto driver = BR::Test::MakeDriver("sync", 48000.0f);
        driver->SetParameterByName("DINsync Type", 2.0f);
        driver->SetParameterByName("Swing", 58.0f);
        driver->SetParameterByName("Run Signal Type", 2.0f);
        driver->SetParameterByName("Run Beats", 1.0f);
        driver->SetParameterByName("Trigger Length", 3.0f);
        driver->SetParameterByName("Enable FSK", fsk);
        BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 140.0, 3.5);
        transport.looping = true;
        transport.loopStart = 4.0;
        transport.loopEnd = 6.0;
        driver->SetTransport(&transport);
        const uint32_t block = 256;
        std::vector<float> in(block, 0.25f), outL(block), outR(block);
        const float* inputs[2] = {in.data(), in.data()};
        float* outputs[2] = {outL.data(), outR.data()};
        const uint8_t noteOn[3] = {0x90, 60, 100}, noteOff[3] = {0x80, 60, 0}, cc[3] = {0xB0, 1, 64};
        const BR::TimedMidi midi[3] = {{0, 3, noteOn}, {17, 3, cc}, {200, 3, noteOff}};
        driver->Process(inputs, outputs, block, midi, 3);

        BR::Test::AllocationScope scope;
        uint32_t edges = 0;
        for (int b = 0; b < 400; ++b) {
            if (b == 150) transport.playing = false;
            if (b == 170) transport.playing = true;
            driver->Module().ToAudioQueue().Write(64094u);
            driver->Process(inputs, outputs, block, midi, 3);
            edges += outL[0] != outL[block - 1];
        }
        EXPECT_EQ(scope.Count(), 0u);
        EXPECT_GT(edges, 0u);
    }
}
