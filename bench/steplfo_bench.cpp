// Step LFO rendered through RenderAudio: both lanes free with interpolation and the random register,
// locked to a swung transport, and stepped by trigger edges; against a plain phase-accumulator loop
// with the same interpolation and random steps as the free lanes.
#include <algorithm>
#include <cmath>

#include "BenchSupport.h"
#include "host/DriverTransport.h"

namespace {

void SetRate(benchmark::State& state, uint32_t block) {
    BR::Bench::CountFrames(state, block);
}

void Steps(BR::HostDriver& driver) {
    for (const char* lane : {"L", "R"})
        for (int k = 1; k <= 16; ++k)
            driver.SetParameterByName("Step " + std::to_string(k) + " " + lane, 0.1f * float(k % 7) - 0.3f);
}

void Render(benchmark::State& state, BR::Bench::ModuleRig& rig, uint32_t block) {
    for (auto _ : state) {
        rig.Render();
        benchmark::DoNotOptimize(rig.out[0].data());
        benchmark::DoNotOptimize(rig.out[1].data());
        benchmark::ClobberMemory();
    }
    SetRate(state, block);
}

// Both lanes free at 200 steps a second, interpolated, lane L drawing random steps; with or without
// the signal inputs their rows read by default ("Signal Input" 1 and 2, added to the steps).
void FreeLanes(BR::HostDriver& driver, bool signalInputs) {
    Steps(driver);
    for (const char* lane : {"L", "R"}) {
        const std::string s = lane;
        driver.SetParameterByName("Sync " + s, 0.0f);
        driver.SetParameterByName("Speed " + s, 20.0f);
        driver.SetParameterByName("Speed Multiplier " + s, 2.0f);
        driver.SetParameterByName("Interpolation " + s, 1.0f);
        if (!signalInputs) driver.SetParameterByName("Signal Input " + s, 0.0f);
    }
    driver.SetParameterByName("Random Enable L", 1.0f);
}

void BM_StepLFOFree(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("steplfo", block);
    FreeLanes(*rig.driver, true);
    Render(state, rig, block);
}

// The free lanes without their signal inputs: the job BM_PlainLoop does, which reads no input.
void BM_StepLFOFreeNoInput(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("steplfo", block);
    FreeLanes(*rig.driver, false);
    Render(state, rig, block);
}

void BM_StepLFOTransportSwing(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("steplfo", block);
    BR::DriverTransport transport;
    transport.tempo = 140.0;
    rig.driver->SetTransport(&transport);
    Steps(*rig.driver);
    for (const char* lane : {"L", "R"}) {
        const std::string s = lane;
        rig.driver->SetParameterByName("Swing " + s, 66.0f);
        rig.driver->SetParameterByName("Beat Divisor " + s, 5.0f);
        rig.driver->SetParameterByName("Smoothing " + s, 1.0f);
    }
    Render(state, rig, block);
}

void BM_StepLFOTriggerInputs(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("steplfo", block);
    Steps(*rig.driver);
    for (const char* lane : {"L", "R"}) {
        const std::string s = lane;
        rig.driver->SetParameterByName("Sync " + s, 4.0f);
        rig.driver->SetParameterByName("Speed " + s, 20.0f);
        rig.driver->SetParameterByName("Speed Multiplier " + s, 3.0f);
        rig.driver->SetParameterByName("Trigger Input " + s, 1.0f);  // the rig's sine input
        rig.driver->SetParameterByName("Reset Input " + s, 2.0f);
    }
    Render(state, rig, block);
}

// The plain twin of BM_StepLFOFree: two lanes of phase accumulator over 16 steps at 200 steps a
// second, each sample interpolated between its step and the next (wrapping to the first) and mapped
// by multiplier and offset; lane L draws a new value for the step it enters at each boundary from a
// shift register fed by a random generator, as "Random Enable" asks. No framework around it.
void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> table[2] = {std::vector<float>(16), std::vector<float>(16)};
    std::vector<float> out[2] = {std::vector<float>(block), std::vector<float>(block)};
    for (auto& t : table)
        for (int k = 0; k < 16; ++k)
            t[size_t(k)] = 0.1f * float((k + 1) % 7) - 0.3f;
    double phase[2] = {0.0, 0.25};
    int current[2] = {0, 4};
    uint32_t random = 0x12345678u, bits = 0;
    double increment = 200.0 / 16.0 / 48000.0;
    float multiplier = 1.0f, offset = 0.0f;
    for (auto _ : state) {
        benchmark::DoNotOptimize(increment);
        benchmark::DoNotOptimize(multiplier);
        for (int lane = 0; lane < 2; ++lane) {
            double p = phase[lane];
            int step = current[lane];
            float* t = table[lane].data();
            float* y = out[lane].data();
            for (uint32_t i = 0; i < block; ++i) {
                const float pos = float(p) * 16.0f;
                const int s = int(pos);
                if (s != step) {
                    step = s;
                    if (lane == 0) {
                        random ^= random << 13;
                        random ^= random >> 17;
                        random ^= random << 5;
                        bits = ((bits << 1) | (random >> 31)) & 0xFFu;
                        t[s] = (float(bits) - 127.5f) / 127.5f;
                    }
                }
                const float v = t[s] + (t[(s + 1) & 15] - t[s]) * (pos - float(s));
                y[i] = v * multiplier + offset;
                p += increment;
                if (p >= 1.0) p -= 1.0;
            }
            phase[lane] = p;
            current[lane] = step;
        }
        benchmark::DoNotOptimize(out[0].data());
        benchmark::DoNotOptimize(out[1].data());
        benchmark::ClobberMemory();
    }
    SetRate(state, block);
}

// The plain twin of BM_StepLFOTransportSwing: at each block the lanes' phase and the swing's place are
// read from the transport's position; per sample the swing chooses the long or the short half's
// speed, the step's value is looked up and mapped, and a 1 ms slew limiter smooths it.
void BM_PlainSwingLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> table(16), out[2] = {std::vector<float>(block), std::vector<float>(block)};
    for (int k = 0; k < 16; ++k)
        table[size_t(k)] = 0.1f * float((k + 1) % 7) - 0.3f;
    double quarter = 0.0, tempo = 140.0;
    const double stepQuarters = 0.25, swing = 0.66;  // sixteenth-note steps, swung in pairs
    float smooth[2] = {0.0f, 0.0f}, multiplier = 1.0f, offset = 0.0f;
    const float slew = 2.0f / (0.001f * 48000.0f);
    for (auto _ : state) {
        benchmark::DoNotOptimize(tempo);
        benchmark::DoNotOptimize(multiplier);
        const double quartersPerSample = tempo / 60.0 / 48000.0;
        for (int lane = 0; lane < 2; ++lane) {
            const double loop = 16.0 * stepQuarters, pair = 2.0 * stepQuarters;
            double phase = quarter / loop - std::floor(quarter / loop);
            double swingPhase = quarter / pair - std::floor(quarter / pair);
            const double swingStep = quartersPerSample / pair, base = quartersPerSample / loop;
            float y = smooth[lane];
            float* o = out[lane].data();
            for (uint32_t i = 0; i < block; ++i) {
                const double increment = swingPhase < swing ? base * 0.5 / swing : base * 0.5 / (1.0 - swing);
                const int s = std::min(int(float(phase) * 16.0f), 15);
                const float v = table[size_t(s)] * multiplier + offset;
                const float d = v - y;
                y = d >= slew ? y + slew : (d <= -slew ? y - slew : v);
                o[i] = y;
                phase += increment;
                if (phase >= 1.0) phase -= 1.0;
                swingPhase += swingStep;
                if (swingPhase >= 1.0) swingPhase -= 1.0;
            }
            smooth[lane] = y;
        }
        quarter += double(block) * quartersPerSample;
        benchmark::DoNotOptimize(out[0].data());
        benchmark::DoNotOptimize(out[1].data());
        benchmark::ClobberMemory();
    }
    SetRate(state, block);
}

BENCHMARK(BM_StepLFOFree)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_StepLFOFreeNoInput)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_StepLFOTransportSwing)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_StepLFOTriggerInputs)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainLoop)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainSwingLoop)->Arg(32)->Arg(256)->Arg(1024);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_StepLFOFree/32", "BM_PlainLoop/32"},
                                     {"BM_StepLFOFree/256", "BM_PlainLoop/256"},
                                     {"BM_StepLFOFree/1024", "BM_PlainLoop/1024"},
                                     {"BM_StepLFOFreeNoInput/32", "BM_PlainLoop/32"},
                                     {"BM_StepLFOFreeNoInput/256", "BM_PlainLoop/256"},
                                     {"BM_StepLFOFreeNoInput/1024", "BM_PlainLoop/1024"},
                                     {"BM_StepLFOTransportSwing/32", "BM_PlainSwingLoop/32"},
                                     {"BM_StepLFOTransportSwing/256", "BM_PlainSwingLoop/256"},
                                     {"BM_StepLFOTransportSwing/1024", "BM_PlainSwingLoop/1024"},
                                     {"BM_StepLFOTriggerInputs/256", "BM_PlainLoop/256"},
                                     {"BM_StepLFOTriggerInputs/1024", "BM_PlainLoop/1024"}});
}
