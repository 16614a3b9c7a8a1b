// Sync rendered through RenderAudio at three block sizes with a playing, looping transport at 24 PPQN
// (clock on output 1, run on output 2), and with the FSK tone; each against a plain loop that reads the
// transport at each block and makes the same pulse train, or the same tone, sample by sample.
#include <cmath>

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

// What a sync must do at each block whatever it is written like: read where the host's transport
// stands and how fast it goes, and place the clock from that, since a host may move it at any block.
// The host side (the transport moving on by the block and round its loop) is done here as the
// driver does it for the module.
struct PlainTransport {
    double quarter = 0.0, tempo = 120.0, loopStart = 0.0, loopEnd = 64.0;
    bool playing = true;
    // Samples into the present 24 PPQN tick, and the tick's length in samples.
    void Place(uint32_t& counter, uint32_t& period) const {
        const double perTick = 48000.0 * 60.0 / (tempo * 24.0);
        const double ticks = quarter * 24.0;
        period = uint32_t(perTick);
        counter = playing ? uint32_t((ticks - std::floor(ticks)) * perTick) : 0;
    }
    void Advance(uint32_t frames) {
        quarter += double(frames) * tempo / 60.0 / 48000.0;
        if (quarter >= loopEnd) quarter -= loopEnd - loopStart;
    }
};

// The clock placed from the transport at each block, high for half of each tick, and a run level,
// added to two inputs sample by sample.
void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in[2] = {std::vector<float>(block, 0.1f), std::vector<float>(block, 0.2f)};
    std::vector<float> out[2] = {std::vector<float>(block), std::vector<float>(block)};
    PlainTransport transport;
    float high = 1.0f, low = 0.0f, run = 1.0f;
    for (auto _ : state) {
        BR::Bench::KeepOpaque(transport);
        uint32_t counter, period;
        transport.Place(counter, period);
        const uint32_t half = period / 2;
        for (uint32_t i = 0; i < block; ++i) {
            out[0][i] = in[0][i] + (counter < half ? high : low);
            out[1][i] = in[1][i] + run;
            counter = counter + 1 == period ? 0 : counter + 1;
        }
        transport.Advance(block);
        benchmark::DoNotOptimize(out[0].data());
        benchmark::DoNotOptimize(out[1].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

// The FSK tone alone: the clock placed as above, phase step by the clock's state, polynomial sine,
// added to one input.
void BM_PlainToneLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in[2] = {std::vector<float>(block, 0.1f), std::vector<float>(block, 0.2f)};
    std::vector<float> out[2] = {std::vector<float>(block), std::vector<float>(block)};
    PlainTransport transport;
    float phase = 0.0f, run = 1.0f;
    for (auto _ : state) {
        BR::Bench::KeepOpaque(transport);
        uint32_t counter, period;
        transport.Place(counter, period);
        const uint32_t half = period / 2;
        for (uint32_t i = 0; i < block; ++i) {
            out[0][i] = in[0][i] + BR::PolySine(phase) * 0.5f + 0.5f;
            phase += (counter < half ? 2400.0f : 1200.0f) / 48000.0f;
            if (phase >= 1.0f) phase -= 1.0f;
            out[1][i] = in[1][i] + run;
            counter = counter + 1 == period ? 0 : counter + 1;
        }
        transport.Advance(block);
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
