// CV To OSC rendered through RenderAudio with both channels on and a signal that moves inside the
// threshold (the compare over each slice, nothing posted), against a plain loop that copies the audio
// through and makes the same compare per sample.
#include <cmath>

#include "BenchSupport.h"

namespace {

constexpr uint32_t kBlock = 256;

void Fill(std::vector<float>* in) {
    BR::Bench::FillTestSignals(in[0], in[1], 0.004);
}

void BM_CVToOSCRender(benchmark::State& state) {
    BR::Bench::ModuleRig rig("cvtoosc", kBlock);
    for (const char* name : {"Enable L", "Enable R"})
        rig.driver->SetParameterByName(name, 1.0f);
    for (const char* name : {"Threshold L", "Threshold R"})
        rig.driver->SetParameterByName(name, 0.5f);  // 0.005 of full scale: the signal stays inside
    Fill(rig.in.data());
    BR::Bench::RenderBlocks(state, rig);
}

void BM_PlainLoop(benchmark::State& state) {
    std::vector<float> in[2] = {std::vector<float>(kBlock), std::vector<float>(kBlock)};
    std::vector<float> out[2] = {std::vector<float>(kBlock), std::vector<float>(kBlock)};
    Fill(in);
    uint32_t outside = 0;
    for (auto _ : state) {
        for (int c = 0; c < 2; ++c) {
            const float* x = in[c].data();
            float* y = out[c].data();
            for (uint32_t i = 0; i < kBlock; ++i) {
                y[i] = x[i];
                outside += uint32_t(x[i] < -0.005f) | uint32_t(x[i] > 0.005f);
            }
        }
        benchmark::DoNotOptimize(out[0].data());
        benchmark::DoNotOptimize(outside);
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, kBlock);
}

BENCHMARK(BM_CVToOSCRender);
BENCHMARK(BM_PlainLoop);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv, {{"BM_CVToOSCRender", "BM_PlainLoop"}});
}
