// DC rendered through RenderAudio at three block sizes, against a plain loop of the same arithmetic
// (checked against the module's output before timing).
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "BenchSupport.h"

namespace {

void SetUp(BR::Bench::ModuleRig& rig) {
    rig.driver->SetParameterByName("Output Positive L", 0.5f);
    rig.driver->SetParameterByName("Input Multiply L", 0.5f);
    rig.driver->SetParameterByName("Input Add R", 0.25f);
}

void BM_DCRender(benchmark::State& state) {
    BR::Bench::ModuleRig rig("dc", uint32_t(state.range(0)));
    SetUp(rig);
    BR::Bench::RenderBlocks(state, rig);
}

// One channel of the twin: the input scaled towards 1 by `multiply`, times the level, plus the input
// times `add`.
inline void PlainChannel(const float* x, float* y, uint32_t block, float level, float add, float multiply) {
    const float rest = 1.0f - multiply;
    for (uint32_t i = 0; i < block; ++i)
        y[i] = (x[i] * multiply + rest) * level + x[i] * add;
}

constexpr float kLevel[2] = {0.5f, 0.0f}, kAdd[2] = {0.0f, 0.25f}, kMultiply[2] = {0.5f, 0.0f};

// The same per-sample arithmetic and smoothing-off tail on two channels, with no framework around it.
void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in[2] = {std::vector<float>(block, 0.1f), std::vector<float>(block, 0.2f)};
    std::vector<float> out[2] = {std::vector<float>(block), std::vector<float>(block)};
    float level[2] = {kLevel[0], kLevel[1]}, add[2] = {kAdd[0], kAdd[1]};
    float multiply[2] = {kMultiply[0], kMultiply[1]}, last[2] = {0, 0};
    for (auto _ : state) {
        for (int c = 0; c < 2; ++c) {
            BR::Bench::KeepOpaque(level[c]);
            PlainChannel(in[c].data(), out[c].data(), block, level[c], add[c], multiply[c]);
            last[c] = out[c][block - 1];
        }
        benchmark::DoNotOptimize(out[0].data());
        BR::Bench::KeepOpaque(last);
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

BENCHMARK(BM_DCRender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainLoop)->Arg(32)->Arg(256)->Arg(1024);

// The twin's arithmetic against the module's output on the rig's input.
void CheckTwin() {
    for (uint32_t block : {32u, 256u, 1024u}) {
        BR::Bench::ModuleRig rig("dc", block);
        SetUp(rig);
        rig.Render();
        double worst = 0.0;
        std::vector<float> y(block);
        for (int c = 0; c < 2; ++c) {
            PlainChannel(rig.in[size_t(c)].data(), y.data(), block, kLevel[c], kAdd[c], kMultiply[c]);
            for (uint32_t i = 0; i < block; ++i)
                worst = std::max(worst, std::fabs(double(y[i]) - double(rig.out[size_t(c)][i])));
        }
        std::printf("plain twin against the module at block %u: largest difference %g\n", block, worst);
    }
}

}  // namespace

int main(int argc, char** argv) {
    CheckTwin();
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_DCRender/32", "BM_PlainLoop/32"},
                                     {"BM_DCRender/256", "BM_PlainLoop/256"},
                                     {"BM_DCRender/1024", "BM_PlainLoop/1024"}});
}
