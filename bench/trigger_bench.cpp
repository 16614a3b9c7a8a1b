// Trigger rendered through RenderAudio in envelope mode with a note per block, and with CV triggering
// from a sine input, against the envelope alone and a plain loop of the same recurrence and mapping.
#include "BenchSupport.h"
#include "modules/sequencing/Envelope.h"

namespace {

void SetRate(benchmark::State& state, uint32_t block) {
    BR::Bench::CountFrames(state, block);
}

// Short segments, so that each block passes through several stages.
void ShortEnvelope(BR::HostDriver& driver) {
    driver.SetParameterByName("Output Mode", 2.0f);
    driver.SetParameterByName("Env 1 Time A1", 0.0005f);
    driver.SetParameterByName("Env 1 Level A1", 0.7f);
    driver.SetParameterByName("Env 1 Time A2", 0.001f);
    driver.SetParameterByName("Env 1 Time A3", 0.001f);
    driver.SetParameterByName("Env 1 Time R1", 0.001f);
    driver.SetParameterByName("Env 1 Time R2", 0.002f);
    driver.SetParameterByName("Env 1 Type A2", 0.0f);
}

void BM_TriggerEnvelope(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("trigger", block);
    ShortEnvelope(*rig.driver);
    const uint8_t on[3] = {0x90, 60, 100}, off[3] = {0x80, 60, 0};
    const BR::TimedMidi midi[2] = {{0, 3, on}, {block / 2, 3, off}};
    for (auto _ : state) {
        rig.driver->Process(rig.inPointers.data(), rig.outPointers.data(), block, midi, 2);
        benchmark::DoNotOptimize(rig.out[0].data());
        benchmark::ClobberMemory();
    }
    SetRate(state, block);
}

void BM_TriggerCVGate(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("trigger", block);
    ShortEnvelope(*rig.driver);
    rig.driver->SetParameterByName("CV Trigger Enable", 1.0f);
    rig.driver->SetParameterByName("CV Trigger Threshold", 0.25f);
    for (auto _ : state) {
        rig.Render();
        benchmark::DoNotOptimize(rig.out[0].data());
        benchmark::ClobberMemory();
    }
    SetRate(state, block);
}

// The envelope generator alone, one note-on and note-off per block, mapped as the module maps it.
void BM_EnvelopeAlone(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::EnvParameters p;
    p.time[BR::kSegA1] = 0.0005f;
    p.levelA1 = 0.7f;
    p.time[BR::kSegA2] = p.time[BR::kSegA3] = p.time[BR::kSegR1] = 0.001f;
    p.time[BR::kSegR2] = 0.002f;
    p.type[BR::kSegA2] = 0;
    BR::Envelope env;
    BR::EnvDisplayValues display;
    std::vector<float> out(block);
    for (auto _ : state) {
        BR::envBlockUpdate(env, p, 48000.0f, display);
        BR::envNoteOn(env, 0.8f, p, 48000.0f);
        BR::renderEnvelope(env, out.data(), block / 2);
        BR::envNoteOff(env, p, 48000.0f);
        BR::renderEnvelope(env, out.data() + block / 2, block - block / 2);
        for (uint32_t i = 0; i < block; ++i)
            out[i] = out[i] * 2.0f - 1.0f;
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    SetRate(state, block);
}

// One parabolic recurrence and the voltage mapping per sample, with no stage logic around it.
void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> out(block);
    float level = 0.0f, increment = 1e-4f, coefficient = 1e-9f;
    for (auto _ : state) {
        benchmark::DoNotOptimize(coefficient);
        float l = level, inc = increment;
        for (uint32_t i = 0; i < block; ++i) {
            l += inc;
            inc += coefficient;
            out[i] = l * 2.0f - 1.0f;
        }
        level = l > 1.0f ? 0.0f : l;
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    SetRate(state, block);
}

BENCHMARK(BM_TriggerEnvelope)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_TriggerCVGate)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_EnvelopeAlone)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainLoop)->Arg(32)->Arg(256)->Arg(1024);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_TriggerEnvelope/32", "BM_PlainLoop/32"},
                                     {"BM_TriggerEnvelope/256", "BM_PlainLoop/256"},
                                     {"BM_TriggerEnvelope/1024", "BM_PlainLoop/1024"},
                                     {"BM_TriggerCVGate/256", "BM_PlainLoop/256"},
                                     {"BM_TriggerCVGate/1024", "BM_PlainLoop/1024"},
                                     {"BM_EnvelopeAlone/256", "BM_PlainLoop/256"},
                                     {"BM_EnvelopeAlone/1024", "BM_PlainLoop/1024"}});
}
