// Rendering either controller allocates nothing: all gate groups with triggers and accents, both note
// channels, MIDI out on eight ports with notes queued on all of them, the clock with swing and song
// position, thru, input-to-gate, stops and starts. A port that must grow does so in PortSend, outside
// the sample loop: EncodeSlice over long queues allocates nothing.
#include <gtest/gtest.h>

#include "tests/modules/hardware/GateRig.h"
#include "tests/support/AllocationCounter.h"

namespace {
void Configure(BR::HostDriver& driver, int groups) {
    for (int g = 1; g <= groups; ++g) {
        driver.SetParameterByName("Gates " + std::to_string(g) + " MIDI Channel", float(g));
        driver.SetParameterByName("Trigger " + std::to_string(g) + "/1 Length", 2.0f);
        driver.SetParameterByName("Accent " + std::to_string(g) + "/2", 1.0f);
    }
    driver.SetParameterByName("Ch 2 MIDI Channel", 2.0f);
    driver.SetParameterByName("MIDI Out MIDI Channel", 17.0f);
    driver.SetParameterByName("MIDI Out Polyphony", 7.0f);
    driver.SetParameterByName("MIDI Out Clock", 1.0f);
    driver.SetParameterByName("Use MIDI SPP", 1.0f);
    driver.SetParameterByName("MIDI Clock Swing", 64.0f);
    driver.SetParameterByName("Match Note Offs", 1.0f);
    driver.SetParameterByName("Input 2 To Gate", 20.0f);
    driver.SetParameterByName("Input 1", 3.0f);
}
}  // namespace

TEST(GateRealtime, RenderAudioAllocatesNothing) {
    for (const char* stem : {"ardentcontroller", "basaltcontroller"}) {
        auto driver = BR::Test::MakeDriver(stem, 48000.0f);
        Configure(*driver, std::string(stem) == "basaltcontroller" ? 6 : 5);
        BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 133.0, 1.25);
        transport.looping = true;
        transport.loopStart = 4.0;
        transport.loopEnd = 8.0;
        driver->SetTransport(&transport);
        const uint32_t block = 256;
        std::vector<float> in(block), outL(block), outR(block);
        for (uint32_t i = 0; i < block; ++i)
            in[i] = (i % 50) < 20 ? 0.4f : -0.3f;
        std::vector<const float*> inputs(8, in.data());
        float* outputs[2] = {outL.data(), outR.data()};
        // Eight notes at once land on the eight ports; each port queues six bytes at most.
        std::vector<std::array<uint8_t, 3>> events;
        std::vector<BR::TimedMidi> midi;
        for (int k = 0; k < 8; ++k)
            events.push_back({uint8_t(0x90 | (k % 6)), uint8_t(48 + k), uint8_t(60 + k)});
        for (int k = 0; k < 8; ++k)
            events.push_back({uint8_t(0x80 | (k % 6)), uint8_t(48 + k), 0});
        for (int k = 0; k < 8; ++k)
            midi.push_back({uint32_t(10 + k), 3, events[size_t(k)].data()});
        for (int k = 0; k < 8; ++k)
            midi.push_back({uint32_t(150 + k), 3, events[size_t(8 + k)].data()});
        // Don't Panic queues 48 bytes on each port: the first time, the ports grow from 32 to 64 in
        // PortSend; that is the growth the design allows, and it happens here, before the count.
        driver->Module().ToAudioQueue().Write(64094u);
        driver->Process(inputs.data(), outputs, block, midi.data(), uint32_t(midi.size()));
        driver->Process(inputs.data(), outputs, 20, midi.data(), 8);
        int busyPorts = 0;
        for (int p = 0; p < 8; ++p)
            busyPorts += BR::Test::Controller(*driver).Port(p).queueLength > 0;

        BR::Test::AllocationScope scope;
        for (int b = 0; b < 600; ++b) {
            if (b == 300) transport.playing = false;
            if (b == 320) transport.playing = true;
            if (b == 100) driver->Module().ToAudioQueue().Write(64094u);
            driver->SetParameterByName("Send", float(b & 1));
            driver->Process(inputs.data(), outputs, block, midi.data(), uint32_t(midi.size()));
        }
        EXPECT_EQ(scope.Count(), 0u) << stem;
        EXPECT_EQ(busyPorts, 8) << stem;
    }
}

TEST(GateRealtime, LongQueuesGrowInPortSendNotInTheSampleLoop) {
    auto driver = BR::Test::MakeDriver("ardentcontroller", 48000.0f);
    auto& module = BR::Test::Controller(*driver);
    driver->SetParameterByName("MIDI Out Polyphony", 7.0f);
    std::vector<uint8_t> bulk(5000, 0x55);
    {
        BR::Test::AllocationScope scope;
        for (int p = 0; p < 8; ++p)
            ASSERT_TRUE(module.PortSend(p, bulk.data(), int32_t(bulk.size())));
        EXPECT_GT(scope.Count(), 0u);  // the growth happens here
    }
    BR::Test::RenderGates(*driver, 64, 64);  // one block to read the settings
    std::vector<float> l(4096, 0.0f), r(4096);
    BR::Test::AllocationScope scope;
    for (int k = 0; k < 4; ++k) {
        float* in[8];
        for (int j = 0; j < 8; ++j)
            in[j] = l.data() + 1024 * k;
        float* out[2] = {r.data() + 1024 * k, r.data() + 1024 * k};
        module.EncodeSlice(in, out, 1024);
    }
    EXPECT_EQ(scope.Count(), 0u);
    EXPECT_LT(module.Port(0).queueLength, 5000);
}
