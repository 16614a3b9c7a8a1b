// Soundplane rendered through RenderAudio at three block sizes: one touch through the default matrix
// onto six outputs, two of them smoothed (a slew and a one-pole), against a plain loop that looks the
// note up in a calibration table, fills six outputs with their values and smooths the same two
// (checked against the module's output before timing).
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "BenchSupport.h"
#include "framework/SharedState.h"
#include "framework/Smoothing.h"
#include "modules/sequencing/Calibration.h"

namespace {

// The touch of block `n`: it moves every block, as frames arrive.
struct Touch {
    float x, z, note;
    bool active;
};
Touch TouchOfBlock(uint32_t n) {
    return {float(n % 7) * 0.1f, float(n % 3) * 0.25f, float(40 + n % 30), n % 3 != 0};
}

void Publish(const Touch& t) {
    BR::TouchEntry& touch = BR::touchTable[0];
    touch.values[BR::kTouchX].store(t.x, std::memory_order_relaxed);
    touch.values[BR::kTouchY].store(0.0f, std::memory_order_relaxed);
    touch.values[BR::kTouchZ].store(t.z, std::memory_order_relaxed);
    touch.values[BR::kTouchNote].store(t.note, std::memory_order_relaxed);
    touch.active.store(t.active, std::memory_order_relaxed);
}

void SetUp(BR::Bench::ModuleRig& rig) {
    rig.driver->SetParameterByName("Output 1 Smoothing", 5.0f);
    rig.driver->SetParameterByName("Output 5 Smoothing", -5.0f);
}

void BM_SoundplaneRender(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("soundplane", block);
    SetUp(rig);
    uint32_t n = 0;
    for (auto _ : state) {
        Publish(TouchOfBlock(n++));
        rig.Render();
        benchmark::DoNotOptimize(rig.out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

// The twin: the note's level from the table (a fresh table maps every note to 0, as the module's
// does), the gate, x and z on outputs 1, 2, 3 and 5, y (0) on output 4, nothing on 6; outputs 1 and 5
// smoothed.
struct PlainSoundplane {
    BR::CalibrationTable table;
    BR::OutputSmoother slew, onePole;
    PlainSoundplane() {
        slew.Configure(5.0f, 48000.0f);
        onePole.Configure(-5.0f, 48000.0f);
    }
    void Render(const Touch& t, std::vector<std::vector<float>>& out, uint32_t block) {
        const float values[6] = {table.Convert(t.note), t.active ? 1.0f : 0.0f, t.x, 0.0f, t.z, 0.0f};
        for (int k = 0; k < 6; ++k)
            std::fill(out[size_t(k)].begin(), out[size_t(k)].begin() + block, values[k]);
        slew.Process(out[0].data(), int(block));
        onePole.Process(out[4].data(), int(block));
    }
};

void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<std::vector<float>> out(6, std::vector<float>(block));
    PlainSoundplane plain;
    uint32_t n = 0;
    for (auto _ : state) {
        Touch t = TouchOfBlock(n++);
        BR::Bench::KeepOpaque(t);
        plain.Render(t, out, block);
        benchmark::DoNotOptimize(out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

BENCHMARK(BM_SoundplaneRender)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainLoop)->Arg(32)->Arg(256)->Arg(1024);

// Twenty blocks of the module and of the twin with the same touches, every output compared.
void CheckTwin() {
    for (uint32_t block : {32u, 256u, 1024u}) {
        BR::Bench::ModuleRig rig("soundplane", block);
        SetUp(rig);
        std::vector<std::vector<float>> out(6, std::vector<float>(block));
        PlainSoundplane plain;
        double worst = 0.0;
        for (uint32_t n = 0; n < 20; ++n) {
            Publish(TouchOfBlock(n));
            rig.Render();
            plain.Render(TouchOfBlock(n), out, block);
            for (size_t k = 0; k < 6; ++k)
                for (uint32_t i = 0; i < block; ++i)
                    worst = std::max(worst, std::fabs(double(out[k][i]) - double(rig.out[k][i])));
        }
        std::printf("plain twin against the module at block %u: largest difference %g\n", block, worst);
    }
}

}  // namespace

int main(int argc, char** argv) {
    CheckTwin();
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_SoundplaneRender/32", "BM_PlainLoop/32"},
                                     {"BM_SoundplaneRender/256", "BM_PlainLoop/256"},
                                     {"BM_SoundplaneRender/1024", "BM_PlainLoop/1024"}});
}
