// Function rendered through RenderAudio at three block sizes, logarithm on L and exponential on R,
// against a plain loop of the same two curves.
#include <cmath>

#include "BenchSupport.h"

namespace {

void BM_FunctionRender(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("Function", block);
    rig.driver->SetParameterByName("Enable L", 1.0f);
    rig.driver->SetParameterByName("Function L", 1.0f);
    rig.driver->SetParameterByName("Input Offset L", 0.6f);
    rig.driver->SetParameterByName("Enable R", 1.0f);
    rig.driver->SetParameterByName("Function R", 2.0f);
    BR::Bench::RenderBlocks(state, rig);
}

// The logarithm and the exponential over the same input, with no framework around them.
void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in(block), out[2] = {std::vector<float>(block), std::vector<float>(block)};
    for (uint32_t i = 0; i < block; ++i)
        in[i] = 0.5f * std::sin(0.01f * float(i));
    float scale = 1.0f, offset = 0.6f;
    for (auto _ : state) {
        benchmark::DoNotOptimize(scale);
        benchmark::DoNotOptimize(offset);
        for (uint32_t i = 0; i < block; ++i) {
            const float u = in[i] * scale + offset;
            out[0][i] = u > 1e-10f ? std::log(u) * 1.442695f + 1.0f : 0.0f;
        }
        for (uint32_t i = 0; i < block; ++i)
            out[1][i] = std::exp((in[i] * scale - 1.0f) * 0.6931472f);
        benchmark::DoNotOptimize(out[0].data());
        benchmark::DoNotOptimize(out[1].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

BENCHMARK(BM_FunctionRender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainLoop)->Arg(32)->Arg(256)->Arg(1024);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_FunctionRender/32", "BM_PlainLoop/32"},
                                     {"BM_FunctionRender/256", "BM_PlainLoop/256"},
                                     {"BM_FunctionRender/1024", "BM_PlainLoop/1024"}});
}
