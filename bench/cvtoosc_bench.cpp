// CV To OSC rendered through RenderAudio at three block sizes with both channels on and a signal that
// moves inside the threshold (the compare over each slice, nothing posted), against a plain loop that
// copies the audio through and makes the same compare per sample (checked against the module's output
// before timing).
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "BenchSupport.h"

namespace {

void Fill(std::vector<float>* in) {
    BR::Bench::FillTestSignals(in[0], in[1], 0.004);
}

void SetUp(BR::Bench::ModuleRig& rig) {
    for (const char* name : {"Enable L", "Enable R"})
        rig.driver->SetParameterByName(name, 1.0f);
    for (const char* name : {"Threshold L", "Threshold R"})
        rig.driver->SetParameterByName(name, 0.5f);  // 0.005 of full scale: the signal stays inside
    Fill(rig.in.data());
}

void BM_CVToOSCRender(benchmark::State& state) {
    BR::Bench::ModuleRig rig("cvtoosc", uint32_t(state.range(0)));
    SetUp(rig);
    BR::Bench::RenderBlocks(state, rig);
}

// Both channels copied through, counting the samples outside the threshold.
inline uint32_t PlainBlock(const std::vector<float>* in, std::vector<float>* out, uint32_t block) {
    uint32_t outside = 0;
    for (int c = 0; c < 2; ++c) {
        const float* x = in[c].data();
        float* y = out[c].data();
        for (uint32_t i = 0; i < block; ++i) {
            y[i] = x[i];
            outside += uint32_t(x[i] < -0.005f) | uint32_t(x[i] > 0.005f);
        }
    }
    return outside;
}

void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in[2] = {std::vector<float>(block), std::vector<float>(block)};
    std::vector<float> out[2] = {std::vector<float>(block), std::vector<float>(block)};
    Fill(in);
    uint32_t outside = 0;
    for (auto _ : state) {
        outside += PlainBlock(in, out, block);
        benchmark::DoNotOptimize(out[0].data());
        BR::Bench::KeepOpaque(outside);
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

BENCHMARK(BM_CVToOSCRender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainLoop)->Arg(32)->Arg(256)->Arg(1024);

// The twin's output against the module's, and its count of samples outside the threshold (the module
// posts nothing, so it must be 0).
void CheckTwin() {
    for (uint32_t block : {32u, 256u, 1024u}) {
        BR::Bench::ModuleRig rig("cvtoosc", block);
        SetUp(rig);
        rig.Render();
        std::vector<float> out[2] = {std::vector<float>(block), std::vector<float>(block)};
        const uint32_t outside = PlainBlock(rig.in.data(), out, block);
        double worst = 0.0;
        for (int c = 0; c < 2; ++c)
            for (uint32_t i = 0; i < block; ++i)
                worst = std::max(worst, std::fabs(double(out[c][i]) - double(rig.out[size_t(c)][i])));
        std::printf("plain twin against the module at block %u: largest difference %g, %u outside\n", block,
                    worst, outside);
    }
}

}  // namespace

int main(int argc, char** argv) {
    CheckTwin();
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_CVToOSCRender/32", "BM_PlainLoop/32"},
                                     {"BM_CVToOSCRender/256", "BM_PlainLoop/256"},
                                     {"BM_CVToOSCRender/1024", "BM_PlainLoop/1024"}});
}
