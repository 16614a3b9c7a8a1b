// The Learner's pass-through at three block sizes against a plain copy loop (checked against the
// module's output before timing), and the cost of the learn table on the audio
// path: a DC fed one learned controller per block (two takes of the registry lock, the mapping, the
// parameter setter) against the same DC without MIDI. Notifications stay off here: blocks run far
// faster than real time, and the sender's ring would overflow into diagnostics at once.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "BenchSupport.h"
#include "framework/ActiveParameter.h"
#include "modules/events/Learner.h"

namespace {

void BM_LearnerRender(benchmark::State& state) {
    BR::Bench::ModuleRig rig("learner", uint32_t(state.range(0)));
    BR::Bench::FillTestSignals(rig.in[0], rig.in[1]);
    BR::Bench::RenderBlocks(state, rig);
}

inline void PlainCopy(const std::vector<float>* in, std::vector<float>* out, uint32_t block) {
    for (int c = 0; c < 2; ++c) {
        const float* x = in[c].data();
        float* y = out[c].data();
        for (uint32_t i = 0; i < block; ++i)
            y[i] = x[i];
    }
}

void BM_PlainCopy(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in[2] = {std::vector<float>(block), std::vector<float>(block)};
    std::vector<float> out[2] = {std::vector<float>(block), std::vector<float>(block)};
    BR::Bench::FillTestSignals(in[0], in[1]);
    for (auto _ : state) {
        PlainCopy(in, out, block);
        benchmark::DoNotOptimize(out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

// The copy against the Learner's output on the same input.
void CheckTwin() {
    for (uint32_t block : {32u, 256u, 1024u}) {
        BR::Bench::ModuleRig rig("learner", block);
        BR::Bench::FillTestSignals(rig.in[0], rig.in[1]);
        rig.Render();
        std::vector<float> out[2] = {std::vector<float>(block), std::vector<float>(block)};
        PlainCopy(rig.in.data(), out, block);
        double worst = 0.0;
        for (int c = 0; c < 2; ++c)
            for (uint32_t i = 0; i < block; ++i)
                worst = std::max(worst, std::fabs(double(out[c][i]) - double(rig.out[size_t(c)][i])));
        std::printf("plain twin against the module at block %u: largest difference %g\n", block, worst);
    }
}

// A DC whose "Output Positive L" follows controller 7; `withMIDI` sends it a new value every block.
void RenderDC(benchmark::State& state, bool withMIDI) {
    constexpr uint32_t kBlock = 256;
    BR::Bench::ModuleRig rig("dc", kBlock);
    BR::Bench::ModuleRig learner("learner", kBlock);  // a Learner in the process hooks the table in
    BrelCorvaneLearner::RemoveAllMappings();
    BR::SetActiveParameter(&rig.driver->Module(), 0);
    BrelCorvaneLearner::SetLearnActive(true);
    uint8_t bytes[3] = {0xB0, 7, 0};
    const BR::TimedMidi midi{17, 3, bytes};
    rig.driver->Process(rig.inPointers.data(), rig.outPointers.data(), kBlock, &midi, 1);
    BrelCorvaneLearner::SetLearnActive(false);
    for (uint32_t i = 0; i < kBlock; ++i)
        rig.in[0][i] = rig.in[1][i] = float(std::sin(double(i) * 0.05));
    uint8_t value = 0;
    for (auto _ : state) {
        bytes[2] = value = uint8_t((value + 1) & 127);
        rig.driver->Process(rig.inPointers.data(), rig.outPointers.data(), kBlock, withMIDI ? &midi : nullptr,
                            withMIDI ? 1 : 0);
        benchmark::DoNotOptimize(rig.out[0].data());
        benchmark::ClobberMemory();
    }
    BrelCorvaneLearner::RemoveAllMappings();
    BR::SetActiveParameter(nullptr, -1);
    BR::Bench::CountFrames(state, kBlock);
}

void BM_DCLearnedControllerEveryBlock(benchmark::State& state) {
    RenderDC(state, true);
}

void BM_DCWithoutMIDI(benchmark::State& state) {
    RenderDC(state, false);
}

BENCHMARK(BM_LearnerRender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainCopy)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_DCLearnedControllerEveryBlock);
BENCHMARK(BM_DCWithoutMIDI);

}  // namespace

int main(int argc, char** argv) {
    CheckTwin();
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_LearnerRender/32", "BM_PlainCopy/32"},
                                     {"BM_LearnerRender/256", "BM_PlainCopy/256"},
                                     {"BM_LearnerRender/1024", "BM_PlainCopy/1024"},
                                     {"BM_DCLearnedControllerEveryBlock", "BM_DCWithoutMIDI"}});
}
