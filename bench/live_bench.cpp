// The live path's cost per JACK period, as a fraction of the period, for 1, 8 and 32 instances at
// periods of 64, 256 and 1024 frames (48 kHz): what the process callback runs, without a server,
// that is the transport taken from outside and the patch rendered from the period's buffers, with
// outside MIDI every eighth period. The instances cycle through an LFO, a Voice Controller, a Sync
// at 24 PPQN fed by the LFO before it, and a DC fed by that LFO. "fraction" is the time per period
// divided by the period's duration: 1 would use all of it.
#include <filesystem>
#include <fstream>

#include "BenchSupport.h"
#include "host/cli/LiveHost.h"

namespace {

std::string MakePatch(int instances, uint32_t period) {
    const std::string path =
        (std::filesystem::temp_directory_path() /
         ("corvane_live_bench_" + std::to_string(instances) + "_" + std::to_string(period) + ".json"))
            .string();
    std::ofstream out(path);
    out << "{\"rate\": 48000, \"block\": " << period << ", \"instances\": [";
    for (int k = 0; k < instances; ++k) {
        const std::string lfo = "\"i" + std::to_string(k - k % 4) + ":0\"";
        out << (k ? ", " : "") << "{\"name\": \"i" << k << "\", ";
        switch (k % 4) {
            case 0:
                out << "\"module\": \"lfo\", \"set\": {\"Sine L\": 1, \"Triangle R\": 1}}";
                break;
            case 1:
                out << "\"module\": \"voicecontroller\"}";
                break;
            case 2:
                out << "\"module\": \"sync\", \"set\": {\"DINsync Type\": 1}, \"inputs\": [" << lfo << "]}";
                break;
            default:
                out << "\"module\": \"dc\", \"set\": {\"Input Multiply L\": 1}, \"inputs\": [" << lfo << "]}";
        }
    }
    out << "]}";
    return path;
}

void BM_LivePeriod(benchmark::State& state) {
    const int instances = int(state.range(0));
    const uint32_t period = uint32_t(state.range(1));
    const std::string path = MakePatch(instances, period);
    const BR::Patch patch = BR::ParsePatch(path);
    std::filesystem::remove(path);
    BR::LiveHost host(patch);
    std::vector<std::vector<float>> buffers;
    std::vector<std::vector<float>> silence;
    for (size_t i = 0; i < host.Engine().Count(); ++i) {
        for (int32_t c = 0; c < host.Engine().Driver(i).NumHostOutputs(); ++c) {
            buffers.emplace_back(period, 0.0f);
            host.Output(i, size_t(c)) = buffers.back().data();
        }
        for (int32_t c = 0; c < host.Engine().Driver(i).NumHostInputs(); ++c) {
            silence.emplace_back(period, 0.0f);
            host.Input(i, size_t(c)) = silence.back().data();
        }
    }
    const uint8_t notes[2][3] = {{0x90, 0x3C, 0x64}, {0x80, 0x3C, 0x00}};
    BR::OutsideTransport outside;
    outside.rolling = true;
    uint64_t cycle = 0;
    for (auto _ : state) {
        uint32_t midi = 0;
        if (cycle % 8 == 0) {
            host.MidiSlots()[0] = BR::TimedMidi{period / 2, 3, notes[(cycle / 8) % 2]};
            midi = 1;
        }
        host.Follow(outside);
        host.Cycle(period, midi);
        outside.frame += period;
        ++cycle;
        benchmark::DoNotOptimize(buffers.front().data());
        benchmark::ClobberMemory();
    }
    // Seconds of audio per period, inverted over the run's rate of periods: time per period over
    // the period's duration.
    state.counters["fraction"] =
        benchmark::Counter(double(period) / 48000.0,
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

}  // namespace

BENCHMARK(BM_LivePeriod)
    ->ArgsProduct({{1, 8, 32}, {64, 256, 1024}})
    ->ArgNames({"instances", "period"})
    ->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
