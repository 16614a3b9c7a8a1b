// Shared pieces of the benchmarks: a module rendered through the host driver, and a main that
// prints, after Google Benchmark's table, each module benchmark as a ratio to its plain-loop twin.
#pragma once

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "host/HostDriver.h"

namespace BR::Bench {

// A module of the catalogue behind the driver, with input and output buffers of one block.
struct ModuleRig {
    ModuleRig(const std::string& stem, uint32_t blockSize, float sampleRate = 48000.0f);
    void Render();

    std::unique_ptr<HostDriver> driver;
    uint32_t blockSize;
    std::vector<std::vector<float>> in, out;
    std::vector<const float*> inPointers;
    std::vector<float*> outPointers;
};

// Reports frames per second and nanoseconds per frame for `framesPerIteration` frames each iteration.
inline void CountFrames(benchmark::State& state, int64_t framesPerIteration) {
    state.SetItemsProcessed(int64_t(state.iterations()) * framesPerIteration);
    state.counters["ns_per_frame"] =
        benchmark::Counter(double(state.iterations()) * double(framesPerIteration),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// Hides a value from the optimiser, so that a plain loop cannot fold it into constants, and keeps its
// value. Plain loops use this rather than benchmark::DoNotOptimize on a scalar: that one's "+m,r" form
// makes GCC 12 read the variable from a stack slot it was never stored to (a float set to 1 before the
// loop reads as whatever the slot held), so the loop would compute on garbage.
template <class T>
inline void KeepOpaque(T& value) {
    asm volatile("" : "+m"(value) : : "memory");
}

// The two inputs most benchmarks feed: sines of 0.05 and 0.03 radians a sample, scaled by `gain`.
inline void FillTestSignals(std::vector<float>& left, std::vector<float>& right, double gain = 1.0) {
    for (size_t i = 0; i < left.size(); ++i)
        left[i] = float(gain * std::sin(double(i) * 0.05));
    for (size_t i = 0; i < right.size(); ++i)
        right[i] = float(gain * std::cos(double(i) * 0.03));
}

// The timed loop of a module benchmark: one block of the rig per iteration, its output kept alive.
inline void RenderBlocks(benchmark::State& state, ModuleRig& rig) {
    for (auto _ : state) {
        rig.Render();
        benchmark::DoNotOptimize(rig.out[0].data());
        benchmark::ClobberMemory();
    }
    CountFrames(state, rig.blockSize);
}

// Runs the registered benchmarks, then prints "ratio NAME / BASELINE" for each pair registered. The
// ratios are of CPU time: on a shared machine the wall-clock time of a run also counts the time other
// processes held the core, which CPU time leaves out.
int RunWithRatios(int argc, char** argv, const std::vector<std::pair<std::string, std::string>>& pairs);

}  // namespace BR::Bench
