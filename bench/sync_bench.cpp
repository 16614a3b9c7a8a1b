// Sync rendered through RenderAudio at three block sizes with a playing, looping transport at 24 PPQN
// (clock on output 1, run on output 2), and with the FSK tone; each against a plain loop that makes the
// same pulse train, or the same tone, sample by sample.
#include "BenchSupport.h"
#include "framework/PolySine.h"
#include "host/DriverTransport.h"

namespace {

void RenderSync(benchmark::State& state, bool fsk) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("sync", block);
    rig.driver->SetParameterByName("DINsync Type", 1.0f);
    rig.driver->SetParameterByName("Enable FSK", fsk ? 1.0f : 0.0f);
    BR::DriverTransport transport;
    transport.sampleRate = 48000.0;
    transport.tempo = 120.0;
    transport.looping = true;
    transport.loopStart = 0.0;
    transport.loopEnd = 64.0;
    rig.driver->SetTransport(&transport);
    for (auto _ : state) {
        rig.Render();
        benchmark::DoNotOptimize(rig.out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

void BM_SyncRender(benchmark::State& state) {
    RenderSync(state, false);
}
void BM_SyncFSKRender(benchmark::State& state) {
    RenderSync(state, true);
}

// A 1000-sample clock, high for half of it, and a run level, added to two inputs sample by sample.
void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in[2] = {std::vector<float>(block, 0.1f), std::vector<float>(block, 0.2f)};
    std::vector<float> out[2] = {std::vector<float>(block), std::vector<float>(block)};
    uint32_t counter = 0;
    float high = 1.0f, low = 0.0f, run = 1.0f;
    for (auto _ : state) {
        benchmark::DoNotOptimize(high);
        for (uint32_t i = 0; i < block; ++i) {
            out[0][i] = in[0][i] + (counter < 500 ? high : low);
            out[1][i] = in[1][i] + run;
            counter = counter == 999 ? 0 : counter + 1;
        }
        benchmark::DoNotOptimize(out[0].data());
        benchmark::DoNotOptimize(out[1].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

// The FSK tone alone: phase step by the clock's state, polynomial sine, added to one input.
void BM_PlainToneLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in[2] = {std::vector<float>(block, 0.1f), std::vector<float>(block, 0.2f)};
    std::vector<float> out[2] = {std::vector<float>(block), std::vector<float>(block)};
    uint32_t counter = 0;
    float phase = 0.0f, run = 1.0f;
    for (auto _ : state) {
        benchmark::DoNotOptimize(run);
        for (uint32_t i = 0; i < block; ++i) {
            out[0][i] = in[0][i] + BR::PolySine(phase) * 0.5f + 0.5f;
            phase += (counter < 500 ? 2400.0f : 1200.0f) / 48000.0f;
            if (phase >= 1.0f) phase -= 1.0f;
            out[1][i] = in[1][i] + run;
            counter = counter == 999 ? 0 : counter + 1;
        }
        benchmark::DoNotOptimize(out[0].data());
        benchmark::DoNotOptimize(out[1].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

BENCHMARK(BM_SyncRender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_SyncFSKRender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainLoop)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainToneLoop)->Arg(32)->Arg(256)->Arg(1024);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_SyncRender/32", "BM_PlainLoop/32"},
                                     {"BM_SyncRender/256", "BM_PlainLoop/256"},
                                     {"BM_SyncRender/1024", "BM_PlainLoop/1024"},
                                     {"BM_SyncFSKRender/32", "BM_PlainToneLoop/32"},
                                     {"BM_SyncFSKRender/256", "BM_PlainToneLoop/256"},
                                     {"BM_SyncFSKRender/1024", "BM_PlainToneLoop/1024"}});
}
