// The Follower rendered through RenderAudio on a 220 Hz sine, at blocks of 32, 256 and 1024 at 48 kHz
// and at a block of 256 at 96 kHz, against a plain loop of its per-sample work (two filters, the ring
// write, the envelope and the output mix). The block does not set the analysis: a measurement falls at
// each rising crossing of the filtered input (about every 218 samples at 48 kHz), whatever the block,
// so the sizes differ only in how many blocks carry one.
#include <cmath>

#include "BenchSupport.h"

namespace {

constexpr uint32_t kLength = 32768;  // a multiple of every block, long enough to meet every phase

std::vector<float> Sine(float rate) {
    std::vector<float> x(kLength);
    for (size_t i = 0; i < x.size(); ++i)
        x[i] = 0.5f * float(std::sin(2.0 * M_PI * 220.0 * double(i) / double(rate)));
    return x;
}

void BM_FollowerRender(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    const float rate = float(state.range(1));
    BR::Bench::ModuleRig rig("follower", block, rate);
    const std::vector<float> x = Sine(rate);
    uint32_t at = 0;
    for (auto _ : state) {
        rig.inPointers[0] = rig.inPointers[1] = x.data() + at;
        at = (at + block) % kLength;
        rig.driver->Process(rig.inPointers.data(), rig.outPointers.data(), block, nullptr, 0);
        benchmark::DoNotOptimize(rig.out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

struct Entry {
    float a, b, c;
};

void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    const float rate = float(state.range(1));
    const std::vector<float> x = Sine(rate);
    std::vector<Entry> ring(4096);
    std::vector<float> scratch(block), outL(block), outR(block);
    float l1 = 0, b1 = 0, l2 = 0, b2 = 0, env = 0, target = 0.3f, coefficient = 0.999f;
    const float lf = 0.1f, lq = 1.8f, hf = 0.013f, hq = 1.8f;
    uint32_t w = 0, at = 0;
    for (auto _ : state) {
        const float* in = x.data() + at;
        at = (at + block) % kLength;
        BR::Bench::KeepOpaque(target);
        for (uint32_t i = 0; i < block; ++i) {
            const float v = in[i] + in[i];
            l1 += b1 * lf;
            l2 += b2 * hf;
            b1 += (v - l1 - b1 * lq) * lf;
            const float out = l1 - l2 - b2 * hq;
            b2 += out * hf;
            scratch[i] = out;
        }
        for (uint32_t i = 0; i < block; ++i) {
            ring[w] = Entry{in[i], in[i], scratch[i]};
            w = (w + 1) & 4095u;
            env = (env - target) * coefficient + target;
            outL[i] = env * 0.0f + 0.2f;
            outR[i] = env;
        }
        benchmark::DoNotOptimize(outL.data());
        benchmark::DoNotOptimize(outR.data());
        benchmark::DoNotOptimize(ring.data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

BENCHMARK(BM_FollowerRender)->Args({32, 48000})->Args({256, 48000})->Args({1024, 48000})->Args({256, 96000});
BENCHMARK(BM_PlainLoop)->Args({32, 48000})->Args({256, 48000})->Args({1024, 48000})->Args({256, 96000});

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_FollowerRender/32/48000", "BM_PlainLoop/32/48000"},
                                     {"BM_FollowerRender/256/48000", "BM_PlainLoop/256/48000"},
                                     {"BM_FollowerRender/1024/48000", "BM_PlainLoop/1024/48000"},
                                     {"BM_FollowerRender/256/96000", "BM_PlainLoop/256/96000"}});
}
