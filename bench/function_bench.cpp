// Function rendered through RenderAudio at three block sizes, logarithm on L and exponential on R,
// against a plain loop of the same two curves (checked against the module's output before timing).
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "BenchSupport.h"

namespace {

constexpr float kOffsetL = 0.6f;  // "Input Offset L" in both the module's settings and the twin

void BM_FunctionRender(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("Function", block);
    rig.driver->SetParameterByName("Enable L", 1.0f);
    rig.driver->SetParameterByName("Function L", 1.0f);
    rig.driver->SetParameterByName("Input Offset L", kOffsetL);
    rig.driver->SetParameterByName("Enable R", 1.0f);
    rig.driver->SetParameterByName("Function R", 2.0f);
    BR::Bench::RenderBlocks(state, rig);
}

// The logarithm and the exponential over the same input, with no framework around them.
inline void PlainCurves(const float* in, float* left, float* right, uint32_t block, float scale,
                        float offset) {
    for (uint32_t i = 0; i < block; ++i) {
        const float u = in[i] * scale + offset;
        left[i] = u > 1e-10f ? std::log(u) * 1.442695f + 1.0f : 0.0f;
    }
    for (uint32_t i = 0; i < block; ++i)
        right[i] = std::exp((in[i] * scale - 1.0f) * 0.6931472f);
}

void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in(block), out[2] = {std::vector<float>(block), std::vector<float>(block)};
    for (uint32_t i = 0; i < block; ++i)
        in[i] = 0.5f * std::sin(0.01f * float(i));
    float scale = 1.0f, offset = kOffsetL;
    for (auto _ : state) {
        BR::Bench::KeepOpaque(scale);
        BR::Bench::KeepOpaque(offset);
        PlainCurves(in.data(), out[0].data(), out[1].data(), block, scale, offset);
        benchmark::DoNotOptimize(out[0].data());
        benchmark::DoNotOptimize(out[1].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

BENCHMARK(BM_FunctionRender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainLoop)->Arg(32)->Arg(256)->Arg(1024);

// The plain twin must do the module's job: both channels compared sample by sample with the module's
// output on the rig's input, before the timing starts.
void CheckTwin() {
    for (uint32_t block : {32u, 256u, 1024u}) {
        BR::Bench::ModuleRig rig("Function", block);
        rig.driver->SetParameterByName("Enable L", 1.0f);
        rig.driver->SetParameterByName("Function L", 1.0f);
        rig.driver->SetParameterByName("Input Offset L", kOffsetL);
        rig.driver->SetParameterByName("Enable R", 1.0f);
        rig.driver->SetParameterByName("Function R", 2.0f);
        rig.Render();
        std::vector<float> left(block), right(block);
        float scale = 1.0f, offset = kOffsetL;
        BR::Bench::KeepOpaque(scale);
        BR::Bench::KeepOpaque(offset);
        PlainCurves(rig.in[0].data(), left.data(), right.data(), block, scale, offset);
        double worst = 0.0;
        for (uint32_t i = 0; i < block; ++i) {
            worst = std::max(worst, std::fabs(double(left[i]) - double(rig.out[0][i])));
            worst = std::max(worst, std::fabs(double(right[i]) - double(rig.out[1][i])));
        }
        std::printf("plain twin against the module at block %u: largest difference %g\n", block, worst);
    }
}

}  // namespace

int main(int argc, char** argv) {
    CheckTwin();
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_FunctionRender/32", "BM_PlainLoop/32"},
                                     {"BM_FunctionRender/256", "BM_PlainLoop/256"},
                                     {"BM_FunctionRender/1024", "BM_PlainLoop/1024"}});
}
