// The Ardent and Basalt Controllers rendered through RenderAudio at three block sizes with everything
// at work: every gate group playing notes with triggers and accents, both note channels (Ardent),
// MIDI out spread over four serial ports, and the MIDI clock with swing under a playing transport.
// Each against a plain loop that does the same per sample: bytes, an input level and gate, four serial
// lines with the same traffic, the frame words with thru audio, the samples.
#include <algorithm>
#include <array>
#include <cmath>

#include "BenchSupport.h"
#include "host/DriverTransport.h"
#include "modules/hardware/HardwareFrame.h"

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

// A serial line as plainly as it can be: a count of bytes waiting, and a symbol counter that walks a
// table of 15 symbols per byte (start, eight data bits over 1.5 samples each, stop, end).
struct PlainPort {
    static constexpr uint8_t kSymbols[15] = {0, 1, 1, 2, 3, 3, 4, 5, 5, 6, 7, 8, 8, 10, 9};
    uint32_t waiting = 0;
    int32_t counter = 0;
    uint8_t byte = 0xF8;
    void Send(uint32_t bytes) {
        waiting += bytes;
        if (counter == 0) counter = 1;
    }
    // True when the line is low on this sample.
    bool Step() {
        if (counter < 1) return false;
        const int32_t c = counter - 1;
        ++counter;
        if (c >= 15) return false;
        const uint8_t symbol = kSymbols[c];
        if (symbol == 0) return true;
        if (symbol <= 8) return ((byte >> (symbol - 1)) & 1) == 0;
        if (symbol == 9) counter = --waiting > 0 ? 1 : 0;
        return false;
    }
};

// The plain twin of the controllers' benchmark, with the same traffic: per sample the bytes from
// their bases, byte 1 from input 1, a gate from input 3, four serial lines stepped and their gates
// set, the frame words, the thru audio of inputs 1 and 2 merged in, and the two samples. The lines
// carry what the module sends them: a clock byte per tick at 140 BPM on each, and the note messages
// of every 4096 frames shared among them.
template <int kBytes>
void PlainController(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in[3], out[2] = {std::vector<float>(block), std::vector<float>(block)};
    for (auto& c : in) {
        c.resize(block);
        for (uint32_t i = 0; i < block; ++i)
            c[i] = 0.5f * std::sin(0.01f * float(i));  // the rig's input
    }
    uint8_t base[kBytes] = {};
    PlainPort ports[4];
    const float fullScale = BR::kFullScaleA;
    const double samplesPerTick = 48000.0 * 60.0 / (140.0 * 24.0);
    double untilTick = 0.0;
    uint32_t frame = 0;
    for (auto _ : state) {
        BR::Bench::KeepOpaque(base);
        // The notes' messages (on and off for each group and note channel) shared out over the four
        // lines, the clock on each.
        if (frame % 4096 == 0)
            for (PlainPort& port : ports)
                port.Send(3 * (kBytes + 2) * 2 / 4);
        for (untilTick -= block; untilTick <= 0.0; untilTick += samplesPerTick)
            for (PlainPort& port : ports)
                port.Send(1);
        for (uint32_t i = 0; i < block; ++i) {
            uint8_t f[kBytes];
            std::copy(base, base + kBytes, f);
            const int32_t level = int32_t(255.0f * in[0][i] + 0.5f) + base[0];
            f[0] = uint8_t(level < 0 ? 0 : level > 255 ? 255 : level);
            if (in[2][i] > 0.0f) BR::SetGateBit(f, 29);
            for (int p = 0; p < 4; ++p)
                if (ports[p].Step()) BR::SetGateBit(f, p);
            int32_t l, r;
            if constexpr (kBytes == 5) {
                BR::FiveByteWords(f, l, r);
            } else {
                BR::SixByteWords(f, l, r);
            }
            l |= BR::ThruBits(in[0][i], fullScale);
            r |= BR::ThruBits(in[1][i], fullScale);
            out[0][i] = BR::WordToSample(l, fullScale);
            out[1][i] = BR::WordToSample(r, fullScale);
        }
        frame += block;
        benchmark::DoNotOptimize(out[0].data());
        benchmark::DoNotOptimize(out[1].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

void BM_PlainFiveBytes(benchmark::State& state) {
    PlainController<5>(state);
}
void BM_PlainSixBytes(benchmark::State& state) {
    PlainController<6>(state);
}

BENCHMARK(BM_ArdentRender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_BasaltRender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainFiveBytes)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainSixBytes)->Arg(32)->Arg(256)->Arg(1024);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_ArdentRender/32", "BM_PlainFiveBytes/32"},
                                     {"BM_ArdentRender/256", "BM_PlainFiveBytes/256"},
                                     {"BM_ArdentRender/1024", "BM_PlainFiveBytes/1024"},
                                     {"BM_BasaltRender/32", "BM_PlainSixBytes/32"},
                                     {"BM_BasaltRender/256", "BM_PlainSixBytes/256"},
                                     {"BM_BasaltRender/1024", "BM_PlainSixBytes/1024"}});
}
