// The Ardent and Basalt Controllers rendered through RenderAudio at three block sizes with everything
// at work: every gate group playing notes with triggers and accents, both note channels (Ardent),
// MIDI out spread over four serial ports, and the MIDI clock with swing under a playing transport.
// Each against a plain loop that builds the same frame words from bytes and an input, per sample.
#include <array>

#include "BenchSupport.h"
#include "host/DriverTransport.h"

namespace {

void RenderController(benchmark::State& state, const char* stem, int groups) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig(stem, block);
    BR::HostDriver& d = *rig.driver;
    for (int g = 1; g <= groups; ++g) {
        const std::string n = std::to_string(g);
        d.SetParameterByName("Gates " + n + " MIDI Channel", float(g));
        d.SetParameterByName("Trigger " + n + "/1 Length", 1.0f);
        d.SetParameterByName("Trigger " + n + "/3 Length", 3.0f);
        d.SetParameterByName("Accent " + n + "/2", 1.0f);
    }
    d.SetParameterByName("Ch 1 MIDI Channel", 7.0f);
    d.SetParameterByName("Ch 2 MIDI Channel", 8.0f);
    d.SetParameterByName("Ch 1 Vel Output", 4.0f);
    d.SetParameterByName("MIDI Out MIDI Channel", 17.0f);
    d.SetParameterByName("MIDI Out Polyphony", 3.0f);  // four ports
    d.SetParameterByName("MIDI Out Clock", 1.0f);
    d.SetParameterByName("MIDI Clock Swing", 62.0f);
    d.SetParameterByName("Input 1", 1.0f);
    d.SetParameterByName("Input 3 To Gate", 30.0f);
    BR::DriverTransport transport;
    transport.sampleRate = 48000.0;
    transport.tempo = 140.0;
    transport.looping = true;
    transport.loopStart = 0.0;
    transport.loopEnd = 64.0;
    d.SetTransport(&transport);

    // Every 4096 frames: a note on for every group and both note channels, and their note offs; every
    // message also goes out on a port. (MIDI at block rate would outrun the serial line's 31250 bits
    // a second and only measure queues that grow without end.)
    std::vector<std::array<uint8_t, 3>> bytes;
    for (int g = 0; g < groups; ++g)
        bytes.push_back({uint8_t(0x90 | g), uint8_t(48 + 2 * (g % 4)), 100});
    bytes.push_back({0x96, 60, 90});
    bytes.push_back({0x97, 62, 80});
    std::vector<std::array<uint8_t, 3>> offs = bytes;
    for (auto& b : offs)
        b[0] = uint8_t(0x80 | (b[0] & 15));
    std::vector<BR::TimedMidi> midi;
    for (size_t k = 0; k < bytes.size(); ++k)
        midi.push_back({uint32_t(k * block / (2 * bytes.size())), 3, bytes[k].data()});
    for (size_t k = 0; k < offs.size(); ++k)
        midi.push_back({uint32_t(block / 2 + k * block / (2 * offs.size())), 3, offs[k].data()});
    uint32_t frame = 0;
    for (auto _ : state) {
        const uint32_t numMidi = frame % 4096 == 0 ? uint32_t(midi.size()) : 0;
        d.Process(rig.inPointers.data(), rig.outPointers.data(), block, midi.data(), numMidi);
        frame += block;
        benchmark::DoNotOptimize(rig.out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

void BM_ArdentRender(benchmark::State& state) {
    RenderController(state, "ardentcontroller", 5);
}
void BM_BasaltRender(benchmark::State& state) {
    RenderController(state, "basaltcontroller", 6);
}

// Five bytes from bases and one input, two words, two conversions to samples, per sample.
void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in(block, 0.3f), left(block), right(block);
    uint8_t base[5] = {1, 2, 3, 4, 5};
    for (auto _ : state) {
        benchmark::DoNotOptimize(base);
        for (uint32_t i = 0; i < block; ++i) {
            int v = int(in[i] * 255.0f + 0.5f) + base[0];
            const uint8_t b0 = uint8_t(v > 255 ? 255 : v < 0 ? 0 : v);
            const int32_t l = (b0 << 16) | (base[1] << 8) | (base[4] & 0xF0);
            const int32_t r = (base[2] << 16) | (base[3] << 8) | ((base[4] & 0x0F) << 4);
            left[i] = float(l) / 8388608.0f;
            right[i] = float(r) / 8388608.0f;
        }
        benchmark::DoNotOptimize(left.data());
        benchmark::DoNotOptimize(right.data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

BENCHMARK(BM_ArdentRender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_BasaltRender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainLoop)->Arg(32)->Arg(256)->Arg(1024);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_ArdentRender/32", "BM_PlainLoop/32"},
                                     {"BM_ArdentRender/256", "BM_PlainLoop/256"},
                                     {"BM_ArdentRender/1024", "BM_PlainLoop/1024"},
                                     {"BM_BasaltRender/32", "BM_PlainLoop/32"},
                                     {"BM_BasaltRender/256", "BM_PlainLoop/256"},
                                     {"BM_BasaltRender/1024", "BM_PlainLoop/1024"}});
}
