// Soundplane rendered through RenderAudio at three block sizes: one touch through the default matrix onto six
// outputs, two of them smoothed (a slew and a one-pole), against a plain loop that fills six outputs with
// their values and smooths the same two.
#include <cmath>

#include "BenchSupport.h"
#include "framework/SharedState.h"
#include "framework/Smoothing.h"

namespace {

void BM_SoundplaneRender(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("soundplane", block);
    rig.driver->SetParameterByName("Output 1 Smoothing", 5.0f);
    rig.driver->SetParameterByName("Output 5 Smoothing", -5.0f);
    BR::TouchEntry& touch = BR::touchTable[0];
    uint32_t n = 0;
    for (auto _ : state) {
        // The touch moves every block, as frames arrive.
        touch.values[BR::kTouchX].store(float(n % 7) * 0.1f, std::memory_order_relaxed);
        touch.values[BR::kTouchZ].store(float(n % 3) * 0.25f, std::memory_order_relaxed);
        touch.values[BR::kTouchNote].store(float(40 + n % 30), std::memory_order_relaxed);
        touch.active.store(n % 3 != 0, std::memory_order_relaxed);
        ++n;
        rig.Render();
        benchmark::DoNotOptimize(rig.out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<std::vector<float>> out(6, std::vector<float>(block));
    BR::OutputSmoother slew, onePole;
    slew.Configure(5.0f, 48000.0f);
    onePole.Configure(-5.0f, 48000.0f);
    uint32_t n = 0;
    for (auto _ : state) {
        const float values[6] = {float(40 + n % 30) / 128.0f, float(n % 3 != 0),
                                 float(n % 7) * 0.1f,         0.0f,
                                 float(n % 3) * 0.25f,        0.0f};
        ++n;
        for (int k = 0; k < 6; ++k)
            std::fill(out[size_t(k)].begin(), out[size_t(k)].end(), values[k]);
        slew.Process(out[0].data(), int(block));
        onePole.Process(out[4].data(), int(block));
        benchmark::DoNotOptimize(out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

BENCHMARK(BM_SoundplaneRender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainLoop)->Arg(32)->Arg(256)->Arg(1024);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_SoundplaneRender/32", "BM_PlainLoop/32"},
                                     {"BM_SoundplaneRender/256", "BM_PlainLoop/256"},
                                     {"BM_SoundplaneRender/1024", "BM_PlainLoop/1024"}});
}
