// Hardware links per frame at blocks of 32, 256 and 1024: the Cinder and Dunmore Combiners with every
// filter on, the AC Encoder, CV Input's Elkhorn decoder, and the hardware modes of the Voice Controller
// and Sync. Each is paired with a plain loop doing the same arithmetic on bare arrays, or with its own
// module's plain mode where the frame replaces a plain rendering.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "BenchSupport.h"
#include "framework/PolySine.h"
#include "modules/hardware/CombinerStream.h"
#include "modules/hardware/HardwareFrame.h"
#include "modules/hardware/LowpassDesign.h"

namespace {

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
    BR::Bench::ModuleRig rig("cindercombiner", uint32_t(state.range(0)));
    for (int k = 1; k <= 4; ++k)
        rig.driver->SetParameterByName("Filter " + std::to_string(k), 1.0f);
    RunRig(state, rig);
}

void BM_Dunmore(benchmark::State& state) {
    BR::Bench::ModuleRig rig("dunmorecombiner", uint32_t(state.range(0)));
    for (int k = 1; k <= 8; ++k)
        rig.driver->SetParameterByName("Filter " + std::to_string(k), 1.0f);
    RunRig(state, rig);
}

// N fifth-order filters, a 12-bit value and a byte per sample, the byte into a word and a sample.
template <int N>
void BM_PlainCombiner(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::LowpassCoefficients<5> c;
    c.Design(-1.0, 0.045);
    BR::FifthOrderFilter filters[N];
    for (auto& f : filters)
        f.SetCoefficients(&c);
    std::vector<float> in[N], l(block), r(block);
    for (int k = 0; k < N; ++k) {
        in[k].resize(block);
        for (uint32_t i = 0; i < block; ++i)
            in[k][i] = 0.7f * std::sin(0.37f * float(i) + float(k));
    }
    int32_t phase = 0;
    for (auto _ : state) {
        for (uint32_t i = 0; i < block; ++i) {
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
    BR::Bench::CountFrames(state, block);
}

void BM_ACEncoder(benchmark::State& state) {
    BR::Bench::ModuleRig rig("acencoder", uint32_t(state.range(0)));
    rig.driver->SetParameterByName("Enable L", 1.0f);
    rig.driver->SetParameterByName("Enable R", 1.0f);
    RunRig(state, rig);
}

void BM_PlainCarrier(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in[2] = {std::vector<float>(block, 0.3f), std::vector<float>(block, -0.2f)};
    std::vector<float> out[2] = {std::vector<float>(block), std::vector<float>(block)};
    float phase[2] = {0.0f, 0.0f};
    for (auto _ : state) {
        for (int c = 0; c < 2; ++c) {
            float p = phase[c];
            for (uint32_t i = 0; i < block; ++i) {
                const float a = std::clamp(0.5f * in[c][i] + 0.5f, 0.0f, 1.0f);
                p = 1.0f - p;
                out[c][i] = (p * 2.0f - 1.0f) * a;
            }
            phase[c] = p;
        }
        benchmark::DoNotOptimize(out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

void BM_CVInputElkhorn(benchmark::State& state) {
    BR::Bench::ModuleRig rig("cvinput", uint32_t(state.range(0)));
    rig.driver->SetParameterByName("Mode L", 2.0f);
    rig.driver->SetParameterByName("Mode R", 2.0f);
    RunRig(state, rig);
}

// Per channel and sample: the phase step, a cosine and a sine, the loop update and a tenth order.
void BM_PlainPll(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::LowpassCoefficients<10> c;
    c.Design(0.0, 0.117);
    BR::TenthOrderFilter filters[2];
    for (auto& f : filters)
        f.SetCoefficients(&c);
    std::vector<float> in(block), out[2] = {std::vector<float>(block), std::vector<float>(block)};
    for (uint32_t i = 0; i < block; ++i)
        in[i] = 0.5f * std::sin(2.2f * float(i));
    double phase[2] = {0.0, 0.0}, omega[2] = {106814.0, 106814.0}, last[2] = {0.0, 0.0};
    for (auto _ : state) {
        for (int ch = 0; ch < 2; ++ch) {
            for (uint32_t i = 0; i < block; ++i) {
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
    BR::Bench::CountFrames(state, block);
}

void VoiceController(benchmark::State& state, float hardwareMode) {
    BR::Bench::ModuleRig rig("voicecontroller", uint32_t(state.range(0)));
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

// The Voice Controller's hardware modes as plainly as they can be, at the module's defaults: the
// sources rendered (no note: pitch, gate, the three idle envelopes and the trigger hold 0), each output
// mixed from its source by its row's weight (the default matrix: output k takes source k at 1), then
// per sample the frame made from the outputs and written as samples on outputs 1 and 2. "Ardent": five
// level bytes (outputs 1 to 5, unipolar), the words. "Cinder"/"Dunmore": the next byte of the combiner
// stream (four or six channels, step 2, channels 7 and 8 at mid-scale) into lane 1 of an Ardent frame,
// the words.
template <int kMode>
struct PlainVoiceFrame {
    BR::CinderStream cinder;
    BR::DunmoreStream dunmore;
    std::vector<std::vector<float>> sources;
    float weight[6] = {1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f};
    static uint8_t Level(float x) {
        return uint8_t(std::clamp(int32_t(std::clamp(x * 255.0f + 0.5f, -1.0f, 256.0f)), 0, 255));
    }
    void Render(std::vector<std::vector<float>>& out, uint32_t block) {
        sources.resize(6);
        for (auto& source : sources) {
            source.resize(block);
            std::fill(source.begin(), source.end(), 0.0f);
        }
        BR::Bench::KeepOpaque(weight);
        for (size_t k = 0; k < 6; ++k) {
            const float w = weight[k];
            const float* x = sources[k].data();
            float* y = out[k].data();
            for (uint32_t i = 0; i < block; ++i)
                y[i] = w * x[i];
        }
        const float full = BR::kFullScaleA;
        uint8_t frame[5] = {0, 0, 0, 0, 0};
        for (uint32_t i = 0; i < block; ++i) {
            if constexpr (kMode == 1) {
                for (int b = 0; b < 5; ++b)
                    frame[b] = Level(out[size_t(b)][i]);
            } else {
                const int32_t channels = kMode == 3 ? 6 : 4;
                auto value = [&](int32_t c) {
                    return c < channels ? BR::CombinerValue(out[size_t(c)][i], 0) : 2048;
                };
                frame[0] = kMode == 3 ? dunmore.Next(value, 2, true) : cinder.Next(value, 2);
            }
            int32_t left, right;
            BR::FiveByteWords(frame, left, right);
            out[0][i] = BR::WordToSample(left, full);
            out[1][i] = BR::WordToSample(right, full);
        }
    }
};

template <int kMode>
void BM_PlainVoiceFrame(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<std::vector<float>> out(6, std::vector<float>(block));
    PlainVoiceFrame<kMode> plain;
    for (auto _ : state) {
        plain.Render(out, block);
        benchmark::DoNotOptimize(out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

// Each hardware mode's twin against the module over three blocks.
template <int kMode>
void CheckVoiceTwin() {
    for (uint32_t block : {32u, 256u, 1024u}) {
        BR::Bench::ModuleRig rig("voicecontroller", block);
        rig.driver->SetParameterByName("Hardware Mode", float(kMode));
        Fill(rig);
        PlainVoiceFrame<kMode> plain;
        std::vector<std::vector<float>> out(6, std::vector<float>(block));
        double worst = 0.0;
        for (int b = 0; b < 3; ++b) {
            rig.Render();
            plain.Render(out, block);
            for (size_t o = 0; o < out.size(); ++o)
                for (uint32_t i = 0; i < block; ++i)
                    worst = std::max(worst, std::fabs(double(out[o][i]) - double(rig.out[o][i])));
        }
        std::printf(
            "Voice Controller hardware mode %d plain twin against the module at block %u: largest "
            "difference %g\n",
            kMode, block, worst);
    }
}

void SetUpSync(BR::Bench::ModuleRig& rig, float hardwareMode) {
    rig.driver->SetParameterByName("BR Hardware Mode", hardwareMode);
    rig.driver->SetParameterByName("DINsync Type", 1.0f);
    rig.driver->SetParameterByName("Enable FSK", 1.0f);
}

void Sync(benchmark::State& state, float hardwareMode) {
    BR::Bench::ModuleRig rig("sync", uint32_t(state.range(0)));
    SetUpSync(rig, hardwareMode);
    RunRig(state, rig);
}
void BM_SyncPlain(benchmark::State& state) {
    Sync(state, 0.0f);
}
void BM_SyncArdent(benchmark::State& state) {
    Sync(state, 1.0f);
}

// Sync's Ardent frame as plainly as it can be, with the module's settings above and no transport (the
// clock at rest, the run line low): per sample five bytes, the FSK tone at 1200 Hz as a level byte in
// byte 1 (clock on "Output 1"), the run's low level in byte 2, the words, the thru audio, the samples.
struct PlainSyncArdent {
    float phase = 0.0f;
    void Render(const float* x0, const float* x1, float* y0, float* y1, uint32_t block) {
        const float full = BR::kFullScaleA, step = 1200.0f / 48000.0f;
        float p = phase;
        for (uint32_t i = 0; i < block; ++i) {
            uint8_t frame[5] = {0, 0, 0, 0, 0};
            const float v = std::clamp((BR::PolySine(p) * 0.5f + 0.5f) * 127.0f + 127.5f, 0.0f, 255.0f);
            frame[0] = uint8_t(int32_t(v));
            p += step;
            if (p >= 1.0f) p -= 1.0f;
            int32_t left, right;
            BR::FiveByteWords(frame, left, right);
            y0[i] = BR::WordToSample(left | BR::ThruBits(x0[i], full), full);
            y1[i] = BR::WordToSample(right | BR::ThruBits(x1[i], full), full);
        }
        phase = p;
    }
};

void BM_PlainSyncArdent(benchmark::State& state) {
    BR::Bench::ModuleRig rig("sync", uint32_t(state.range(0)));  // for its inputs, filled as for the module
    Fill(rig);
    PlainSyncArdent plain;
    for (auto _ : state) {
        plain.Render(rig.in[0].data(), rig.in[1].data(), rig.out[0].data(), rig.out[1].data(), rig.blockSize);
        benchmark::DoNotOptimize(rig.out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, rig.blockSize);
}

// The Sync twin's output against the module's over three blocks.
void CheckSyncTwin() {
    for (uint32_t block : {32u, 256u, 1024u}) {
        BR::Bench::ModuleRig rig("sync", block);
        SetUpSync(rig, 1.0f);
        Fill(rig);
        PlainSyncArdent plain;
        std::vector<float> y0(block), y1(block);
        double worst = 0.0;
        for (int b = 0; b < 3; ++b) {
            rig.Render();
            plain.Render(rig.in[0].data(), rig.in[1].data(), y0.data(), y1.data(), block);
            for (uint32_t i = 0; i < block; ++i) {
                worst = std::max(worst, std::fabs(double(y0[i]) - double(rig.out[0][i])));
                worst = std::max(worst, std::fabs(double(y1[i]) - double(rig.out[1][i])));
            }
        }
        std::printf("Sync Ardent plain twin against the module at block %u: largest difference %g\n", block,
                    worst);
    }
}

BENCHMARK(BM_Cinder)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainCombiner<4>)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_Dunmore)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainCombiner<8>)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_ACEncoder)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainCarrier)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_CVInputElkhorn)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainPll)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_VoiceControllerPlain)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_VoiceControllerArdent)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_VoiceControllerCinder)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_VoiceControllerDunmore)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainVoiceFrame<1>)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainVoiceFrame<2>)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainVoiceFrame<3>)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_SyncPlain)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_SyncArdent)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainSyncArdent)->Arg(32)->Arg(256)->Arg(1024);

}  // namespace

int main(int argc, char** argv) {
    CheckVoiceTwin<1>();
    CheckVoiceTwin<2>();
    CheckVoiceTwin<3>();
    CheckSyncTwin();
    const std::pair<const char*, const char*> pairs[] = {
        {"BM_Cinder", "BM_PlainCombiner<4>"},
        {"BM_Dunmore", "BM_PlainCombiner<8>"},
        {"BM_ACEncoder", "BM_PlainCarrier"},
        {"BM_CVInputElkhorn", "BM_PlainPll"},
        {"BM_VoiceControllerArdent", "BM_VoiceControllerPlain"},
        {"BM_VoiceControllerCinder", "BM_VoiceControllerPlain"},
        {"BM_VoiceControllerDunmore", "BM_VoiceControllerPlain"},
        {"BM_VoiceControllerArdent", "BM_PlainVoiceFrame<1>"},
        {"BM_VoiceControllerCinder", "BM_PlainVoiceFrame<2>"},
        {"BM_VoiceControllerDunmore", "BM_PlainVoiceFrame<3>"},
        {"BM_SyncArdent", "BM_SyncPlain"},
        {"BM_SyncArdent", "BM_PlainSyncArdent"}};
    std::vector<std::pair<std::string, std::string>> ratios;
    for (const auto& [module, plain] : pairs)
        for (const char* block : {"/32", "/256", "/1024"})
            ratios.emplace_back(std::string(module) + block, std::string(plain) + block);
    return BR::Bench::RunWithRatios(argc, argv, ratios);
}
