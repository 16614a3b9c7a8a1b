// SMUX rendered through RenderAudio at three block sizes, against a plain loop that interleaves the
// same four inputs onto two outputs (checked against the module's output before timing).
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "BenchSupport.h"

namespace {

void BM_SMUXRender(benchmark::State& state) {
    BR::Bench::ModuleRig rig("smux", uint32_t(state.range(0)));
    BR::Bench::RenderBlocks(state, rig);
}

// Output s takes input 2s on even samples and input 2s + 1 on odd ones, the parity running on.
inline void PlainBlock(const std::vector<float>* in, std::vector<float>* out, uint32_t block,
                       uint32_t& phase) {
    for (int s = 0; s < 2; ++s)
        for (uint32_t n = 0; n < block; ++n)
            out[s][n] = ((n + phase) & 1) ? in[2 * s + 1][n] : in[2 * s][n];
    phase ^= block & 1;
}

void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in[4], out[2] = {std::vector<float>(block), std::vector<float>(block)};
    for (auto& c : in)
        c.assign(block, 0.25f);
    uint32_t phase = 0;
    for (auto _ : state) {
        PlainBlock(in, out, block, phase);
        benchmark::DoNotOptimize(out[0].data());
        benchmark::DoNotOptimize(out[1].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, state.range(0));
}

BENCHMARK(BM_SMUXRender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainLoop)->Arg(32)->Arg(256)->Arg(1024);

// Three blocks of the module and of the twin on four different inputs, both outputs compared.
void CheckTwin() {
    for (uint32_t block : {32u, 256u, 1024u}) {
        BR::Bench::ModuleRig rig("smux", block);
        for (size_t c = 0; c < rig.in.size(); ++c)
            for (uint32_t i = 0; i < block; ++i)
                rig.in[c][i] = float(c + 1) + 0.001f * float(i);
        std::vector<float> out[2] = {std::vector<float>(block), std::vector<float>(block)};
        uint32_t phase = 0;
        double worst = 0.0;
        for (int b = 0; b < 3; ++b) {
            rig.Render();
            PlainBlock(rig.in.data(), out, block, phase);
            for (int s = 0; s < 2; ++s)
                for (uint32_t i = 0; i < block; ++i)
                    worst = std::max(worst, std::fabs(double(out[s][i]) - double(rig.out[size_t(s)][i])));
        }
        std::printf("plain twin against the module at block %u: largest difference %g\n", block, worst);
    }
}

}  // namespace

int main(int argc, char** argv) {
    CheckTwin();
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_SMUXRender/32", "BM_PlainLoop/32"},
                                     {"BM_SMUXRender/256", "BM_PlainLoop/256"},
                                     {"BM_SMUXRender/1024", "BM_PlainLoop/1024"}});
}
