// The Learner's pass-through against a plain copy loop, and the cost of the learn table on the audio
// path: a DC fed one learned controller per block (two takes of the registry lock, the mapping, the
// parameter setter) against the same DC without MIDI. Notifications stay off here: blocks run far
// faster than real time, and the sender's ring would overflow into diagnostics at once.
#include <cmath>

#include "BenchSupport.h"
#include "framework/ActiveParameter.h"
#include "modules/events/Learner.h"

namespace {

constexpr uint32_t kBlock = 256;

void BM_LearnerRender(benchmark::State& state) {
    BR::Bench::ModuleRig rig("learner", kBlock);
    BR::Bench::FillTestSignals(rig.in[0], rig.in[1]);
    BR::Bench::RenderBlocks(state, rig);
}

void BM_PlainCopy(benchmark::State& state) {
    std::vector<float> in[2] = {std::vector<float>(kBlock), std::vector<float>(kBlock)};
    std::vector<float> out[2] = {std::vector<float>(kBlock), std::vector<float>(kBlock)};
    BR::Bench::FillTestSignals(in[0], in[1]);
    for (auto _ : state) {
        for (int c = 0; c < 2; ++c) {
            const float* x = in[c].data();
            float* y = out[c].data();
            for (uint32_t i = 0; i < kBlock; ++i)
                y[i] = x[i];
        }
        benchmark::DoNotOptimize(out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, kBlock);
}

// A DC whose "Output Positive L" follows controller 7; `withMIDI` sends it a new value every block.
void RenderDC(benchmark::State& state, bool withMIDI) {
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

BENCHMARK(BM_LearnerRender);
BENCHMARK(BM_PlainCopy);
BENCHMARK(BM_DCLearnedControllerEveryBlock);
BENCHMARK(BM_DCWithoutMIDI);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(
        argc, argv,
        {{"BM_LearnerRender", "BM_PlainCopy"}, {"BM_DCLearnedControllerEveryBlock", "BM_DCWithoutMIDI"}});
}
