// Quantizer rendered through RenderAudio at three block sizes, in "Manual" and in "Calibrated" (an
// Ardent grid filtered by a major scale), each against a plain loop of the same per-sample work.
#include <algorithm>
#include <cmath>

#include "BenchSupport.h"
#include "modules/sequencing/Quantizer.h"

namespace {

BrelCorvaneQuantizer::BrelCorvane& Quantizer(BR::Bench::ModuleRig& rig) {
    return static_cast<BrelCorvaneQuantizer::BrelCorvane&>(rig.driver->Module());
}

void BM_QuantizerManual(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("quantizer", block);
    for (const char* channel : {"L", "R"}) {
        rig.driver->SetParameterByName(std::string("Enable ") + channel, 1.0f);
        rig.driver->SetParameterByName(std::string("Steps ") + channel, 24.0f);
        rig.driver->SetParameterByName(std::string("Offset ") + channel, 30.0f);
    }
    BR::Bench::RenderBlocks(state, rig);
}

void BM_QuantizerCalibrated(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("quantizer", block);
    auto& quantizer = Quantizer(rig);
    // Scale 0 is the major scale, whether a script host added the list or this adds it.
    if (quantizer.Scales().empty()) quantizer.AddScale("Major", 0xAB5);
    rig.driver->Module().SetProperty(BR::kPropertyMakeArdentTable, nullptr, 0);
    for (const char* channel : {"L", "R"}) {
        rig.driver->SetParameterByName(std::string("Enable ") + channel, 1.0f);
        rig.driver->SetParameterByName(std::string("Mode ") + channel, 1.0f);
        rig.driver->SetParameterByName(std::string("Enable Scale ") + channel, 1.0f);
        rig.driver->SetParameterByName(std::string("Transpose ") + channel, 2.0f);
    }
    rig.Render();
    BR::Bench::RenderBlocks(state, rig);
}

// Inputs as the rig makes them.
std::vector<float> RigInput(uint32_t block) {
    std::vector<float> x(block);
    for (uint32_t i = 0; i < block; ++i)
        x[i] = 0.5f * std::sin(0.01f * float(i));
    return x;
}

// The grid arithmetic of "Manual" on two channels, with no framework around it.
void BM_PlainManual(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    const std::vector<float> in = RigInput(block);
    std::vector<float> out[2] = {std::vector<float>(block), std::vector<float>(block)};
    float S = 12.0f, O = 0.3f * 0.01f * (2.0f / 24.0f), T = 0.0f;
    for (auto _ : state) {
        BR::Bench::KeepOpaque(S);
        for (int c = 0; c < 2; ++c) {
            const float* x = in.data();
            float* y = out[c].data();
            const float k = T / S + O;
            for (uint32_t i = 0; i < block; ++i) {
                const float v = (x[i] - O) * S;
                const float q = std::fabs(v) < 8388608.0f ? float(int32_t(v)) : v;
                y[i] = (q + (v >= 0.0f ? 0.0f : -1.0f)) / S + k;
            }
        }
        benchmark::DoNotOptimize(out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

// The binary search of "Calibrated" over the same 37-entry filtered grid on two channels.
void BM_PlainCalibrated(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    const std::vector<float> in = RigInput(block);
    std::vector<float> out[2] = {std::vector<float>(block), std::vector<float>(block)};
    std::vector<float> v;
    std::vector<int32_t> notes;
    for (int i = 0; i < 64; ++i) {
        const int pc = (48 + i) % 12;
        if ((0xAB5 >> pc) & 1) {
            v.push_back(float(i) * 0.015686275f);
            notes.push_back(48 + i);
        }
    }
    const int32_t count = int32_t(v.size()), t = 2;
    int32_t note[2] = {-1, -1};
    for (auto _ : state) {
        for (int c = 0; c < 2; ++c) {
            const float* x = in.data();
            float* y = out[c].data();
            const float first = v[0], last = v[size_t(count - 1)];
            int32_t n = note[c];
            for (uint32_t s = 0; s < block; ++s) {
                const float xs = x[s];
                int32_t lo = 1, hi = count;
                while (lo < hi) {
                    const int32_t mid = (lo + hi) >> 1;
                    if (xs < v[size_t(mid)]) {
                        hi = mid;
                    } else {
                        lo = mid + 1;
                    }
                }
                float o = first;
                if (lo < count) {
                    const int32_t k = std::clamp(t - 1 + lo, 0, count - 1);
                    o = v[size_t(k)];
                    n = notes[size_t(k)];
                }
                if (xs >= last) o = last;
                y[s] = o;
            }
            note[c] = n;
        }
        benchmark::DoNotOptimize(out[0].data());
        BR::Bench::KeepOpaque(note);
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

BENCHMARK(BM_QuantizerManual)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainManual)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_QuantizerCalibrated)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainCalibrated)->Arg(32)->Arg(256)->Arg(1024);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_QuantizerManual/32", "BM_PlainManual/32"},
                                     {"BM_QuantizerManual/256", "BM_PlainManual/256"},
                                     {"BM_QuantizerManual/1024", "BM_PlainManual/1024"},
                                     {"BM_QuantizerCalibrated/32", "BM_PlainCalibrated/32"},
                                     {"BM_QuantizerCalibrated/256", "BM_PlainCalibrated/256"},
                                     {"BM_QuantizerCalibrated/1024", "BM_PlainCalibrated/1024"}});
}
