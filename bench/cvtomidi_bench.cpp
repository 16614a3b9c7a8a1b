// CV To MIDI rendered through RenderAudio at three block sizes with notes and controllers on, against a plain
// loop that copies the audio through and computes a note and a controller value per sample.
#include <cmath>

#include "BenchSupport.h"

namespace {

void BM_CVToMIDIRender(benchmark::State& state) {
    BR::Bench::ModuleRig rig("cvtomidi", uint32_t(state.range(0)));
    for (const char* name : {"Enable Note L", "Enable CC L", "Enable CC R"})
        rig.driver->SetParameterByName(name, 1.0f);
    BR::Bench::FillTestSignals(rig.in[0], rig.in[1]);
    BR::Bench::RenderBlocks(state, rig);
}

void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in[2] = {std::vector<float>(block), std::vector<float>(block)};
    std::vector<float> out[2] = {std::vector<float>(block), std::vector<float>(block)};
    BR::Bench::FillTestSignals(in[0], in[1]);
    int32_t last[2] = {255, 255}, changes = 0;
    for (auto _ : state) {
        for (int c = 0; c < 2; ++c) {
            const float* x = in[c].data();
            float* y = out[c].data();
            for (uint32_t i = 0; i < block; ++i) {
                y[i] = x[i];
                const float v = (x[i] + 1.0f) * 64.0f + 0.5f;
                const int32_t cc = v > 0.0f ? std::min(int32_t(v), 127) : 0;
                const float n = 48.0f * x[i] + 48.5f;
                const int32_t note = n > 0.0f ? std::min(int32_t(n), 127) : 0;
                if (cc != last[c]) ++changes, last[c] = cc;
                changes += note & 1;
            }
        }
        benchmark::DoNotOptimize(out[0].data());
        BR::Bench::KeepOpaque(changes);
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

BENCHMARK(BM_CVToMIDIRender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainLoop)->Arg(32)->Arg(256)->Arg(1024);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_CVToMIDIRender/32", "BM_PlainLoop/32"},
                                     {"BM_CVToMIDIRender/256", "BM_PlainLoop/256"},
                                     {"BM_CVToMIDIRender/1024", "BM_PlainLoop/1024"}});
}
