// The Follower rendered through RenderAudio at 48 and 96 kHz on a 220 Hz sine, against a plain loop of
// its per-sample work (two filters, the ring write, the envelope and the output mix).
#include <cmath>

#include "BenchSupport.h"

namespace {

constexpr uint32_t kBlock = 256;
constexpr uint32_t kBlocks = 64;  // a sine long enough that measurements fall at every phase

std::vector<float> Sine(float rate) {
    std::vector<float> x(kBlock * kBlocks);
    for (size_t i = 0; i < x.size(); ++i)
        x[i] = 0.5f * float(std::sin(2.0 * M_PI * 220.0 * double(i) / double(rate)));
    return x;
}

void BM_FollowerRender(benchmark::State& state) {
    const float rate = float(state.range(0));
    BR::Bench::ModuleRig rig("follower", kBlock, rate);
    const std::vector<float> x = Sine(rate);
    uint32_t b = 0;
    for (auto _ : state) {
        rig.inPointers[0] = rig.inPointers[1] = x.data() + (b++ % kBlocks) * kBlock;
        rig.driver->Process(rig.inPointers.data(), rig.outPointers.data(), kBlock, nullptr, 0);
        benchmark::DoNotOptimize(rig.out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, kBlock);
}

struct Entry {
    float a, b, c;
};

void BM_PlainLoop(benchmark::State& state) {
    const float rate = float(state.range(0));
    const std::vector<float> x = Sine(rate);
    std::vector<Entry> ring(4096);
    std::vector<float> scratch(kBlock), outL(kBlock), outR(kBlock);
    float l1 = 0, b1 = 0, l2 = 0, b2 = 0, env = 0, target = 0.3f, coefficient = 0.999f;
    const float lf = 0.1f, lq = 1.8f, hf = 0.013f, hq = 1.8f;
    uint32_t w = 0, b = 0;
    for (auto _ : state) {
        const float* in = x.data() + (b++ % kBlocks) * kBlock;
        benchmark::DoNotOptimize(target);
        for (uint32_t i = 0; i < kBlock; ++i) {
            const float v = in[i] + in[i];
            l1 += b1 * lf;
            l2 += b2 * hf;
            b1 += (v - l1 - b1 * lq) * lf;
            const float out = l1 - l2 - b2 * hq;
            b2 += out * hf;
            scratch[i] = out;
        }
        for (uint32_t i = 0; i < kBlock; ++i) {
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
    BR::Bench::CountFrames(state, kBlock);
}

BENCHMARK(BM_FollowerRender)->Arg(48000)->Arg(96000);
BENCHMARK(BM_PlainLoop)->Arg(48000)->Arg(96000);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_FollowerRender/48000", "BM_PlainLoop/48000"},
                                     {"BM_FollowerRender/96000", "BM_PlainLoop/96000"}});
}
