// LFO rendered through RenderAudio at three block sizes, all six waves on both channels, against a
// plain loop of the same per-sample wave arithmetic.
#include <cmath>

#include "BenchSupport.h"
#include "framework/PolySine.h"
#include "framework/RandomGenerator.h"

namespace {

void SetAllWaves(BR::Bench::ModuleRig& rig, const char* side) {
    const std::string s(side);
    for (const char* wave : {"Sine ", "Triangle ", "Square ", "Saw ", "Random ", "Noise "})
        rig.driver->SetParameterByName(wave + s, 0.15f);
    rig.driver->SetParameterByName("Speed " + s, 3.3f);
    rig.driver->SetParameterByName("Asymmetry " + s, 20.0f);
}

void BM_LFORender(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("lfo", block);
    SetAllWaves(rig, "L");
    SetAllWaves(rig, "R");
    BR::Bench::RenderBlocks(state, rig);
}

// The same waves, phase, generator and mix on two channels, with no framework around them.
void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in[2] = {std::vector<float>(block, 0.1f), std::vector<float>(block, 0.2f)};
    std::vector<float> out[2] = {std::vector<float>(block), std::vector<float>(block)};
    double phase[2] = {0.0, 0.5};
    uint32_t seed[2] = {0, 0};
    float held[2] = {0, 0};
    const double rate = 3.3 / 48000.0;
    const float level = 0.15f, a = 0.6f, hi = 0.5f / (1.0f - a), lo = 0.5f / a;
    for (auto _ : state) {
        for (int c = 0; c < 2; ++c) {
            BR::Bench::KeepOpaque(phase[c]);
            const float* x = in[c].data();
            float* y = out[c].data();
            double ph = phase[c];
            uint32_t sd = seed[c];
            float hr = held[c];
            float f = float(ph);
            for (uint32_t i = 0; i < block; ++i) {
                const float p = f >= a ? f * hi + (1.0f - hi) : f * lo;
                const float sine = BR::PolySine(p);
                const float triangle = std::min(p * 4.0f - 1.0f, 3.0f - p * 4.0f);
                ph += rate;
                const bool wrap = ph >= 1.0;
                if (wrap) ph -= 1.0;
                sd = BR::NextRandomState(sd);
                const float noise = BR::RandomStateToFloat(sd);
                if (wrap) hr = noise;
                const float square = p > 0.5f ? -1.0f : 1.0f;
                const float saw = p * 2.0f - 1.0f;
                y[i] = (triangle + sine + square + saw + hr + noise) * level + x[i];
                f = float(ph);
            }
            phase[c] = ph;
            seed[c] = sd;
            held[c] = hr;
        }
        benchmark::DoNotOptimize(out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

BENCHMARK(BM_LFORender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainLoop)->Arg(32)->Arg(256)->Arg(1024);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_LFORender/32", "BM_PlainLoop/32"},
                                     {"BM_LFORender/256", "BM_PlainLoop/256"},
                                     {"BM_LFORender/1024", "BM_PlainLoop/1024"}});
}
