// Hardware links per frame at a block of 256: the Cinder and Dunmore Combiners with every filter on,
// the AC Encoder, CV Input's Elkhorn decoder, and the hardware modes of the Voice Controller and Sync.
// Each is paired with a plain loop doing the same arithmetic on bare arrays, or with its own module's
// plain mode where the frame replaces a plain rendering.
#include <algorithm>
#include <cmath>

#include "BenchSupport.h"
#include "modules/hardware/CombinerStream.h"
#include "modules/hardware/LowpassDesign.h"

namespace {

constexpr uint32_t kBlock = 256;

void Fill(BR::Bench::ModuleRig& rig) {
    for (size_t c = 0; c < rig.in.size(); ++c)
        for (uint32_t i = 0; i < rig.blockSize; ++i)
            rig.in[c][i] = 0.7f * std::sin(0.37f * float(i) + float(c)) * (i % 7 == 0 ? 1.0f : 0.98f);
}

void RunRig(benchmark::State& state, BR::Bench::ModuleRig& rig) {
    Fill(rig);
    rig.Render();
    BR::Bench::RenderBlocks(state, rig);
}

void BM_Cinder(benchmark::State& state) {
    BR::Bench::ModuleRig rig("cindercombiner", kBlock);
    for (int k = 1; k <= 4; ++k)
        rig.driver->SetParameterByName("Filter " + std::to_string(k), 1.0f);
    RunRig(state, rig);
}

void BM_Dunmore(benchmark::State& state) {
    BR::Bench::ModuleRig rig("dunmorecombiner", kBlock);
    for (int k = 1; k <= 8; ++k)
        rig.driver->SetParameterByName("Filter " + std::to_string(k), 1.0f);
    RunRig(state, rig);
}

// N fifth-order filters, a 12-bit value and a byte per sample, the byte into a word and a sample.
template <int N>
void BM_PlainCombiner(benchmark::State& state) {
    BR::LowpassCoefficients<5> c;
    c.Design(-1.0, 0.045);
    BR::FifthOrderFilter filters[N];
    for (auto& f : filters)
        f.SetCoefficients(&c);
    std::vector<float> in[N], l(kBlock), r(kBlock);
    for (int k = 0; k < N; ++k) {
        in[k].resize(kBlock);
        for (uint32_t i = 0; i < kBlock; ++i)
            in[k][i] = 0.7f * std::sin(0.37f * float(i) + float(k));
    }
    int32_t phase = 0;
    for (auto _ : state) {
        for (uint32_t i = 0; i < kBlock; ++i) {
            float x[N];
            for (int k = 0; k < N; ++k)
                x[k] = filters[k].Process(in[k][i]);
            const int32_t v = BR::CombinerValue(x[(phase >> 2) % N], 0);
            const uint8_t byte = uint8_t((phase & 2) ? (0x80 | (v >> 7)) : (v & 127));
            phase = (phase + 2) & 15;
            l[i] = float(int32_t(byte) << 16) / 8388608.0f;
            r[i] = 0.0f;
        }
        benchmark::DoNotOptimize(l.data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, kBlock);
}

void BM_ACEncoder(benchmark::State& state) {
    BR::Bench::ModuleRig rig("acencoder", kBlock);
    rig.driver->SetParameterByName("Enable L", 1.0f);
    rig.driver->SetParameterByName("Enable R", 1.0f);
    RunRig(state, rig);
}

void BM_PlainCarrier(benchmark::State& state) {
    std::vector<float> in[2] = {std::vector<float>(kBlock, 0.3f), std::vector<float>(kBlock, -0.2f)};
    std::vector<float> out[2] = {std::vector<float>(kBlock), std::vector<float>(kBlock)};
    float phase[2] = {0.0f, 0.0f};
    for (auto _ : state) {
        for (int c = 0; c < 2; ++c) {
            float p = phase[c];
            for (uint32_t i = 0; i < kBlock; ++i) {
                const float a = std::clamp(0.5f * in[c][i] + 0.5f, 0.0f, 1.0f);
                p = 1.0f - p;
                out[c][i] = (p * 2.0f - 1.0f) * a;
            }
            phase[c] = p;
        }
        benchmark::DoNotOptimize(out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, kBlock);
}

void BM_CVInputElkhorn(benchmark::State& state) {
    BR::Bench::ModuleRig rig("cvinput", kBlock);
    rig.driver->SetParameterByName("Mode L", 2.0f);
    rig.driver->SetParameterByName("Mode R", 2.0f);
    RunRig(state, rig);
}

// Per channel and sample: the phase step, a cosine and a sine, the loop update and a tenth order.
void BM_PlainPll(benchmark::State& state) {
    BR::LowpassCoefficients<10> c;
    c.Design(0.0, 0.117);
    BR::TenthOrderFilter filters[2];
    for (auto& f : filters)
        f.SetCoefficients(&c);
    std::vector<float> in(kBlock), out[2] = {std::vector<float>(kBlock), std::vector<float>(kBlock)};
    for (uint32_t i = 0; i < kBlock; ++i)
        in[i] = 0.5f * std::sin(2.2f * float(i));
    double phase[2] = {0.0, 0.0}, omega[2] = {106814.0, 106814.0}, last[2] = {0.0, 0.0};
    for (auto _ : state) {
        for (int ch = 0; ch < 2; ++ch) {
            for (uint32_t i = 0; i < kBlock; ++i) {
                phase[ch] += omega[ch] / 48000.0;
                if (phase[ch] > 3.14159265358979) phase[ch] -= 6.28318530717959;
                const double e = std::cos(phase[ch]) * in[i] * 10000.0;
                omega[ch] += last[ch] * -0.9998 + e;
                last[ch] = e;
                out[ch][i] = (0.5f - filters[ch].Process(float(std::sin(phase[ch]) * in[i]))) * 2.0f;
            }
        }
        benchmark::DoNotOptimize(out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, kBlock);
}

void VoiceController(benchmark::State& state, float hardwareMode) {
    BR::Bench::ModuleRig rig("voicecontroller", kBlock);
    rig.driver->SetParameterByName("Hardware Mode", hardwareMode);
    RunRig(state, rig);
}
void BM_VoiceControllerPlain(benchmark::State& state) {
    VoiceController(state, 0.0f);
}
void BM_VoiceControllerArdent(benchmark::State& state) {
    VoiceController(state, 1.0f);
}
void BM_VoiceControllerCinder(benchmark::State& state) {
    VoiceController(state, 2.0f);
}
void BM_VoiceControllerDunmore(benchmark::State& state) {
    VoiceController(state, 3.0f);
}

void Sync(benchmark::State& state, float hardwareMode) {
    BR::Bench::ModuleRig rig("sync", kBlock);
    rig.driver->SetParameterByName("BR Hardware Mode", hardwareMode);
    rig.driver->SetParameterByName("DINsync Type", 1.0f);
    rig.driver->SetParameterByName("Enable FSK", 1.0f);
    RunRig(state, rig);
}
void BM_SyncPlain(benchmark::State& state) {
    Sync(state, 0.0f);
}
void BM_SyncArdent(benchmark::State& state) {
    Sync(state, 1.0f);
}

BENCHMARK(BM_Cinder);
BENCHMARK(BM_PlainCombiner<4>);
BENCHMARK(BM_Dunmore);
BENCHMARK(BM_PlainCombiner<8>);
BENCHMARK(BM_ACEncoder);
BENCHMARK(BM_PlainCarrier);
BENCHMARK(BM_CVInputElkhorn);
BENCHMARK(BM_PlainPll);
BENCHMARK(BM_VoiceControllerPlain);
BENCHMARK(BM_VoiceControllerArdent);
BENCHMARK(BM_VoiceControllerCinder);
BENCHMARK(BM_VoiceControllerDunmore);
BENCHMARK(BM_SyncPlain);
BENCHMARK(BM_SyncArdent);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_Cinder", "BM_PlainCombiner<4>"},
                                     {"BM_Dunmore", "BM_PlainCombiner<8>"},
                                     {"BM_ACEncoder", "BM_PlainCarrier"},
                                     {"BM_CVInputElkhorn", "BM_PlainPll"},
                                     {"BM_VoiceControllerArdent", "BM_VoiceControllerPlain"},
                                     {"BM_VoiceControllerCinder", "BM_VoiceControllerPlain"},
                                     {"BM_VoiceControllerDunmore", "BM_VoiceControllerPlain"},
                                     {"BM_SyncArdent", "BM_SyncPlain"}});
}
