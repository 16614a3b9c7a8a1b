// SMUX rendered through RenderAudio at three block sizes, against a plain loop that interleaves the
// same four inputs onto two outputs.
#include "BenchSupport.h"

namespace {

void BM_SMUXRender(benchmark::State& state) {
    BR::Bench::ModuleRig rig("smux", uint32_t(state.range(0)));
    BR::Bench::RenderBlocks(state, rig);
}

void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in[4], out[2] = {std::vector<float>(block), std::vector<float>(block)};
    for (auto& c : in)
        c.assign(block, 0.25f);
    uint32_t phase = 0;
    for (auto _ : state) {
        for (int s = 0; s < 2; ++s)
            for (uint32_t n = 0; n < block; ++n)
                out[s][n] = ((n + phase) & 1) ? in[2 * s + 1][n] : in[2 * s][n];
        phase ^= block & 1;
        benchmark::DoNotOptimize(out[0].data());
        benchmark::DoNotOptimize(out[1].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, state.range(0));
}

BENCHMARK(BM_SMUXRender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainLoop)->Arg(32)->Arg(256)->Arg(1024);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_SMUXRender/32", "BM_PlainLoop/32"},
                                     {"BM_SMUXRender/256", "BM_PlainLoop/256"},
                                     {"BM_SMUXRender/1024", "BM_PlainLoop/1024"}});
}
