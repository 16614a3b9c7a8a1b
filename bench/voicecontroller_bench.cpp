// Voice Controller rendered through RenderAudio: one instance with every matrix signal moving on all six
// outputs, and a master distributing notes to 16 voice instances. Each against a plain loop that does
// the same per-sample arithmetic with no framework, note logic or registry around it.
#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

#include "BenchSupport.h"

namespace {

const char* kSources[8] = {"Offset", "Pitch", "Gate", "Env1", "Env2", "Env3", "Trigger", "Velocity"};

// Every coefficient above the 0.001 threshold, portamento gliding, and smoothing on every output.
void SetAllSignals(BR::HostDriver& driver) {
    for (int o = 1; o <= 6; ++o) {
        for (int k = 0; k < 8; ++k)
            driver.SetParameterByName("Output " + std::to_string(o) + " " + kSources[k],
                                      0.1f + 0.01f * float(k + o));
        driver.SetParameterByName("Output " + std::to_string(o) + " Smoothing", o % 2 ? 2.0f : -2.0f);
    }
    driver.SetParameterByName("Portamento Mode", 1);
    driver.SetParameterByName("Portamento Time", 0.5f);
    driver.SetParameterByName("Trigger Length", 100.0f);
    driver.SetParameterByName("Pitch LFO Depth", 20.0f);
    for (int e = 1; e <= 3; ++e)
        driver.SetParameterByName("Env " + std::to_string(e) + " Time A2", 1.0f);
}

void BM_VoiceControllerAllSignals(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("voicecontroller", block);
    SetAllSignals(*rig.driver);
    uint8_t on[3] = {0x90, 60, 100};
    uint32_t count = 0;
    for (auto _ : state) {
        // A new note now and then keeps the glide, the trigger and the attacks moving.
        const bool noteNow = (count++ * block) % 24000 < block;
        on[1] = uint8_t(48 + count % 24);
        const BR::TimedMidi midi[1] = {{0, 3, on}};
        rig.driver->Process(rig.inPointers.data(), rig.outPointers.data(), block, midi, noteNow ? 1 : 0);
        benchmark::DoNotOptimize(rig.out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

// The same arithmetic as one instance: a one-pole glide, a trigger fill, three envelope recurrences,
// five moving signals mixed into six outputs, and on each a slew limiter or a one-pole as
// SetAllSignals asks (+2 and -2 ms in turn). A note event cuts the
// render at its frame, restarts the glide and the trigger, and starts a segment of each envelope
// from the level it stands at, which costs one log and one exp each, as it must.
struct PlainVoice {
    explicit PlainVoice(uint32_t block)
        : slots(6, std::vector<float>(block)), out(6, std::vector<float>(block)) {}
    void Event(uint32_t at, bool on) {
        triggerUntil = on ? at + 16 : 0;
        for (int e = 0; e < 3; ++e) {
            const float to = on ? 1.0f : 0.0f, bend = std::exp(0.5f * 4.8f - 5.0f);
            const double c = std::exp(-std::log((std::fabs(double(to - env[e])) + bend) / bend) / 4800.0);
            envC[e] = float(c);
            envAdd[e] = float((on ? double(to) + bend : double(to) - bend) * (1.0 - c));
        }
    }
    void Render(uint32_t from, uint32_t to) {
        float glide = pitch;
        for (uint32_t i = from; i < to; ++i) {
            glide = (glide - 0.5f) * 0.9998f + 0.5f;
            slots[0][i] = glide;
        }
        pitch = glide;
        for (uint32_t i = from; i < to; ++i)
            slots[4][i] = i < triggerUntil ? 1.0f : 0.0f;
        for (int e = 1; e <= 3; ++e) {
            float level = env[e - 1];
            const float c = envC[e - 1], add = envAdd[e - 1];
            for (uint32_t i = from; i < to; ++i) {
                level = c * level + add;
                slots[size_t(e)][i] = level;
            }
            env[e - 1] = level;
        }
        for (int o = 0; o < 6; ++o) {
            float* y = out[size_t(o)].data();
            const float base = 0.1f * float(o) + 0.3f;
            float smooth = state[o];
            if (o % 2 == 0) {  // outputs 1, 3 and 5: a 2 ms slew limit
                for (uint32_t i = from; i < to; ++i) {
                    const float v = base + 0.11f * slots[0][i] + 0.12f * slots[1][i] + 0.13f * slots[2][i] +
                                    0.14f * slots[3][i] + 0.15f * slots[4][i];
                    const float d = v - smooth;
                    smooth = d >= 0.02f ? smooth + 0.02f : (d <= -0.02f ? smooth - 0.02f : v);
                    y[i] = smooth;
                }
            } else {  // outputs 2, 4 and 6: a 2 ms one-pole
                for (uint32_t i = from; i < to; ++i) {
                    const float v = base + 0.11f * slots[0][i] + 0.12f * slots[1][i] + 0.13f * slots[2][i] +
                                    0.14f * slots[3][i] + 0.15f * slots[4][i];
                    smooth = (smooth - v) * 0.9473f + v;
                    y[i] = smooth;
                }
            }
            state[o] = smooth;
        }
    }
    void Render(uint32_t block) { Render(0, block); }
    std::vector<std::vector<float>> slots, out;
    float pitch = 0.0f, env[3] = {0, 0, 0}, state[6] = {0, 0, 0, 0, 0, 0};
    float envC[3] = {0.9999f, 0.9999f, 0.9999f}, envAdd[3] = {0.0001f, 0.0001f, 0.0001f};
    uint32_t triggerUntil = 0;
};

void BM_PlainVoice(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    PlainVoice voice(block);
    for (auto _ : state) {
        voice.Render(block);
        benchmark::DoNotOptimize(voice.out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

// A master and 16 voices fed by its first output; four notes start and four end in every block.
void BM_MasterSixteenVoices(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig master("voicecontroller", block);
    master.driver->SetParameterByName("Poly Mode", 1);
    master.driver->SetParameterByName("Polyphony/Voice", 16);
    std::vector<std::unique_ptr<BR::Bench::ModuleRig>> voices;
    for (int v = 1; v <= 16; ++v) {
        voices.push_back(std::make_unique<BR::Bench::ModuleRig>("voicecontroller", block));
        voices.back()->driver->SetParameterByName("Poly Mode", 2);
        voices.back()->driver->SetParameterByName("Polyphony/Voice", float(v));
        SetAllSignals(*voices.back()->driver);
    }
    uint8_t bytes[8][3];
    BR::TimedMidi midi[8];
    uint32_t count = 0;
    for (auto _ : state) {
        for (int k = 0; k < 4; ++k) {
            const uint8_t note = uint8_t(36 + (count * 4 + uint32_t(k)) % 48);
            const uint8_t old = uint8_t(36 + (count * 4 + uint32_t(k) + 48 - 12) % 48);
            bytes[k][0] = 0x90, bytes[k][1] = note, bytes[k][2] = 100;
            bytes[4 + k][0] = 0x80, bytes[4 + k][1] = old, bytes[4 + k][2] = 0;
            midi[k] = {uint32_t(k) * block / 8, 3, bytes[k]};
            midi[4 + k] = {block / 2 + uint32_t(k) * block / 8, 3, bytes[4 + k]};
        }
        ++count;
        master.driver->Process(master.inPointers.data(), master.outPointers.data(), block, midi, 8);
        const float* fed[1] = {master.out[0].data()};
        for (auto& voice : voices)
            voice->driver->Process(fed, voice->outPointers.data(), block, nullptr, 0);
        benchmark::DoNotOptimize(voices.back()->out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

// A plain master and 16 plain voices, with the note events of BM_MasterSixteenVoices: the master's
// levels cut at its eight events, and each note
// landing on the voice that plays it (in turn over the 16), whose render it cuts and whose envelopes
// it starts, on and off alike.
void BM_PlainSeventeenVoices(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<PlainVoice> voices(17, PlainVoice(block));
    uint32_t count = 0;
    for (auto _ : state) {
        uint32_t at[8];
        for (uint32_t k = 0; k < 4; ++k) {
            at[k] = k * block / 8;
            at[4 + k] = block / 2 + k * block / 8;
        }
        // The master at its settings mixes nothing that moves: its outputs hold levels, cut at its
        // events (its note data on the first two is left out, which only flatters the twin).
        PlainVoice& master = voices[16];
        uint32_t from = 0;
        for (uint32_t k = 0; k <= 8; ++k) {
            const uint32_t to = k < 8 ? at[k] : block;
            for (size_t o = 0; o < 6; ++o)
                std::fill(master.out[o].begin() + from, master.out[o].begin() + to, 0.1f * float(k));
            from = to;
        }
        // Voice v takes note-on k of block n when (4n + k) % 16 == v; its note-off comes three blocks on.
        for (uint32_t v = 0; v < 16; ++v) {
            PlainVoice& voice = voices[v];
            uint32_t start = 0;
            for (uint32_t k = 0; k < 4; ++k) {
                if ((count * 4 + k) % 16 == v) {
                    voice.Render(start, at[k]);
                    voice.Event(at[k], true);
                    start = at[k];
                }
            }
            for (uint32_t k = 0; k < 4; ++k) {
                if (((count + 16 - 3) * 4 + k) % 16 == v) {
                    voice.Render(start, at[4 + k]);
                    voice.Event(at[4 + k], false);
                    start = at[4 + k];
                }
            }
            voice.Render(start, block);
        }
        ++count;
        benchmark::DoNotOptimize(voices.back().out[0].data());
        benchmark::ClobberMemory();
    }
    BR::Bench::CountFrames(state, block);
}

BENCHMARK(BM_VoiceControllerAllSignals)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainVoice)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_MasterSixteenVoices)->Arg(64)->Arg(256);
BENCHMARK(BM_PlainSeventeenVoices)->Arg(64)->Arg(256);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_VoiceControllerAllSignals/32", "BM_PlainVoice/32"},
                                     {"BM_VoiceControllerAllSignals/256", "BM_PlainVoice/256"},
                                     {"BM_VoiceControllerAllSignals/1024", "BM_PlainVoice/1024"},
                                     {"BM_MasterSixteenVoices/64", "BM_PlainSeventeenVoices/64"},
                                     {"BM_MasterSixteenVoices/256", "BM_PlainSeventeenVoices/256"}});
}
