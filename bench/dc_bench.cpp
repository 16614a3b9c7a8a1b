// DC rendered through RenderAudio at three block sizes, against a plain loop of the same arithmetic.
#include "BenchSupport.h"

namespace {

void BM_DCRender(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("dc", block);
    rig.driver->SetParameterByName("Output Positive L", 0.5f);
    rig.driver->SetParameterByName("Input Multiply L", 0.5f);
    rig.driver->SetParameterByName("Input Add R", 0.25f);
    BR::Bench::RenderBlocks(state, rig);
}

// The same per-sample arithmetic and smoothing-off tail on two channels, with no framework around it.
void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in[2] = {std::vector<float>(block, 0.1f), std::vector<float>(block, 0.2f)};
    std::vector<float> out[2] = {std::vector<float>(block), std::vector<float>(block)};
    float level[2] = {0.5f, 0.0f}, add[2] = {0.0f, 0.25f}, multiply[2] = {0.5f, 0.0f}, last[2] = {0, 0};
    for (auto _ : state) {
        for (int c = 0; c < 2; ++c) {
            benchmark::DoNotOptimize(level[c]);
            const float* x = in[c].data();
            float* y = out[c].data();
            const float rest = 1.0f - multiply[c];
            for (uint32_t i = 0; i < block; ++i)
                y[i] = (x[i] * multiply[c] + rest) * level[c] + x[i] * add[c];
            last[c] = y[block - 1];
        }
        benchmark::DoNotOptimize(out[0].data());
        benchmark::DoNotOptimize(last);
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

BENCHMARK(BM_DCRender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainLoop)->Arg(32)->Arg(256)->Arg(1024);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_DCRender/32", "BM_PlainLoop/32"},
                                     {"BM_DCRender/256", "BM_PlainLoop/256"},
                                     {"BM_DCRender/1024", "BM_PlainLoop/1024"}});
}
